#include "Summary.h"

#include "LossMessages.h"
#include "Messages.h"
#include "Phrases.h"
#include "RecoveryText.h"
#include "Repairs/RepairTable.h"
#include "Report/ReportJson.h"
#include "Report/Verdict.h"

#include <algorithm>
#include <iomanip>
#include <numeric>
#include <sstream>

using Phrases::classText;
using Phrases::plural;
using Phrases::timeText;
using Reader::AdaptorRow;
using Reader::Report::namesOfStepsToRun;
using Reader::Report::ofKind;
using Reader::Report::unnumberedAdaptors;
using Terminal::Colours;
using Terminal::escaped;

namespace {

std::size_t total(const Reader::ObjectCounts& counts) {
    return std::accumulate(counts.begin(), counts.end(), std::size_t(0),
                           [](std::size_t sum, const auto& entry) { return sum + entry.second; });
}

std::string stateOf(Bundle::Backend form, int version) {
    return Reader::formName(form).toStdString() + " of schema version " + std::to_string(version);
}

/// " (clip "Beach" at 0:00:39.000, Effect::SideBySide, id 12)"
std::string objectText(const Reader::LoggedObject& object) {
    std::string text = " (";
    if (object.clip) {
        text += object.clip->name.empty() ? std::string("a clip without a name")
                                          : "clip \"" + escaped(object.clip->name) + '"';
        text += (object.clip->time ? " at " + timeText(*object.clip->time) : std::string()) + ", ";
    }
    return text + classText(object.className) + ", id " + std::to_string(object.id) + ')';
}

std::string lineText(const Reader::LogLine& line, const Colours& colours) {
    const std::string meaning = Reader::Report::meaningOf(line);
    return (line.isError() ? colours.red("error") : colours.yellow("warning")) + ": " + escaped(line.step) +
           ": " + escaped(line.text) + (line.object ? objectText(*line.object) : std::string()) +
           (meaning.empty() ? "" : ": " + meaning) + '\n';
}

std::string join(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : ", ") + word;
    return text;
}

/// "clips "Beach", "Boat" and 3 more", or the objects where no clips are concerned; empty for neither.
std::string concernedBy(const Reader::RepairMade& repair) {
    constexpr std::size_t mostNames = 5;
    std::vector<std::string> names;
    std::string what = "clip";
    for (const Reader::Part& clip : repair.clips())
        names.push_back(clip.name.empty() ? "id " + std::to_string(clip.id) : '"' + escaped(clip.name) + '"');
    if (names.empty()) {
        what = "object";
        for (const Reader::LoggedObject& object : repair.objects)
            names.push_back(classText(object.className) + " (id " + std::to_string(object.id) + ')');
    }
    for (const Reader::TextPlace& place : repair.places) {
        what = "place";
        names.push_back(std::to_string(place.line) + ':' + std::to_string(place.column) + ' ' +
                        escaped(place.what));
    }
    const std::size_t all = std::max(names.size(), repair.places.empty() ? 0 : repair.count);
    if (all == 0)
        return {};
    names.resize(std::min(names.size(), mostNames));
    return "; " + what + (all == 1 ? " " : "s ") + join(names) +
           (all > names.size() ? " and " + std::to_string(all - names.size()) + " more" : "");
}

/// "second-timelines, before V4: tracks and ..."
std::string repairText(const Reader::RepairMade& repair) {
    return repair.name + ", before " + escaped(repair.before) + ": " + escaped(repair.text) +
           concernedBy(repair);
}

/// The same for a repair that would be made.
std::string neededText(const Reader::RepairMade& repair) {
    return Messages::describe(repair) + concernedBy(repair);
}

std::string formsOf(const Repairs::RepairRow& row) {
    return row.hasText()                   ? "text"
           : row.hasXml() && row.hasJson() ? "XML, JSON"
           : row.hasXml()                  ? "XML"
                                           : "JSON";
}

std::string formsOf(bool hasXml, bool hasJson) {
    return hasXml && hasJson ? "XML, JSON" : hasXml ? "XML" : "JSON";
}

/// A place as people look for it: object, id, and the path in it.
std::string placeOf(const Reader::Finding& finding) {
    return classText(finding.className) + " (id " + std::to_string(finding.id) + ')' +
           (finding.path.empty() ? "" : ' ' + escaped(finding.path));
}

std::string severityText(Reader::Severity severity, const Colours& colours) {
    const std::string name(Reader::nameOf(severity));
    return severity == Reader::Severity::Error     ? colours.red(name)
           : severity == Reader::Severity::Warning ? colours.yellow(name)
                                                   : name;
}

} // namespace

