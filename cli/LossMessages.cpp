#include "LossMessages.h"

#include "Phrases.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <string_view>
#include <tuple>
#include <vector>

using Phrases::plural;
using Reader::Loss;
using Reader::PartKind;
using Terminal::Colours;
using Terminal::escaped;

namespace LossMessages {
namespace {

/// "V69" of "V69_RemoveQuizzesAdaptor"; a name without a number as it is.
std::string shortName(const std::string& step) {
    const auto underscore = step.find('_');
    return underscore != std::string::npos && step.starts_with('V') ? step.substr(0, underscore) : step;
}

/// The losses that have a kind, a step and a reason in common, in the order of the first of each.
struct Group {
    const Loss* first;
    std::size_t count;
};

template <class Filter>
std::vector<Group> groupsOf(const std::vector<Loss>& losses, Filter filter) {
    std::vector<Group> groups;
    std::map<std::tuple<PartKind, std::string, std::string>, std::size_t> places;
    for (const Loss& loss : losses) {
        if (!filter(loss))
            continue;
        const auto [place, isNew] =
            places.emplace(std::tuple(loss.part.kind, loss.step, loss.reason), groups.size());
        if (isNew)
            groups.push_back({&loss, 0});
        ++groups[place->second].count;
    }
    return groups;
}

/// "quizzes, V69"
std::string causeOf(const Loss& loss) {
    return (loss.cause.empty() ? loss.reason : loss.cause) +
           (loss.step.empty() ? "" : ", " + shortName(loss.step));
}

/// Of several parts: "it became" is "each became".
std::string causeOf(const Group& group) {
    const std::string cause = causeOf(*group.first);
    constexpr std::string_view one = "it ";
    return group.count > 1 && cause.starts_with(one) ? "each " + cause.substr(one.size()) : cause;
}

std::string partText(const Reader::Part& part) {
    const std::string& name = part.name.empty() ? part.className : part.name;
    return std::string(Reader::nameOf(part.kind)) + ' ' +
           (name.empty() ? std::string("without a name") : '"' + escaped(name) + '"') + " (id " +
           std::to_string(part.id) + ')';
}

/// "removed", for a loss that the version intended.
std::string wordFor(const Loss& loss) {
    return loss.isIntended ? "removed" : loss.wasUsed ? "lost" : "left out";
}

} // namespace

std::string clips(const Reader::MigrationReport& report) {
    std::ostringstream out;
    out << plural(report.clipsBefore, "clip") << ": " << report.clipsKept << " kept";
    const auto isClip = [](const Loss& loss) { return loss.part.kind == PartKind::Clip; };
    for (const Group& group : groupsOf(report.losses, isClip))
        out << ", " << group.count << ' ' << wordFor(*group.first) << " (" << causeOf(group) << ')';
    if (report.clipsAdded > 0)
        out << "; " << report.clipsAdded << " added: " << report.clipsAfter();
    return out.str();
}

std::string loss(const Loss& loss, const Colours& colours) {
    return (loss.wasUsed ? colours.red("lost") : colours.yellow("left out")) + ": " + partText(loss.part) +
           ": " + causeOf(loss) + '\n';
}

std::string losses(const Reader::MigrationReport& report, const Colours& colours) {
    std::ostringstream out;
    for (const Loss& lost : report.losses) {
        if (!lost.isIntended)
            out << "  " << loss(lost, colours);
    }
    const auto isIntendedPart = [](const Loss& lost) {
        return lost.isIntended && lost.part.kind != PartKind::Clip;
    };
    for (const Group& group : groupsOf(report.losses, isIntendedPart))
        out << "  removed: " << plural(group.count, std::string(Reader::nameOf(group.first->part.kind)))
            << ": " << causeOf(group) << '\n';
    return out.str();
}

} // namespace LossMessages
