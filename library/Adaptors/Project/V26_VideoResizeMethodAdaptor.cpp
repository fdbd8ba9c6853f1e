#include "Adaptors/Project/V26_VideoResizeMethodAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

namespace Project {

void V26_VideoResizeMethodAdaptor::adapt(QDomDocument& document) {
    const QString video = QStringLiteral("Video");
    auto objects = Archive::Internal::rootObjects(document, video);
    auto baseParts = Archive::Internal::elements(document, Archive::Words::BaseOfObject, video);
    for (auto* list : {&objects, &baseParts}) {
        for (QDomElement& e : *list)
            Archive::removeFirstChild(e, QStringLiteral("resizeMode"));
    }
}

} // namespace Project
