#include "Adaptors/Project/V59_EffectAuxResourceDownloadingAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

using namespace Archive::Internal;

namespace Project {

void V59_EffectAuxResourceDownloadingAdaptor::adapt(QDomDocument& document) {
    for (QDomElement& effect :
         elements(document, Archive::Words::BaseOfObject, QStringLiteral("Effect::Object"))) {
        effect.appendChild(Archive::createString(document, QStringLiteral("location"), QString()));
        effect.appendChild(Archive::createString(document, QStringLiteral("remoteUrl"), QString()));
        effect.appendChild(Archive::createInt64(document, QStringLiteral("remoteSize"), -1));
    }
}

} // namespace Project
