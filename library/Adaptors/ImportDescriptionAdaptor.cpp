#include "Adaptors/ImportDescriptionAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

void ImportDescriptionAdaptor::convert(ArchiveEditor& archive) {
    // A missing `Archive` is not logged: this is a repair and no step of a schema version.
    for (const QDomElement& import : ofType(archive.rootObjects(Scope::Archive), "Import::Object")) {
        // Quirk: one at any depth is enough, also that of an object embedded in the import.
        if (firstDescendant(import, "descriptionUrl").isNull())
            archive.fields(import).string("descriptionUrl", QString());
    }
}
