#include "Adaptors/Project/V7_PenEnableAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"

using namespace Archive::Internal;

namespace Project {
namespace {

bool hasWidth(const QDomElement& pen) {
    const QDomElement width = firstDescendant(pen, "width");
    // Quirk: the text is compared, not the number, so "0.0" does not count as 0.
    return !width.isNull() && textOf(width) != "0";
}

} // namespace

void V7_PenEnableAdaptor::convert(ArchiveEditor& archive) {
    for (const QDomElement& pen : elements(archive.root(), "outline", "Types::Pen")) {
        if (firstDescendant(pen, "enabled").isNull())
            archive.fields(pen).boolean("enabled", hasWidth(pen));
    }
}

} // namespace Project
