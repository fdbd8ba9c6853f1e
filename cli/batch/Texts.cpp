#include "batch/Texts.h"

#include "batch/Settings.h"

#include <QString>

#include <cmath>

namespace Batch::Texts {
namespace {

/// "1 file", "2 files"
std::string counted(qint64 count, const std::string& what) {
    return number(count) + ' ' + what + (count == 1 ? "" : "s");
}

std::string padded(const std::string& text, std::size_t width) {
    return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}

/// What is said of an example: failures name their file.
std::string exampleOf(const Row& row) {
    const bool isNamed = row.reason.find(row.path.toStdString()) != std::string::npos;
    return Terminal::escaped(isNamed ? row.reason : row.path.toStdString());
}

std::string groupsOf(FileState state, const std::vector<State::Group>& groups, const std::string& title) {
    std::string text;
    for (const State::Group& group : groups) {
        if (group.state != state)
            continue;
        if (text.empty())
            text = '\n' + title + ":\n";
        text += padded(number(group.count), 8) + "  " + group.kind + '\n';
        for (const Row& row : group.examples)
            text += std::string(12, ' ') + exampleOf(row) + '\n';
        const auto more = group.count - static_cast<qint64>(group.examples.size());
        if (more > 0)
            text += std::string(12, ' ') + "and " + number(more) + " more\n";
    }
    return text;
}

} // namespace

std::string number(qint64 value) {
    QString digits = QString::number(value);
    for (int place = digits.size() - 3; place > 0; place -= 3)
        digits.insert(place, QLatin1Char(','));
    return digits.toStdString();
}

std::string duration(double seconds) {
    const auto whole = static_cast<qint64>(std::llround(seconds));
    const auto two = [](qint64 value) { return QString::number(value).rightJustified(2, QLatin1Char('0')); };
    const QString minutes = whole >= 3600
                                ? QString::number(whole / 3600) + QLatin1Char(':') + two(whole / 60 % 60)
                                : QString::number(whole / 60);
    return (minutes + QLatin1Char(':') + two(whole % 60)).toStdString();
}

std::string table(State& state, const Terminal::Colours& colours) {
    auto counts = state.counts();
    const auto groups = state.groups();
    const qint64 open = counts[FileState::Waiting] + counts[FileState::Working];
    const qint64 failed = counts[FileState::Failed];
    const qint64 all = counts[FileState::Done] + counts[FileState::Current] + failed + open;
    const auto settings = readSettings(state);
    const char* const done = settings && settings->isCheck() ? " to be migrated, " : " done, ";
    std::string text = counted(all, "project") + ": " + number(counts[FileState::Done]) + done +
                       number(counts[FileState::Current]) + " current already, ";
    const std::string failures = number(failed) + " failed";
    text += failed > 0 ? colours.red(failures) : failures;
    if (open > 0)
        text += ", " + number(open) + " not done yet";
    text += '\n';
    if (counts[FileState::Skipped] > 0)
        text += counted(counts[FileState::Skipped], "other file") + " passed over\n";
    return text + groupsOf(FileState::Failed, groups, "failed") + groupsOf(FileState::Done, groups, "done") +
           groupsOf(FileState::Skipped, groups, "passed over");
}

JsonReport::Json tableAsJson(State& state) {
    using JsonReport::Json;
    Json counts = Json::object();
    auto known = state.counts();
    for (const FileState each : {FileState::Waiting, FileState::Working, FileState::Done, FileState::Failed,
                                 FileState::Skipped, FileState::Current})
        counts[std::string(nameOf(each))] = known[each];
    Json reasons = Json::array();
    for (const State::Group& group : state.groups()) {
        Json examples = Json::array();
        for (const Row& row : group.examples)
            examples.push_back({{"path", row.path.toStdString()}, {"reason", row.reason}});
        reasons.push_back({{"state", std::string(nameOf(group.state))},
                           {"kind", group.kind},
                           {"count", group.count},
                           {"examples", std::move(examples)}});
    }
    return {{"counts", std::move(counts)}, {"reasons", std::move(reasons)}};
}

JsonReport::Json tallyAsJson(const Tally& tally) {
    return {{"total", tally.total},   {"migrated", tally.migrated},     {"current", tally.current},
            {"failed", tally.failed}, {"incomplete", tally.incomplete}, {"kept", tally.kept}};
}

} // namespace Batch::Texts
