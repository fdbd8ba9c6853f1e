#include "JsonReport.h"

#include "FileNames.h"
#include "LossMessages.h"
#include "RecoveryText.h"
#include "Repairs/RepairTable.h"

namespace JsonReport {
namespace {

using Reader::AdaptorRow;

Json orNull(const QString& text) {
    return text.isEmpty() ? Json() : Json(FileNames::bytesOf(text));
}

Json orNull(const std::string& text) {
    return text.empty() ? Json() : Json(text);
}

template <class Value>
Json orNull(const std::optional<Value>& value) {
    return value ? Json(*value) : Json();
}

Json formAsJson(Bundle::Backend form) {
    return form == Bundle::Backend::Xml ? "xml" : "json";
}

Json formsAsJson(const AdaptorRow& row) {
    Json list = Json::array();
    if (row.hasXml())
        list.push_back("xml");
    if (row.hasJson())
        list.push_back("json");
    return list;
}

/// Counts by class as a JSON object whose order is that of the map.
Json countsAsJson(const Reader::ObjectCounts& counts) {
    Json result = Json::object();
    for (const auto& [className, count] : counts)
        result[className] = count;
    return result;
}

Json stateAsJson(Bundle::Backend form, int version, bool hasVersion) {
    return {{"form", formAsJson(form)}, {"version", hasVersion ? Json(version) : Json()}};
}

Json clipAsJson(const Reader::Clip& clip) {
    return {{"id", clip.id}, {"name", clip.name}};
}

/// A list of what `asJson` makes of each item.
template <class Items, class AsJson>
Json listOf(const Items& items, AsJson asJson) {
    Json list = Json::array();
    for (const auto& item : items)
        list.push_back(asJson(item));
    return list;
}

Json loggedClipAsJson(const Reader::LoggedObject& object) {
    if (!object.clip)
        return {};
    return {{"id", object.clip->id}, {"name", object.clip->name}, {"time", orNull(object.clip->time)}};
}

Json logAsJson(const Reader::MigrationReport& report) {
    return listOf(report.log, [](const Reader::LogLine& line) {
        return Json{{"step", line.step},
                    {"severity", line.severity},
                    {"text", line.text},
                    {"place", line.place},
                    {"object",
                     line.object ? Json{{"class", line.object->className}, {"id", line.object->id}} : Json()},
                    {"clip", line.object ? loggedClipAsJson(*line.object) : Json()},
                    {"meaning", orNull(LossMessages::meaningOf(line))}};
    });
}

Json clipsAsJson(const Reader::MigrationReport& report) {
    Json lost = Json::array();
    for (const Reader::Loss& loss : report.losses) {
        if (loss.part.kind == Reader::PartKind::Clip)
            lost.push_back(clipAsJson({loss.part.id, loss.part.name}));
    }
    return {{"in", report.clipsBefore},
            {"kept", report.clipsKept},
            {"removed", report.clipsBefore - report.clipsKept},
            {"added", report.clipsAdded},
            {"out", report.clipsAfter()},
            {"lost", std::move(lost)}};
}

Json lossesAsJson(const Reader::MigrationReport& report) {
    return listOf(report.losses, [](const Reader::Loss& loss) {
        return Json{{"what", Reader::nameOf(loss.part.kind)},
                    {"id", loss.part.id},
                    {"class", loss.part.className},
                    {"name", loss.part.name},
                    {"clip", loss.part.clip},
                    {"step", orNull(loss.step)},
                    {"reason", loss.reason},
                    {"intended", loss.isIntended},
                    {"used", loss.wasUsed}};
    });
}

Json errorAsJson(const Messages::Message& error) {
    Json result = {{"code", int(error.code)}, {"kind", error.kind}, {"text", error.text}};
    const auto add = [&result](const char* key, Json value) {
        if (!value.is_null())
            result[key] = std::move(value);
    };
    add("line", orNull(error.line));
    add("column", orNull(error.column));
    add("byte", orNull(error.byte));
    add("step", orNull(error.step));
    add("repairs", error.repairs.empty() ? Json() : repairsAsJson(error.repairs));
    add("recovery", recoveryAsJson(error.recovery));
    return result;
}

} // namespace

Json repairsAsJson(const std::vector<Reader::RepairMade>& repairs) {
    return listOf(repairs, [](const Reader::RepairMade& repair) {
        return Json{
            {"name", repair.name},
            {"before", repair.before},
            {"count", repair.count},
            {"text", repair.text},
            {"objects", listOf(repair.objects,
                               [](const Reader::LoggedObject& object) {
                                   return Json{{"class", object.className}, {"id", object.id}};
                               })},
            {"clips",
             listOf(repair.clips(),
                    [](const Reader::Part& clip) {
                        return Json{{"id", clip.id}, {"name", clip.name}, {"time", orNull(clip.time)}};
                    })},
            {"places", listOf(repair.places, [](const Reader::TextPlace& place) {
                 return Json{{"line", place.line}, {"column", place.column}, {"what", place.what}};
             })}};
    });
}

Json recoveryAsJson(const std::optional<Reader::RecoveryReport>& report) {
    return report ? recovery(*report) : Json();
}

Json object(const Envelope& envelope, const Json& result, const Messages::Message* error) {
    Json all;
    all["format"] = format;
    all["tool"] = {{"name", "adaptors"}, {"version", ADAPTORS_VERSION}};
    all["command"] = orNull(envelope.command);
    all["input"] = orNull(envelope.input);
    all["sha256"] = orNull(envelope.sha256);
    all["seconds"] = orNull(envelope.seconds);
    if (result.is_object())
        all.update(result);
    if (error)
        all["error"] = errorAsJson(*error);
    return all;
}

std::string line(const Json& object) {
    return object.dump(-1, ' ', true, Json::error_handler_t::replace) + '\n';
}

Json migration(const Summary& summary) {
    const Reader::MigrationReport& report = summary.report;
    Json result;
    result["output"] = orNull(summary.output);
    result["backup"] = orNull(summary.backup);
    result["notes"] = summary.notes;
    result["from"] = stateAsJson(report.formBefore, report.from, summary.hasVersion);
    result["to"] = stateAsJson(report.formAfter, report.to, summary.hasVersion);
    result["steps"] = report.steps;
    result["skipped"] = report.skipped;
    result["log"] = logAsJson(report);
    result["recovery"] = recoveryAsJson(report.recovery);
    result["repairs"] = repairsAsJson(report.repairs);
    result["advice"] = repairsAsJson(summary.advice);
    result["objects"] = {{"in", countsAsJson(report.objectsBefore)},
                         {"out", countsAsJson(report.objectsAfter)},
                         {"leftOut", report.leftOut}};
    result["duplicateIds"] = report.duplicateIds;
    result["clips"] = summary.hasClips ? clipsAsJson(report) : Json();
    result["losses"] = summary.hasClips ? lossesAsJson(report) : Json();
    return result;
}

Json info(const Reader::Document& document, const std::vector<Reader::RepairMade>* repairs) {
    Json result;
    result["form"] = formAsJson(document.form());
    result["version"] = orNull(document.version());
    result["objects"] = countsAsJson(Reader::countObjects(document));
    result["clips"] = listOf(Reader::listClips(document), clipAsJson);
    const auto findings = Reader::verify(document);
    result["danglingReferences"] =
        listOf(ofKind(Reader::Fault::DanglingReference, findings), [](const Reader::Finding& finding) {
            return Json{{"from", finding.id}, {"class", finding.className}, {"to", finding.to}};
        });
    result["duplicateIds"] = listOf(ofKind(Reader::Fault::DuplicateId, findings),
                                    [](const Reader::Finding& finding) { return Json(finding.id); });
    result["steps"] = namesOfStepsToRun(document);
    result["repairs"] = repairs ? repairsAsJson(*repairs) : Json();
    return result;
}

Json findings(const std::vector<Reader::Finding>& findings) {
    return {{"findings", listOf(findings, [](const Reader::Finding& finding) {
                 Json result = {{"fault", Reader::nameOf(finding.fault)},
                                {"severity", Reader::nameOf(finding.severity)},
                                {"class", finding.className},
                                {"id", finding.id},
                                {"path", finding.path},
                                {"text", finding.text}};
                 if (finding.to != 0)
                     result["to"] = finding.to;
                 return result;
             })}};
}

Json trace(const Reader::Trace& trace, const Reader::MigrationReport& report) {
    Json result;
    result["steps"] = listOf(trace.entries(), [](const Reader::Trace::Entry& entry) {
        Json step{{"place", entry.place},
                  {"class", entry.isRepair ? Json() : Json(entry.className)},
                  {"file", orNull(entry.file)}};
        if (entry.isRepair)
            step["repair"] = entry.className;
        if (!entry.diff.isEmpty())
            step["diff"] = orNull(entry.diff);
        return step;
    });
    result["recovery"] = recoveryAsJson(report.recovery);
    result["repairs"] = repairsAsJson(report.repairs);
    result["log"] = logAsJson(report);
    return result;
}

Json stepList(int from, int to) {
    std::vector<const AdaptorRow*> rows = Reader::stepsFor(Bundle::Backend::Json, from, to);
    const auto others = unnumberedAdaptors();
    rows.insert(rows.end(), others.begin(), others.end());
    return {{"steps", listOf(rows, [](const AdaptorRow* row) {
                 return Json{{"number", row->isStep() ? Json(row->number) : Json()},
                             {"class", row->className},
                             {"forms", formsAsJson(*row)},
                             {"summary", row->summary}};
             })}};
}

Json repairList() {
    return {{"repairs", listOf(Repairs::repairTable(), [](const Repairs::RepairRow& row) {
                 Json forms = Json::array();
                 if (row.hasText())
                     forms.push_back("text");
                 if (row.hasXml())
                     forms.push_back("xml");
                 if (row.hasJson())
                     forms.push_back("json");
                 return Json{
                     {"name", row.name},
                     {"before", listOf(row.places(), [](std::string_view place) { return Json(place); })},
                     {"forms", std::move(forms)},
                     {"summary", row.summary}};
             })}};
}

} // namespace JsonReport
