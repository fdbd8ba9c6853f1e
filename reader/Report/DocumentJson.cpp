#include "Reader/AdaptorTable.h"
#include "Reader/Error.h"
#include "Repairs/RepairTable.h"
#include "Report/JsonParts.h"
#include "Report/ReportJson.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Reader::Report {
namespace {

Json formsAsJson(const AdaptorRow& row) {
    Json list = Json::array();
    if (row.hasXml())
        list.push_back("xml");
    if (row.hasJson())
        list.push_back("json");
    return list;
}

Json trackAsJson(const Track& track) {
    return {{"id", idOrNull(track.id)},
            {"kind", nameOf(track.kind)},
            {"muted", track.isMuted},
            {"hidden", track.isHidden}};
}

Json clipAsJson(const TimelineClip& clip) {
    Json effects = Json::array();
    for (const ClipEffect& effect : clip.effects)
        effects.push_back({{"id", effect.id}, {"class", effect.className}, {"name", effect.name}});
    return {{"id", clip.id},
            {"class", clip.className},
            {"name", clip.name},
            {"kind", nameOf(clip.kind)},
            {"track", clip.track},
            {"level", clip.level},
            {"start", clip.start},
            {"duration", clip.duration},
            {"sourceStart", clip.sourceStart},
            {"sourceDuration", clip.sourceDuration},
            {"enabled", clip.isEnabled},
            {"reversed", clip.isReversed},
            {"media", clip.media.empty() ? Json() : Json(clip.media)},
            {"timeline", idOrNull(clip.nested)},
            {"effects", std::move(effects)},
            {"texts", clip.texts}};
}

Json timelineAsJson(const Timeline& timeline) {
    Json tracks = Json::array();
    for (const Track& track : timeline.tracks)
        tracks.push_back(trackAsJson(track));
    Json clips = Json::array();
    for (const TimelineClip& clip : timeline.clips)
        clips.push_back(clipAsJson(clip));
    Json transitions = Json::array();
    for (const TimelineTransition& transition : timeline.transitions)
        transitions.push_back({{"id", transition.id},
                               {"class", transition.className},
                               {"name", transition.name},
                               {"from", idOrNull(transition.from)},
                               {"to", idOrNull(transition.to)},
                               {"duration", transition.duration}});
    const bool hasRate = timeline.frameRate && std::isfinite(*timeline.frameRate);
    return {{"id", timeline.id},
            {"role", nameOf(timeline.role)},
            {"name", timeline.name},
            {"duration", timeline.duration()},
            {"width", orNull(timeline.width)},
            {"height", orNull(timeline.height)},
            {"frameRate", hasRate ? Json(*timeline.frameRate) : Json()},
            {"tracks", std::move(tracks)},
            {"clips", std::move(clips)},
            {"transitions", std::move(transitions)}};
}

Json presenceAsJson(Presence presence) {
    return presence == Presence::Unknown ? Json() : Json(presence == Presence::Present);
}

Json inputAsJson(const ComparedInput& input) {
    return {{"name", FileNames::bytesOf(input.name)},
            {"form", formAsJson(input.form)},
            {"version", orNull(input.version)}};
}

Json differenceAsJson(const Difference& difference) {
    return {{"kind", nameOf(difference.kind)},
            {"clip", difference.clip ? Json{{"name", difference.clip->name}, {"time", difference.clip->start}}
                                     : Json()},
            {"class", difference.className},
            {"name", difference.name},
            {"idBefore", idOrNull(difference.idBefore)},
            {"idAfter", idOrNull(difference.idAfter)},
            {"field", difference.field.empty() ? Json() : Json(difference.field)},
            {"before", difference.before},
            {"after", difference.after}};
}

Json fieldAsJson(const FieldChange& change) {
    Json examples = Json::array();
    for (const FieldChange::Example& example : change.examples)
        examples.push_back(
            {{"id", example.id},
             {"clip", example.clip == 0 ? Json() : Json{{"id", example.clip}, {"name", example.clipName}}},
             {"before", example.before},
             {"after", example.after}});
    return {{"class", change.className},
            {"field", change.field},
            {"change", nameOf(change.kind)},
            {"count", change.count},
            {"examples", std::move(examples)}};
}

Json stepAsJson(const StepEffect& step) {
    Json fields = Json::array();
    for (const FieldChange& change : step.fields)
        fields.push_back(fieldAsJson(change));
    return {{"class", step.className},
            {"summary", step.summary},
            {"added", countsAsJson(step.added)},
            {"removed", countsAsJson(step.removed)},
            {"changed", countsAsJson(step.changed)},
            {"fields", std::move(fields)}};
}

} // namespace

