#include "ProjectAdaptors/Version.h"
#include "Report/JsonParts.h"
#include "Report/ReportJson.h"
#include "Report/Verdict.h"

#include <utility>

namespace Reader::Report {
namespace {

Json stateAsJson(Bundle::Backend form, int version, bool hasVersion) {
    return {{"form", formAsJson(form)}, {"version", hasVersion ? Json(version) : Json()}};
}

Json loggedClipAsJson(const LoggedObject& object) {
    if (!object.clip)
        return {};
    return {{"id", object.clip->id}, {"name", object.clip->name}, {"time", orNull(object.clip->time)}};
}

Json logAsJson(const MigrationReport& report) {
    return listOf(report.log, [](const LogLine& line) {
        return Json{{"step", line.step},
                    {"severity", line.severity},
                    {"text", line.text},
                    {"place", line.place},
                    {"object",
                     line.object ? Json{{"class", line.object->className}, {"id", line.object->id}} : Json()},
                    {"clip", line.object ? loggedClipAsJson(*line.object) : Json()},
                    {"meaning", orNull(meaningOf(line))}};
    });
}

Json clipsAsJson(const MigrationReport& report) {
    Json lost = Json::array();
    for (const Loss& loss : report.losses) {
        if (loss.part.kind == PartKind::Clip)
            lost.push_back(listedClipAsJson({loss.part.id, loss.part.name}));
    }
    return {{"in", report.clipsBefore},
            {"kept", report.clipsKept},
            {"removed", report.clipsBefore - report.clipsKept},
            {"added", report.clipsAdded},
            {"out", report.clipsAfter()},
            {"lost", std::move(lost)}};
}

Json lossesAsJson(const MigrationReport& report) {
    return listOf(report.losses, [](const Loss& loss) {
        return Json{
            {"what", nameOf(loss.part.kind)}, {"id", loss.part.id},          {"class", loss.part.className},
            {"name", loss.part.name},         {"clip", loss.part.clip},      {"step", orNull(loss.step)},
            {"reason", loss.reason},          {"intended", loss.isIntended}, {"used", loss.wasUsed}};
    });
}

Json recoveredClipsAsJson(const std::vector<RecoveredClip>& clips) {
    Json list = Json::array();
    for (const RecoveredClip& clip : clips)
        list.push_back({{"id", clip.id}, {"name", clip.name}});
    return list;
}

} // namespace

Json object(const Envelope& envelope, const Json& result) {
    Json all;
    all["format"] = format;
    all["tool"] = {{"name", "adaptors"}, {"version", PROJECT_ADAPTORS_VERSION}};
    all["command"] = orNull(envelope.command);
    all["input"] = orNull(envelope.input);
    all["sha256"] = orNull(envelope.sha256);
    all["seconds"] = orNull(envelope.seconds);
    if (result.is_object())
        all.update(result);
    return all;
}

Json repairsAsJson(const std::vector<RepairMade>& repairs) {
    return listOf(repairs, [](const RepairMade& repair) {
        return Json{
            {"name", repair.name},
            {"before", repair.before},
            {"count", repair.count},
            {"text", repair.text},
            {"objects", listOf(repair.objects,
                               [](const LoggedObject& object) {
                                   return Json{{"class", object.className}, {"id", object.id}};
                               })},
            {"clips",
             listOf(repair.clips(),
                    [](const Part& clip) {
                        return Json{{"id", clip.id}, {"name", clip.name}, {"time", orNull(clip.time)}};
                    })},
            {"places", listOf(repair.places, [](const TextPlace& place) {
                 return Json{{"line", place.line}, {"column", place.column}, {"what", place.what}};
             })}};
    });
}

Json recovery(const RecoveryReport& report) {
    Json findings = Json::array();
    for (const DamageFinding& finding : report.findings)
        findings.push_back({{"damage", nameOf(finding.damage)},
                            {"byte", finding.byte},
                            {"line", finding.line},
                            {"column", finding.column},
                            {"text", finding.text}});
    Json guess;
    if (report.versionGuess)
        guess = {{"highest", report.versionGuess->highest}, {"reasons", report.versionGuess->reasons}};
    return {{"complete", report.isComplete()},
            {"findings", findings},
            {"findingsLeftOut", report.findingsLeftOut},
            {"encoding", report.encoding},
            {"version", report.version},
            {"versionGuess", guess},
            {"newerVersion", report.newerVersion ? Json(*report.newerVersion) : Json()},
            {"objects",
             {{"whole", report.objectsWhole},
              {"inPart", report.objectsClosed},
              {"lost", report.objectsDropped},
              {"made", report.objectsMade}}},
            {"referencesCleared", report.referencesCleared},
            {"entriesRemoved", report.entriesDropped},
            {"predeclarationsMended", report.predeclarationsMended},
            {"countsMended", report.countsMended},
            {"charactersReplaced", report.charactersReplaced},
            {"clips",
             {{"inPlace", report.clipsInPlace},
              {"moved", recoveredClipsAsJson(report.clipsMoved)},
              {"inPart", recoveredClipsAsJson(report.clipsReduced)},
              {"lost", recoveredClipsAsJson(report.clipsLost)}}}};
}

Json recoveryAsJson(const std::optional<RecoveryReport>& report) {
    return report ? recovery(*report) : Json();
}

Json migration(const MigrationFacts& facts) {
    const MigrationReport& report = facts.report;
    Json result;
    result["output"] = orNull(facts.output);
    result["backup"] = orNull(facts.backup);
    result["notes"] = facts.notes;
    result["from"] = stateAsJson(report.formBefore, report.from, facts.hasVersion);
    result["to"] = stateAsJson(report.formAfter, report.to, facts.hasVersion);
    result["steps"] = report.steps;
    result["skipped"] = report.skipped;
    result["log"] = logAsJson(report);
    result["recovery"] = recoveryAsJson(report.recovery);
    result["repairs"] = repairsAsJson(report.repairs);
    result["advice"] = repairsAsJson(facts.advice);
    result["objects"] = {{"in", countsAsJson(report.objectsBefore)},
                         {"out", countsAsJson(report.objectsAfter)},
                         {"leftOut", report.leftOut}};
    result["duplicateIds"] = report.duplicateIds;
    result["clips"] = facts.hasClips ? clipsAsJson(report) : Json();
    result["losses"] = facts.hasClips ? lossesAsJson(report) : Json();
    return result;
}

Json exported(const MigrationFacts& facts, const TimelineExport& result) {
    Json json = migration(facts);
    json.erase("backup");
    json.erase("notes");
    json["export"] = {{"format", "otio"},
                      {"timelines", result.timelines},
                      {"clips", result.clips},
                      {"omissions", listOf(result.omissions, [](const Omission& omission) {
                           return Json{{"kind", nameOf(omission.kind)},
                                       {"timeline", idOrNull(omission.timeline)},
                                       {"id", idOrNull(omission.object)},
                                       {"name", omission.name},
                                       {"detail", omission.detail}};
                       })}};
    return json;
}

Json trace(const Trace& trace, const MigrationReport& report) {
    Json result;
    result["steps"] = listOf(trace.entries(), [](const Trace::Entry& entry) {
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

} // namespace Reader::Report
