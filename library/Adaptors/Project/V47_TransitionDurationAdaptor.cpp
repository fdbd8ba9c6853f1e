#include "Adaptors/Project/V47_TransitionDurationAdaptor.h"

#include "Archive/Internal/RootObjects.h"
#include "Archive/Xml.h"

namespace Project {

void V47_TransitionDurationAdaptor::adapt(QDomDocument& document) {
    // A part that has a length already gets a second one, and one inside two nested root objects gets two: the
    // format never looked.
    for (QDomElement& part :
         Archive::Internal::partsOfRootObjects(document, QStringLiteral("Transition::Object")))
        part.appendChild(Archive::createInt64(document, QStringLiteral("defaultDuration"), 2000));
}

} // namespace Project
