#include "Adaptors/Project/V49_ImportRemoteSizeAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

namespace Project {

void V49_ImportRemoteSizeAdaptor::convert(ArchiveEditor& archive) {
    // Quirk: an import that has `remoteSize` gets a second one.
    for (const QDomElement& import : archive.rootObjects("Import::Object"))
        archive.fields(import).int64("remoteSize", -1);
}

} // namespace Project
