#include "Adaptors/Project/V17_TitleAdaptorSunLabel.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"

using namespace Archive::Internal;

namespace Project {
namespace {

bool isSunLabel(const QDomElement& preset) {
    return textOf(firstDescendant(preset, "tag")) == "SunLabel";
}

/// Quirk: only the indices change, not the order of the items. A single item gets the index 2.
void exchangeIndices(ArchiveEditor& archive, const QDomElement& preset) {
    const Elements items = elements(preset, Words::Item);
    if (!items.empty())
        archive.setIndex(items[0], 2);
    if (items.size() > 1)
        archive.setIndex(items[1], 1);
}

} // namespace

void V17_TitleAdaptorSunLabel::convert(ArchiveEditor& archive) {
    for (const QDomElement& preset : archive.rootObjects("Overlay::Preset")) {
        if (isSunLabel(preset))
            exchangeIndices(archive, preset);
    }
}

} // namespace Project
