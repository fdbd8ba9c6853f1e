#include "Adaptors/ImportDescriptionAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

using namespace Archive::Internal;

void ImportDescriptionAdaptor::adapt(QDomDocument& document) {
    const QString descriptionUrl = QStringLiteral("descriptionUrl");
    const QDomElement archive = soleArchive(document);
    if (archive.isNull())
        return; // a repair, not a step: it has never logged
    for (QDomElement& import : rootObjects(archive, QStringLiteral("Import::Object"))) {
        // One at any depth will do, also that of an object embedded in the import.
        if (firstDescendant(import, descriptionUrl).isNull())
            import.appendChild(Archive::createString(document, descriptionUrl, QString()));
    }
}
