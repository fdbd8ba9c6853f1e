#include "Adaptors/Project/V28_ClipLabelAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

namespace Project {

void V28_ClipLabelAdaptor::convert(ArchiveEditor& archive) {
    // Quirk: a clip that has `labels` already gets a second array.
    for (const QDomElement& clip : archive.rootObjects("Timeline::Clip"))
        archive.fields(clip).array("labels");
}

} // namespace Project
