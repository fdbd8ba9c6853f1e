#include "Adaptors/Project/V53_TrackingLinkAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

namespace Project {

void V53_TrackingLinkAdaptor::convert(ArchiveEditor& archive) {
    for (const QDomElement& timeline : archive.rootObjects("Timeline::Object")) {
        if (childOf(timeline, "trackingLinks").isNull())
            archive.fields(timeline).array("trackingLinks");
    }
}

} // namespace Project
