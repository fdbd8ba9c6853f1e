#include "Adaptors/Project/V58_EffectAuxResourceAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

using namespace Archive::Internal;

namespace Project {

void V58_EffectAuxResourceAdaptor::adapt(QDomDocument& document) {
    for (QDomElement& effect :
         elements(document, Archive::Words::BaseOfObject, QStringLiteral("Effect::Object")))
        effect.appendChild(Archive::createResourceId(document, QStringLiteral("auxResource"), QString(),
                                                     Stored::V57::ResourceType::Unknown));
}

} // namespace Project