std::vector<const AdaptorRow*> unnumberedAdaptors() {
    std::vector<const AdaptorRow*> rows;
    for (const AdaptorRow& row : adaptorTable()) {
        if (!row.isStep())
            rows.push_back(&row);
    }
    std::sort(rows.begin(), rows.end(),
              [](const AdaptorRow* a, const AdaptorRow* b) { return a->className < b->className; });
    return rows;
}

std::vector<std::string> namesOfStepsToRun(const Document& document) {
    std::vector<std::string> names;
    if (!document.version())
        return names;
    for (const AdaptorRow* step : stepsToRun(document.form(), *document.version(), currentVersion))
        names.emplace_back(step->className);
    return names;
}

std::vector<Finding> ofKind(Fault fault, std::vector<Finding> findings) {
    std::erase_if(findings, [fault](const Finding& finding) { return finding.fault != fault; });
    return findings;
}

int versionToCompare(const ComparedInput& before, const ComparedInput& after) {
    for (const ComparedInput& input : {before, after}) {
        if (!input.version)
            throw Error(ErrorKind::NoVersion, {.file = input.name});
    }
    const int newer = std::max(*before.version, *after.version);
    return before.form == after.form ? newer : std::max(newer, lastXmlVersion + 1);
}

Json info(const Document& document, const std::vector<RepairMade>* repairs) {
    Json result;
    result["form"] = formAsJson(document.form());
    result["version"] = orNull(document.version());
    result["objects"] = countsAsJson(countObjects(document));
    result["clips"] = listOf(listClips(document), listedClipAsJson);
    const auto findings = verify(document);
    result["danglingReferences"] =
        listOf(ofKind(Fault::DanglingReference, findings), [](const Finding& finding) {
            return Json{{"from", finding.id}, {"class", finding.className}, {"to", finding.to}};
        });
    result["duplicateIds"] =
        listOf(ofKind(Fault::DuplicateId, findings), [](const Finding& finding) { return Json(finding.id); });
    result["steps"] = namesOfStepsToRun(document);
    result["repairs"] = repairs ? repairsAsJson(*repairs) : Json();
    return result;
}

Json timelines(const std::vector<Timeline>& timelines, const QString& folder) {
    Json list = Json::array();
    for (const Timeline& timeline : timelines)
        list.push_back(timelineAsJson(timeline));
    Json media = Json::array();
    for (const MediaFile& file : mediaOf(timelines))
        media.push_back({{"path", file.path},
                         {"present", presenceAsJson(presenceOf(file.path, folder))},
                         {"clips", file.clips}});
    return {{"timelines", std::move(list)}, {"media", std::move(media)}};
}

Json findings(const std::vector<Finding>& findings) {
    return {{"findings", listOf(findings, [](const Finding& finding) {
                 Json result = {{"fault", nameOf(finding.fault)}, {"severity", nameOf(finding.severity)},
                                {"class", finding.className},     {"id", finding.id},
                                {"path", finding.path},           {"text", finding.text}};
                 if (finding.to != 0)
                     result["to"] = finding.to;
                 return result;
             })}};
}

Json stepList(int from, int to) {
    std::vector<const AdaptorRow*> rows = stepsFor(Bundle::Backend::Json, from, to);
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

Json comparison(const ComparisonFacts& facts) {
    Json differences = Json::array();
    for (const Difference& difference : facts.differences)
        differences.push_back(differenceAsJson(difference));
    return {{"before", inputAsJson(facts.before)},
            {"after", inputAsJson(facts.after)},
            {"comparedAs", facts.comparedAs ? Json(*facts.comparedAs) : Json()},
            {"differences", std::move(differences)}};
}

Json explanation(const std::vector<StepEffect>& effects, const MigrationReport& report, bool isOneStep) {
    Json steps = Json::array();
    Json unchanged = Json::array();
    for (const StepEffect& step : effects) {
        if (step.changedNothing() && !isOneStep)
            unchanged.push_back(step.className);
        else
            steps.push_back(stepAsJson(step));
    }
    return {{"steps", std::move(steps)},
            {"unchanged", std::move(unchanged)},
            {"recovery", recoveryAsJson(report.recovery)},
            {"repairs", repairsAsJson(report.repairs)}};
}

} // namespace Reader::Report
