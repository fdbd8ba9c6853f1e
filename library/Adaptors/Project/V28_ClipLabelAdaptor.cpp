#include "Adaptors/Project/V28_ClipLabelAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

namespace Project {

void V28_ClipLabelAdaptor::adapt(QDomDocument& document) {
    // A clip that has `labels` already gets a second one: the format never looked.
    for (QDomElement& clip : Archive::Internal::rootObjects(document, QStringLiteral("Timeline::Clip")))
        clip.appendChild(Archive::createArray(document, QStringLiteral("labels"), 0));
}

} // namespace Project
