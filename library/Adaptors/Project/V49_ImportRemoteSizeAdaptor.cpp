#include "Adaptors/Project/V49_ImportRemoteSizeAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

namespace Project {

void V49_ImportRemoteSizeAdaptor::adapt(QDomDocument& document) {
    // An import that has `remoteSize` already gets a second one: the format never looked.
    for (QDomElement& import : Archive::Internal::rootObjects(document, QStringLiteral("Import::Object")))
        import.appendChild(Archive::createInt64(document, QStringLiteral("remoteSize"), -1));
}

} // namespace Project
