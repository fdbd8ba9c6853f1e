#include "Adaptors/Project/V25_TransitionTypeResourceAdaptor.h"

#include "Archive/Internal/RootObjects.h"
#include "Archive/Xml.h"

namespace Project {

void V25_TransitionTypeResourceAdaptor::adapt(QDomDocument& document) {
    // A transition outside of root objects is not found, and one inside two nested root objects is found twice
    // and gets both fields twice.
    for (QDomElement& transition :
         Archive::Internal::partsOfRootObjects(document, QStringLiteral("Transition::Object"))) {
        transition.appendChild(Archive::createInt32(document, QStringLiteral("type"), 0));
        transition.appendChild(Archive::createArray(document, QStringLiteral("resources"), 0));
    }
}

} // namespace Project
