#include "Adaptors/Project/V26_VideoResizeMethodAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

namespace Project {

void V26_VideoResizeMethodAdaptor::convert(ArchiveEditor& archive) {
    for (const QDomElement& video : archive.rootObjects("Video"))
        archive.removeField(video, "resizeMode");
    for (const QDomElement& video : archive.baseParts("Video"))
        archive.removeField(video, "resizeMode");
}

} // namespace Project
