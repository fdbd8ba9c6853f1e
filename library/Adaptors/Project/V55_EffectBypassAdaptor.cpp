#include "Adaptors/Project/V55_EffectBypassAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

namespace Project {

void V55_EffectBypassAdaptor::adapt(QDomDocument& document) {
    // Every base part of an effect, whatever its class; one that has `bypass` already gets a second.
    for (QDomElement& object : Archive::Internal::elements(document, Archive::Words::BaseOfObject,
                                                           QStringLiteral("Effect::Object")))
        object.appendChild(Archive::createBool(document, QStringLiteral("bypass"), false));
}

} // namespace Project
