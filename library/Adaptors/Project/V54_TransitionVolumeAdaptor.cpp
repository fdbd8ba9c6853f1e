#include "Adaptors/Project/V54_TransitionVolumeAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

namespace Project {

void V54_TransitionVolumeAdaptor::adapt(QDomDocument& document) {
    // A transition that has a volume already gets a second one: the format never looked.
    for (QDomElement& transition : Archive::Internal::elements(document, Archive::Words::BaseOfObject,
                                                               QStringLiteral("Transition::Object")))
        transition.appendChild(Archive::createInt32(document, QStringLiteral("volume"), 100));
}

} // namespace Project
