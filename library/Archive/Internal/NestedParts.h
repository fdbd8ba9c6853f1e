#pragma once

// Finding base class parts in root objects that may be nested.

#include "Archive/Internal/Walk.h"

#include <QString>

namespace Archive::Internal {

class ArchiveEditor;

/// The `BaseOfObject` parts of that type in the whole document, in document order. Quirk: each is listed once
/// for each root object that contains it: never outside of root objects, twice in two nested ones.
Elements partsOfRootObjects(ArchiveEditor& archive, const QString& type);

} // namespace Archive::Internal
