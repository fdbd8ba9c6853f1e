#include "Adaptors/Project/V37_UnusedBlindsAndRippleParamsAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

namespace Project {

void V37_UnusedBlindsAndRippleParamsAdaptor::adapt(QDomDocument& document) {
    for (auto [object, type] : Archive::Internal::typedElements(document, Archive::Words::RootObject)) {
        if (type == QLatin1String("Transition::Ripple"))
            Archive::removeFirstChild(object, QStringLiteral("ampMode"));
        else if (type == QLatin1String("Transition::Blinds"))
            Archive::removeFirstChild(object, QStringLiteral("mode"));
    }
}

} // namespace Project
