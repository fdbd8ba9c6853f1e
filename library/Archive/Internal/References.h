#pragma once

#include <QDomElement>
#include <QList>

namespace Archive::Internal {

class ArchiveEditor;

/// Appends entries that refer to objects to an array that is assumed to be empty: `size` and `index` count the new
/// entries alone, and entries that were there stay. Steps that count the old ones use ArchiveEditor::appendReference().
void appendUncountedReferences(ArchiveEditor& archive, const QDomElement& array, const QList<long long>& ids);

} // namespace Archive::Internal
