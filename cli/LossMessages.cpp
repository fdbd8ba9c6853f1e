#include "LossMessages.h"

#include "Phrases.h"

#include <algorithm>
#include <array>
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

/// What a line of a step means.
struct Meaning {
    std::string_view start; ///< of the line's text
    bool isHarmless;        ///< the result is whole all the same
    std::string_view sentence;
};

constexpr std::array meanings = {
    Meaning{"Need quiz overlay preset", true,
            "the quiz of this clip has no content; projects have no quizzes from version 69 on"},
    Meaning{"Quiz question not found", true,
            "a question of this quiz can't be read; projects have no quizzes from version 69 on"},
    Meaning{"Can not file composition object", true,
            "the markers of this file are missing already; projects have none from version 24 on"},
    Meaning{"Not found timeline <clips> element", true, "this timeline has no clips"},
    Meaning{"Not found timeline primary track", false,
            "the transitions of this timeline are left out, since it has no main track"},
    Meaning{"Not found element for timeline clip", false,
            "no transition of the project is converted, since a timeline lists a clip that is not there"},
    Meaning{"Predeclaration <Data> element is null", true, "the list of objects has an empty entry"},
    Meaning{"Not found timeline predeclarator element", true,
            "the list of objects does not name this timeline"},
    Meaning{"PiP adaptor: Non-zero fades", false,
            "this picture in picture no longer fades in and out, it appears and disappears at once"},
    Meaning{"Can not parse mode of SideBySide", true,
            "this side-by-side effect shows its picture on the left now"},
    Meaning{"Unexpected SideBySide mode", true, "this side-by-side effect shows its picture on the left now"},
    Meaning{"Can't adapt user collection", true, "the project gets no collection of its own"},
    Meaning{"Cannot find predeclaration", true, "the list of objects does not name a frame of this mask"},
    Meaning{"side file", false, "a text of a title is not where the project says; see the reason"},
    Meaning{"SVG", true, "the drawing of this title is left as it was"},
    Meaning{"conditional timing refers to itself", true, "the animation of this title may be shorter"},
    Meaning{"gradients stand too deep", true, "the drawing of this title may have other colours"},
    Meaning{"<Archive> element not found", false, "the step was left out"},
};

const Meaning* find(const Reader::LogLine& line) {
    // A text that can't be written to a side file stays inside the document.
    static constexpr Meaning unwritten{"side file", true, "the text of this title stays inside the project"};
    if (line.step == "OverlayFileContentWriteAdaptor" && line.text.starts_with(unwritten.start))
        return &unwritten;
    const auto found = std::find_if(meanings.begin(), meanings.end(), [&](const Meaning& meaning) {
        return line.text.starts_with(meaning.start);
    });
    return found == meanings.end() ? nullptr : &*found;
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

std::string meaningOf(const Reader::LogLine& line) {
    const Meaning* meaning = find(line);
    return meaning ? std::string(meaning->sentence) : std::string();
}

bool isHarmless(const Reader::LogLine& line) {
    const Meaning* meaning = find(line);
    return meaning && meaning->isHarmless;
}

} // namespace LossMessages
