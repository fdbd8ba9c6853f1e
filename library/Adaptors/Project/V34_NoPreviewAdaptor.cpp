#include "Adaptors/Project/V34_NoPreviewAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"

using namespace Archive::Internal;

namespace Project {
namespace {

void removePreviewObjects(ArchiveEditor& archive, const QDomElement& top) {
    for (const auto& [object, type] : archive.rootObjects()) {
        if (type != QLatin1String("StaticPreview::ImageObject") &&
            type != QLatin1String("StaticPreview::WaveformObject"))
            continue;
        archive.undeclare(wrappedIdOf(object));
        archive.removeFrom(top, object); // Quirk: an object that is no child of the archive stays
    }
}

} // namespace

void V34_NoPreviewAdaptor::convert(ArchiveEditor& archive) {
    // Quirk: the archive is the document element, also if it contains further ones. A missing one is not
    // logged.
    const QDomElement top = archive.document().firstChildElement(Words::Archive);
    if (top.isNull())
        return;
    removePreviewObjects(archive, top);
    for (const QDomElement& clip : archive.rootObjects("Timeline::Clip"))
        archive.removeField(clip, "preview");
}

} // namespace Project
