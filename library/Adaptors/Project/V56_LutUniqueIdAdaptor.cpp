#include "Adaptors/Project/V56_LutUniqueIdAdaptor.h"

#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

using namespace Archive::Internal;

namespace Project {

void V56_LutUniqueIdAdaptor::adapt(QDomDocument& document) {
    const QString genericLut = QStringLiteral("296139e9-c085-4e73-aacd-df41093c132a");
    const QString uniqueId = QStringLiteral("uniqueId");
    for (const QDomElement& lut : rootObjects(document, QStringLiteral("Effect::Lut"))) {
        const QDomElement effect = innerBase(lut);
        if (Archive::valueOf(effect, uniqueId) == genericLut)
            Archive::setValueOf(effect, uniqueId, Archive::valueOf(lut, QStringLiteral("cubeResourceUuid")));
    }
}

} // namespace Project
