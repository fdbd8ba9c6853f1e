#include "Adaptors/Project/V51_ClipTrackingAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

namespace Project {

void V51_ClipTrackingAdaptor::adapt(QDomDocument& document) {
    // A clip that has `motionTrackings` already gets a second one: the format never looked.
    for (QDomElement& clip : Archive::Internal::rootObjects(document, QStringLiteral("Timeline::Clip")))
        clip.appendChild(Archive::createArray(document, QStringLiteral("motionTrackings"), 0));
}

} // namespace Project
