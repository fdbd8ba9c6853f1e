#include "Archive/Internal/References.h"

#include "Archive/Internal/ArchiveEditor.h"

namespace Archive::Internal {

void appendUncountedReferences(ArchiveEditor& archive, const QDomElement& array,
                               const QList<long long>& ids) {
    if (array.isNull())
        return;
    archive.setSize(array, 0);
    for (const long long id : ids)
        archive.appendReference(array, id);
}

} // namespace Archive::Internal
