#include "Adaptors/Project/V53_TrackingLinkAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

namespace Project {

void V53_TrackingLinkAdaptor::adapt(QDomDocument& document) {
    const QDomElement archive = document.firstChildElement(Archive::Words::Archive);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    const QString trackingLinks = QStringLiteral("trackingLinks");
    for (QDomElement& timeline :
         Archive::Internal::rootObjects(archive, QStringLiteral("Timeline::Object"))) {
        if (timeline.firstChildElement(trackingLinks).isNull())
            timeline.appendChild(Archive::createArray(document, trackingLinks, 0));
    }
}

} // namespace Project
