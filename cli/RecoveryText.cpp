#include "RecoveryText.h"

#include <algorithm>
#include <sstream>
#include <vector>

using Reader::RecoveredClip;
using Reader::RecoveryReport;
using Terminal::escaped;

namespace {

/// How many findings, and how many clips of a kind, people are shown.
constexpr std::size_t mostLines = 20;

std::string plural(std::size_t count, const std::string& noun) {
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

std::string nameOf(const RecoveredClip& clip) {
    if (!clip.name.empty())
        return '"' + escaped(clip.name) + "\" (id " + std::to_string(clip.id) + ')';
    return clip.id == 0 ? "a clip without a name" : "id " + std::to_string(clip.id);
}

/// "    2 clips are lost: "Beach" (id 4), id 7"
std::string clipsText(const std::vector<RecoveredClip>& clips, const std::string& what) {
    if (clips.empty())
        return {};
    std::string text = "    " + plural(clips.size(), "clip") + ' ' + what + ": ";
    const std::size_t shown = std::min(clips.size(), mostLines);
    for (std::size_t number = 0; number < shown; ++number)
        text += (number == 0 ? "" : ", ") + nameOf(clips[number]);
    if (clips.size() > shown)
        text += ", and " + std::to_string(clips.size() - shown) + " more";
    return text + '\n';
}

void writeDamage(std::ostream& out, const RecoveryReport& report) {
    const std::size_t shown = std::min(report.findings.size(), mostLines);
    for (std::size_t number = 0; number < shown; ++number) {
        const Reader::DamageFinding& finding = report.findings[number];
        out << "    byte " << finding.byte << ", line " << finding.line << ", column " << finding.column
            << ": " << escaped(finding.text) << '\n';
    }
    if (const std::size_t more = report.findings.size() - shown + report.findingsLeftOut; more > 0)
        out << "    and " << plural(more, "place") << " more\n";
}

/// Whether more is wrong than the schema version.
bool isDamaged(const RecoveryReport& report) {
    return !std::all_of(report.findings.begin(), report.findings.end(), [](const auto& finding) {
        return finding.damage == Reader::Damage::Version;
    }) || report.findings.empty();
}

void writeVersion(std::ostream& out, const RecoveryReport& report) {
    if (!report.versionGuess)
        return;
    out << "    schema version " << report.version << " by its content";
    if (report.versionGuess->highest > report.version)
        out << "; it may be up to " << report.versionGuess->highest;
    out << '\n';
    if (report.newerVersion)
        out << "    the file states version " << *report.newerVersion
            << ": a newer editor may have written it, and what that editor added may be lost\n";
    for (const std::string& reason : report.versionGuess->reasons)
        out << "      " << escaped(reason) << '\n';
}

} // namespace

std::string Texts::recovery(const RecoveryReport& report, const Terminal::Colours& colours) {
    std::ostringstream out;
    out << "  " << colours.yellow(isDamaged(report) ? "damaged file" : "schema version missing or wrong")
        << ": " << (report.isComplete() ? "nothing is missing" : "something is missing") << '\n';
    writeDamage(out, report);
    writeVersion(out, report);
    out << "    " << plural(report.objectsWhole, "object") << " whole, " << report.objectsClosed
        << " kept in part, " << report.objectsDropped << " lost, " << report.objectsMade << " made anew\n";
    if (report.referencesCleared + report.entriesDropped > 0)
        out << "    " << plural(report.referencesCleared, "reference") << " to lost objects cleared, "
            << report.entriesDropped << " in lists removed\n";
    if (report.charactersReplaced > 0)
        out << "    " << plural(report.charactersReplaced, "unreadable character") << " replaced by U+FFFD\n";
    out << "    " << plural(report.clipsInPlace, "clip") << " recovered in place\n"
        << clipsText(report.clipsMoved, "recovered at the end of the timeline, because the time is lost")
        << clipsText(report.clipsReduced, "recovered in part, with the scene in it")
        << clipsText(report.clipsLost, "lost");
    return out.str();
}

std::string Texts::recoveryInShort(const RecoveryReport& report) {
    std::string text = isDamaged(report) ? "the file is damaged" : "the schema version is missing or wrong";
    text += ": " + plural(report.clipsKept(), "clip") + (report.clipsKept() == 1 ? " is" : " are") +
            " recoverable";
    if (const std::size_t lost = report.clipsLost.size(); lost > 0)
        text += ", " + std::to_string(lost) + (lost == 1 ? " is" : " are") + " lost";
    else if (!report.isComplete())
        text += ", something else is lost";
    return text;
}
