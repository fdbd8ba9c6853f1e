#include "Adaptors/Project/V15_SvgRetainFeatureAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"

using namespace Archive::Internal;

namespace Project {
namespace {

void retainGradient(ArchiveEditor& archive, const QDomElement& item) {
    const QDomElement text = firstDescendant(item, "text");
    QString svg = textOf(text);
    // Quirk: the new name contains the old one, so a text that already has the new name gets the word a
    // second time.
    if (svg.contains("gradient_solid_white"))
        archive.setText(text, svg.replace("gradient_solid_white", "gradient_solid_white_retain"));
}

} // namespace

void V15_SvgRetainFeatureAdaptor::convert(ArchiveEditor& archive) {
    for (const QDomElement& preset : archive.rootObjects("Overlay::Preset")) {
        // Quirk: every element in the array counts as an item, with any tag.
        for (const QDomElement& item : children(firstDescendant(preset, "items"), QString()))
            retainGradient(archive, item);
    }
}

} // namespace Project
