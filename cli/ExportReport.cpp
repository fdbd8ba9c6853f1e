#include "ExportReport.h"

#include "Phrases.h"

#include <array>
#include <map>
#include <vector>

using Phrases::inQuotes;
using Reader::Omission;

namespace ExportReport {
namespace {

/// What is said of all omissions of a kind, behind their number.
std::string_view meaningOf(Omission::Kind kind) {
    constexpr std::array<std::string_view, 18> meanings = {
        "clips begin before 0 or too late, and are on no track",
        "clips have a negative duration, and none in the export",
        "clips begin in their source where no number is exact",
        "clips have media whose length no number says exactly",
        "clips have media in a folder of the editor that is not known",
        "clips show a timeline that is missing",
        "clips show a timeline that shows itself",
        "clips show a timeline that is too deep in others",
        "clips show a timeline that is written elsewhere, and not again",
        "transitions join no clips that follow each other",
        "transitions are longer than their clips",
        "tracks with pictures have their sound off",
        "tracks with sound are hidden",
        "clips have labels that are no text",
        "fields of clips are known to this editor only",
        "clips move with others",
        "timelines are shown by no clip",
        "texts had characters that can't be written",
    };
    return meanings[static_cast<std::size_t>(kind)];
}

/// `"Beach" (cropEnvelope)`
std::string subjectText(const Omission& omission) {
    std::string text =
        omission.name.empty() ? "id " + std::to_string(omission.object) : inQuotes(omission.name);
    if (!omission.detail.empty())
        text += " (" + Phrases::shortText(omission.detail) + ')';
    return text;
}

} // namespace

std::string text(const Reader::TimelineExport& result) {
    constexpr std::size_t mostShown = 5;
    std::map<Omission::Kind, std::vector<const Omission*>> kinds;
    for (const Omission& omission : result.omissions)
        kinds[omission.kind].push_back(&omission);
    if (kinds.empty())
        return {};
    std::string out = "not in the words of the format (the metadata have it):\n";
    for (const auto& [kind, omissions] : kinds) {
        out += "  " + std::string(nameOf(kind)) + ", " + std::to_string(omissions.size()) + ": " +
               std::string(meaningOf(kind));
        const std::size_t shown = kind == Omission::Kind::Text ? 0 : std::min(omissions.size(), mostShown);
        for (std::size_t n = 0; n < shown; ++n)
            out += (n == 0 ? ": " : ", ") + subjectText(*omissions[n]);
        if (omissions.size() > mostShown)
            out += " and " + std::to_string(omissions.size() - mostShown) + " more; --json lists all";
        out += '\n';
    }
    return out;
}

} // namespace ExportReport
