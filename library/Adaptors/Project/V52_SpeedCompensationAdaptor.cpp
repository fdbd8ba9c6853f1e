#include "Adaptors/Project/V52_SpeedCompensationAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

namespace Project {

void V52_SpeedCompensationAdaptor::adapt(QDomDocument& document) {
    // Only map values are seen, and one that has the flag already gets a second: the format never looked.
    for (QDomElement& timing :
         Archive::Internal::elements(document, Archive::Words::Value, QStringLiteral("Timeline::ClipTiming")))
        timing.appendChild(Archive::createBool(document, QStringLiteral("speedCompensated"), false));
}

} // namespace Project
