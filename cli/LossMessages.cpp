#include "LossMessages.h"

#include "Terminal.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <tuple>
#include <vector>

using Json = nlohmann::ordered_json;
using Reader::Loss;
using Reader::PartKind;

namespace Losses {
namespace {

std::string plural(std::size_t count, const std::string& noun) {
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

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

/// "quizzes are no longer a part of projects, V69"
std::string causeOf(const Loss& loss) {
    return loss.reason + (loss.step.empty() ? "" : ", " + shortName(loss.step));
}

std::string partText(const Loss& loss) {
    const std::string& name = loss.part.name.empty() ? loss.part.className : loss.part.name;
    return std::string(Reader::nameOf(loss.part.kind)) + ' ' +
           (name.empty() ? std::string("without a name") : '"' + name + '"') + " (id " +
           std::to_string(loss.part.id) + ')';
}

} // namespace

std::string clipsAsText(const Reader::MigrationReport& report) {
    std::ostringstream out;
    out << plural(report.clipsBefore, "clip") << ": " << report.clipsKept << " kept";
    const auto isClip = [](const Loss& loss) { return loss.part.kind == PartKind::Clip; };
    for (const Group& group : groupsOf(report.losses, isClip))
        out << ", " << group.count << (group.first->isIntended ? " removed (" : " lost (")
            << causeOf(*group.first) << ')';
    if (report.clipsAdded > 0)
        out << "; " << report.clipsAdded << " added: " << report.clipsAfter();
    return out.str();
}

std::string lossesAsText(const Reader::MigrationReport& report) {
    std::ostringstream out;
    for (const Loss& loss : report.losses) {
        if (!loss.isIntended)
            out << "  " << Terminal::red("lost") << ": " << partText(loss) << ": " << causeOf(loss) << '\n';
    }
    const auto isIntendedPart = [](const Loss& loss) {
        return loss.isIntended && loss.part.kind != PartKind::Clip;
    };
    for (const Group& group : groupsOf(report.losses, isIntendedPart))
        out << "  removed: " << plural(group.count, std::string(Reader::nameOf(group.first->part.kind)))
            << ": " << causeOf(*group.first) << '\n';
    return out.str();
}

Json clipsAsJson(const Reader::MigrationReport& report) {
    Json lost = Json::array();
    for (const Loss& loss : report.losses) {
        if (loss.part.kind == PartKind::Clip)
            lost.push_back({{"id", loss.part.id}, {"name", loss.part.name}});
    }
    return {{"in", report.clipsBefore},
            {"kept", report.clipsKept},
            {"removed", report.clipsBefore - report.clipsKept},
            {"added", report.clipsAdded},
            {"out", report.clipsAfter()},
            {"lost", std::move(lost)}};
}

Json lossesAsJson(const Reader::MigrationReport& report) {
    Json list = Json::array();
    for (const Loss& loss : report.losses)
        list.push_back({{"what", Reader::nameOf(loss.part.kind)},
                        {"id", loss.part.id},
                        {"class", loss.part.className},
                        {"name", loss.part.name},
                        {"clip", loss.part.clip},
                        {"step", loss.step.empty() ? Json() : Json(loss.step)},
                        {"reason", loss.reason},
                        {"intended", loss.isIntended}});
    return list;
}

} // namespace Losses
