#include "Summary.h"

#include "FileNames.h"
#include "JsonPrinting.h"
#include "Terminal.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iomanip>
#include <numeric>
#include <sstream>

using Json = nlohmann::ordered_json;
using Reader::AdaptorRow;

namespace {

std::size_t total(const Reader::ObjectCounts& counts) {
    return std::accumulate(counts.begin(), counts.end(), std::size_t(0),
                           [](std::size_t sum, const auto& entry) { return sum + entry.second; });
}

std::string stateOf(Bundle::Backend form, int version) {
    return Reader::formName(form).toStdString() + " of schema version " + std::to_string(version);
}

std::string plural(std::size_t count, const std::string& noun) {
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

std::string clipText(const Reader::Clip& clip) {
    return (clip.name.empty() ? std::string("unnamed") : '"' + clip.name + '"') + " (id " +
           std::to_string(clip.id) + ')';
}

std::string join(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : ", ") + word;
    return text;
}

std::string formsOf(bool hasXml, bool hasJson) {
    return hasXml && hasJson ? "XML, JSON" : hasXml ? "XML" : "JSON";
}

Json formsAsJson(bool hasXml, bool hasJson) {
    Json list = Json::array();
    if (hasXml)
        list.push_back("xml");
    if (hasJson)
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

Json formAsJson(Bundle::Backend form) {
    return form == Bundle::Backend::Xml ? "xml" : "json";
}

std::vector<const AdaptorRow*> stepsBetween(int from, int to) {
    return Reader::stepsFor(Bundle::Backend::Json, from, to);
}

/// By class name.
std::vector<const AdaptorRow*> unnumberedAdaptors() {
    std::vector<const AdaptorRow*> rows;
    for (const AdaptorRow& row : Reader::adaptorTable()) {
        if (!row.isStep())
            rows.push_back(&row);
    }
    std::sort(rows.begin(), rows.end(),
              [](const AdaptorRow* a, const AdaptorRow* b) { return a->className < b->className; });
    return rows;
}

std::vector<std::string> namesOfStepsToRun(const Reader::Document& document) {
    std::vector<std::string> names;
    if (!document.version())
        return names;
    for (const AdaptorRow* step :
         Reader::stepsToRun(document.form(), *document.version(), Reader::currentVersion))
        names.emplace_back(step->className);
    return names;
}

/// A place as people look for it: object, id, and the path in it.
std::string placeOf(const Reader::Finding& finding) {
    const std::string name = finding.className.empty() ? "(no class)" : finding.className;
    return name + " (id " + std::to_string(finding.id) + ')' +
           (finding.path.empty() ? "" : ' ' + finding.path);
}

std::vector<Reader::Finding> ofKind(Reader::Fault fault, std::vector<Reader::Finding> findings) {
    std::erase_if(findings, [fault](const Reader::Finding& finding) { return finding.fault != fault; });
    return findings;
}

Json findingAsJson(const Reader::Finding& finding) {
    Json result = {{"fault", Reader::nameOf(finding.fault)},
                   {"class", finding.className},
                   {"id", finding.id},
                   {"path", finding.path},
                   {"text", finding.text}};
    if (finding.to != 0)
        result["to"] = finding.to;
    return result;
}

} // namespace

std::string asText(const Summary& summary) {
    const Reader::MigrationReport& report = summary.report;
    std::ostringstream out;
    out << summary.input.toStdString() << ": " << stateOf(report.formBefore, report.from) << " -> "
        << stateOf(report.formAfter, report.to) << '\n';
    out << "  steps:   " << report.steps.size() << " run\n";
    if (!report.skipped.empty())
        out << "  " << Terminal::yellow("warning") << ": " << plural(report.skipped.size(), "step")
            << " skipped, made for archives only: " << join(report.skipped) << '\n';
    for (const Reader::LogLine& line : report.log)
        out << "  " << (line.isError() ? Terminal::red("error") : Terminal::yellow("warning")) << ": "
            << line.step << ": " << line.text << '\n';
    out << "  objects: " << total(report.objectsBefore) << " in, " << total(report.objectsAfter) << " out\n";
    if (report.leftOut > 0)
        out << "  " << plural(report.leftOut, "object") << " left out that nothing refers to\n";
    if (!report.duplicateIds.empty())
        out << "  " << Terminal::yellow("warning") << ": " << plural(report.duplicateIds.size(), "id")
            << " stood for several objects; the later ones have new ids\n";
    out << "  clips:   " << report.clipsBefore << " in, " << report.clipsAfter << " out\n";
    for (const Reader::Clip& clip : report.lostClips)
        out << "  " << Terminal::red("lost clip") << ": " << clipText(clip) << '\n';
    if (!summary.backup.isEmpty())
        out << "  backup:  " << summary.backup.toStdString() << '\n';
    if (!summary.output.isEmpty())
        out << "  written: " << summary.output.toStdString() << '\n';
    for (const std::string& note : summary.notes)
        out << "  note:    " << note << '\n';
    return out.str();
}

std::string asJson(const Summary& summary) {
    const Reader::MigrationReport& report = summary.report;
    Json result;
    result["input"] = summary.input.toStdString();
    result["output"] = summary.output.isEmpty() ? Json() : Json(summary.output.toStdString());
    result["backup"] = summary.backup.isEmpty() ? Json() : Json(summary.backup.toStdString());
    result["notes"] = summary.notes;
    result["from"] = {{"form", formAsJson(report.formBefore)}, {"version", report.from}};
    result["to"] = {{"form", formAsJson(report.formAfter)}, {"version", report.to}};
    result["steps"] = report.steps;
    result["skipped"] = report.skipped;
    result["log"] = Json::array();
    for (const Reader::LogLine& line : report.log)
        result["log"].push_back(
            {{"step", line.step}, {"severity", line.severity}, {"text", line.text}, {"place", line.place}});
    result["objects"] = {{"in", countsAsJson(report.objectsBefore)},
                         {"out", countsAsJson(report.objectsAfter)},
                         {"leftOut", report.leftOut}};
    result["duplicateIds"] = report.duplicateIds;
    Json lost = Json::array();
    for (const Reader::Clip& clip : report.lostClips)
        lost.push_back({{"id", clip.id}, {"name", clip.name}});
    result["clips"] = {{"in", report.clipsBefore}, {"out", report.clipsAfter}, {"lost", std::move(lost)}};
    return printed(result);
}

std::string infoAsText(const Reader::Document& document, const QString& name) {
    std::ostringstream out;
    out << name.toStdString() << '\n';
    out << "  form:    " << Reader::formName(document.form()).toStdString() << '\n';
    out << "  version: "
        << (document.version() ? std::to_string(*document.version()) : "none; give it with --from N") << '\n';
    const auto counts = Reader::countObjects(document);
    out << "  objects: " << total(counts) << '\n';
    for (const auto& [className, count] : counts)
        out << std::setw(10) << count << "  " << (className.empty() ? "(no class)" : className) << '\n';
    out << "  clips:   " << Reader::listClips(document).size() << '\n';
    const auto findings = Reader::verify(document);
    const auto dangling = ofKind(Reader::Fault::DanglingReference, findings);
    out << "  dangling references: " << dangling.size() << '\n';
    for (const Reader::Finding& finding : dangling)
        out << "          " << placeOf(finding) << " refers to " << finding.to << '\n';
    const auto duplicates = ofKind(Reader::Fault::DuplicateId, findings);
    out << "  duplicate ids: " << duplicates.size() << '\n';
    for (const Reader::Finding& finding : duplicates)
        out << "          " << placeOf(finding) << '\n';
    const auto steps = namesOfStepsToRun(document);
    out << "  steps to version " << Reader::currentVersion << ": " << steps.size() << '\n';
    for (const std::string& step : steps)
        out << "          " << step << '\n';
    return out.str();
}

std::string infoAsJson(const Reader::Document& document, const QString& name) {
    Json result;
    result["file"] = name.toStdString();
    result["form"] = formAsJson(document.form());
    result["version"] = document.version() ? Json(*document.version()) : Json();
    result["objects"] = countsAsJson(Reader::countObjects(document));
    result["clips"] = Json::array();
    for (const Reader::Clip& clip : Reader::listClips(document))
        result["clips"].push_back({{"id", clip.id}, {"name", clip.name}});
    const auto findings = Reader::verify(document);
    result["danglingReferences"] = Json::array();
    for (const Reader::Finding& finding : ofKind(Reader::Fault::DanglingReference, findings))
        result["danglingReferences"].push_back(
            {{"from", finding.id}, {"class", finding.className}, {"to", finding.to}});
    result["duplicateIds"] = Json::array();
    for (const Reader::Finding& finding : ofKind(Reader::Fault::DuplicateId, findings))
        result["duplicateIds"].push_back(finding.id);
    result["steps"] = namesOfStepsToRun(document);
    return printed(result);
}

std::string findingsAsText(const std::vector<Reader::Finding>& findings, const QString& name) {
    std::ostringstream out;
    out << name.toStdString() << ": "
        << (findings.empty() ? std::string("no findings") : plural(findings.size(), "finding")) << '\n';
    for (const Reader::Finding& finding : findings)
        out << "  " << Reader::nameOf(finding.fault) << ": " << placeOf(finding) << ": " << finding.text
            << '\n';
    return out.str();
}

std::string findingsAsJson(const std::vector<Reader::Finding>& findings, const QString& name) {
    Json result;
    result["file"] = name.toStdString();
    result["findings"] = Json::array();
    for (const Reader::Finding& finding : findings)
        result["findings"].push_back(findingAsJson(finding));
    return printed(result);
}

std::string traceAsText(const Reader::Trace& trace) {
    std::ostringstream out;
    for (const Reader::Trace::Entry& entry : trace.entries())
        out << std::setw(3) << entry.place << "  " << std::left << std::setw(42) << entry.className
            << std::right
            << (entry.file.isEmpty() ? std::string("changed nothing") : FileNames::printable(entry.file))
            << '\n';
    return out.str();
}

std::string stepsAsText(int from, int to) {
    std::ostringstream out;
    const auto addRow = [&](const AdaptorRow& row) {
        out << std::left << std::setw(42) << row.className << std::setw(10)
            << formsOf(row.hasXml(), row.hasJson()) << std::right << "  " << row.summary << '\n';
    };
    for (const AdaptorRow* step : stepsBetween(from, to)) {
        out << std::setw(3) << step->number << "  ";
        addRow(*step);
    }
    out << "\nOutside the numbering:\n";
    for (const AdaptorRow* row : unnumberedAdaptors()) {
        out << "     ";
        addRow(*row);
    }
    return out.str();
}

std::string stepsAsJson(int from, int to) {
    Json result = Json::array();
    std::vector<const AdaptorRow*> rows = stepsBetween(from, to);
    const auto others = unnumberedAdaptors();
    rows.insert(rows.end(), others.begin(), others.end());
    for (const AdaptorRow* row : rows)
        result.push_back({{"number", row->isStep() ? Json(row->number) : Json()},
                          {"class", row->className},
                          {"forms", formsAsJson(row->hasXml(), row->hasJson())},
                          {"summary", row->summary}});
    return printed(result);
}
