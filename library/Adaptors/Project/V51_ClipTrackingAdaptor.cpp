#include "Adaptors/Project/V51_ClipTrackingAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

namespace Project {

void V51_ClipTrackingAdaptor::convert(ArchiveEditor& archive) {
    // Quirk: a clip that has `motionTrackings` gets a second array.
    for (const QDomElement& clip : archive.rootObjects("Timeline::Clip"))
        archive.fields(clip).array("motionTrackings");
}

} // namespace Project