namespace Texts {

std::string summary(const Summary& summary, Detail detail, const Colours& colours) {
    const Reader::MigrationReport& report = summary.report;
    std::ostringstream out;
    if (summary.isUpToDate) {
        out << escaped(summary.input) << ": already at version " << report.to << ", nothing to do\n"
            << (summary.output.isEmpty() ? "" : "  written unchanged: " + escaped(summary.output) + '\n');
        return out.str();
    }
    out << escaped(summary.input) << ": " << stateOf(report.formBefore, report.from) << " -> "
        << stateOf(report.formAfter, report.to) << '\n';
    out << "  steps:   " << report.steps.size() << " run\n";
    if (detail == Detail::Steps)
        out << steps(report);
    if (!report.skipped.empty())
        out << "  " << colours.yellow("warning") << ": " << plural(report.skipped.size(), "step")
            << " skipped, made for archives only: " << join(report.skipped) << '\n';
    out << opening(report, colours);
    for (const Reader::RepairMade& repair : report.repairs)
        out << "  repaired: " << repairText(repair) << '\n';
    for (const Reader::LogLine& line : report.log)
        out << "  " << lineText(line, colours);
    out << "  objects: " << total(report.objectsBefore) << " in, " << total(report.objectsAfter) << " out\n";
    if (report.leftOut > 0)
        out << "  " << plural(report.leftOut, "object") << " left out that nothing refers to\n";
    if (!report.duplicateIds.empty())
        out << "  " << colours.yellow("warning") << ": " << plural(report.duplicateIds.size(), "id")
            << (report.duplicateIds.size() == 1 ? " was" : " were")
            << " used by several objects; the later ones have new ids\n";
    out << "  " << LossMessages::clips(report) << '\n' << LossMessages::losses(report, colours);
    if (!summary.backup.isEmpty())
        out << "  backup:  " << escaped(summary.backup) << '\n';
    if (!summary.output.isEmpty())
        out << "  written: " << escaped(summary.output) << '\n';
    for (const std::string& note : summary.notes)
        out << "  note:    " << escaped(note) << '\n';
    for (const Reader::RepairMade& repair : summary.advice)
        out << "  note:    --repair would help; " << neededText(repair) << '\n';
    return out.str();
}

std::string opening(const Reader::MigrationReport& report, const Colours& colours) {
    return report.recovery ? recovery(*report.recovery, colours) : std::string();
}

std::string repairs(const std::vector<Reader::RepairMade>& repairs) {
    std::string text;
    for (const Reader::RepairMade& repair : repairs)
        text += "repaired: " + repairText(repair) + '\n';
    return text;
}

std::string errors(const Summary& summary, const Colours& colours) {
    const std::string start = escaped(summary.input) + ": ";
    std::string text;
    for (const Reader::LogLine& line : summary.report.log)
        text += line.isError() ? start + lineText(line, colours) : std::string();
    if (summary.report.isFromIncompleteFile())
        text += start + recoveryInShort(*summary.report.recovery) + '\n';
    for (const Reader::Loss& loss : summary.report.losses)
        text += loss.isIntended ? std::string() : start + LossMessages::loss(loss, colours);
    return text;
}

std::string log(const Reader::MigrationReport& report, const Colours& colours) {
    std::string text;
    for (const Reader::LogLine& line : report.log)
        text += lineText(line, colours);
    return text;
}

std::string steps(const Reader::MigrationReport& report) {
    std::string text;
    for (const std::string& step : report.steps)
        text += "           " + step + '\n';
    return text;
}

std::string info(const Reader::Document& document, const QString& name,
                 const std::vector<Reader::RepairMade>* repairs) {
    std::ostringstream out;
    out << escaped(name) << '\n';
    out << "  form:    " << Reader::formName(document.form()).toStdString() << '\n';
    out << "  version: "
        << (document.version() ? std::to_string(*document.version()) : "none; give it with --from N") << '\n';
    const auto counts = Reader::countObjects(document);
    out << "  objects: " << total(counts) << '\n';
    for (const auto& [className, count] : counts)
        out << std::setw(10) << count << "  " << classText(className) << '\n';
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
    if (!repairs)
        return out.str();
    out << "  repairs that it needs: " << repairs->size() << (repairs->empty() ? "" : "; --repair makes them")
        << '\n';
    for (const Reader::RepairMade& repair : *repairs)
        out << "          " << neededText(repair) << '\n';
    return out.str();
}

std::string findings(const std::vector<Reader::Finding>& findings, const QString& name,
                     const Colours& colours) {
    std::ostringstream out;
    out << escaped(name) << ": "
        << (findings.empty() ? std::string("no findings") : plural(findings.size(), "finding")) << '\n';
    for (const Reader::Finding& finding : findings)
        out << "  " << severityText(finding.severity, colours) << ": " << Reader::nameOf(finding.fault)
            << ": " << placeOf(finding) << ": " << escaped(finding.text) << '\n';
    return out.str();
}

std::string trace(const Reader::Trace& trace) {
    std::ostringstream out;
    for (const Reader::Trace::Entry& entry : trace.entries())
        out << std::setw(3) << entry.place << "  " << std::left << std::setw(42)
            << (entry.isRepair ? "repair " : "") + entry.className << std::right
            << (entry.file.isEmpty() ? "changed nothing" : escaped(entry.file)) << '\n';
    return out.str();
}

std::string stepList(int from, int to) {
    std::ostringstream out;
    const auto addRow = [&](const AdaptorRow& row) {
        out << std::left << std::setw(42) << row.className << std::setw(10)
            << formsOf(row.hasXml(), row.hasJson()) << std::right << "  " << row.summary << '\n';
    };
    for (const AdaptorRow* step : Reader::stepsFor(Bundle::Backend::Json, from, to)) {
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

std::string restored(const QString& file, const QString& backup, const QString& kept) {
    const std::string where = kept.isEmpty() ? "" : "\n  what it was: " + escaped(kept);
    return escaped(file) + ": restored from " + escaped(backup) + where + '\n';
}

std::string repairList() {
    std::ostringstream out;
    for (const Repairs::RepairRow& row : Repairs::repairTable()) {
        out << std::left << std::setw(22) << row.name << std::setw(9) << formsOf(row) << std::right << "  "
            << row.summary << '\n';
        std::vector<std::string> places;
        for (const std::string_view place : row.places())
            places.emplace_back(place);
        out << std::string(33, ' ') << "before " << join(places) << '\n';
    }
    return out.str();
}

std::string readingFromTerminal() {
    return "reading the project from the terminal; end with Ctrl-D\n";
}

std::string progress(const std::string& step, std::size_t place, std::size_t total) {
    if (step.empty())
        return plural(total, "step") + " done, saving the result";
    return "step " + std::to_string(place) + " of " + std::to_string(total) + ": " + step;
}

} // namespace Texts
