#include "Report/Verdict.h"

#include "Reader/AdaptorTable.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace Reader::Report {
namespace {

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

const Meaning* find(const LogLine& line) {
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

std::string meaningOf(const LogLine& line) {
    const Meaning* meaning = find(line);
    return meaning ? std::string(meaning->sentence) : std::string();
}

bool isHarmless(const LogLine& line) {
    const Meaning* meaning = find(line);
    return meaning && meaning->isHarmless;
}

bool wouldLose(const MigrationReport& report) {
    return report.hasErrors() || report.hasUnintendedLosses() || report.isFromIncompleteFile();
}

bool isRefused(Strictness strictness, const MigrationReport& report) {
    return strictness != Strictness::None &&
           (wouldLose(report) || (strictness == Strictness::All && !report.losses.empty()));
}

bool isWhole(const MigrationReport& report) {
    return !report.hasHarmfulLosses() && !report.isFromIncompleteFile() &&
           std::all_of(report.log.begin(), report.log.end(),
                       [](const LogLine& line) { return !line.isError() || isHarmless(line); });
}

bool isUpToDate(const Document& document, int to) {
    return document.version() == to && document.isXml() == (to <= lastXmlVersion);
}

} // namespace Reader::Report
