#include "Adaptors/Project/V29_ClipTimingModeAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

namespace Project {

void V29_ClipTimingModeAdaptor::adapt(QDomDocument& document) {
    // Only map values are seen, and one that has a mode already gets a second: the format never looked.
    for (QDomElement& timing :
         Archive::Internal::elements(document, Archive::Words::Value, QStringLiteral("Timeline::ClipTiming")))
        timing.appendChild(Archive::createInt32(document, QStringLiteral("timingMode"), 0));
}

} // namespace Project
