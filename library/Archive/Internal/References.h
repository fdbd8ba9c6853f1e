#pragma once

#include <QDomElement>
#include <QList>

namespace Archive::Internal {

class ArchiveEditor;

/// Appends entries that refer to objects. Quirk: the array is assumed to be empty: `size` and `index` count
/// the new entries only, but old entries stay. To count old entries as well, use
/// ArchiveEditor::appendReference().
void appendUncountedReferences(ArchiveEditor& archive, const QDomElement& array, const QList<long long>& ids);

} // namespace Archive::Internal
