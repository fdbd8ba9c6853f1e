#include "Adaptors/Project/V36_UnlimitedIntroAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

namespace Project {

void V36_UnlimitedIntroAdaptor::adapt(QDomDocument& document) {
    for (const QDomElement& clip :
         Archive::Internal::rootObjects(document, QStringLiteral("Timeline::Clip"))) {
        const int type = Archive::valueOf(clip, Archive::Words::type).toInt();
        if (type == 8 || type == 16)
            Archive::setValueOf(clip, QStringLiteral("unlimitedDuration"), QStringLiteral("0"));
    }
}

} // namespace Project
