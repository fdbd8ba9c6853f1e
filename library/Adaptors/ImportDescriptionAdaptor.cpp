#include "Adaptors/ImportDescriptionAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

void ImportDescriptionAdaptor::convert(ArchiveEditor& archive) {
    // A missing `Archive` is not logged: this adaptor completes older files and belongs to no schema version.
    for (const QDomElement& import : ofType(archive.rootObjects(Scope::Archive), "Import::Object")) {
        // Quirk: a `descriptionUrl` at any depth is enough, also that of an object embedded in the import.
        if (firstDescendant(import, "descriptionUrl").isNull())
            archive.fields(import).string("descriptionUrl", QString());
    }
}
