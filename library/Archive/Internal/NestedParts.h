#pragma once

// For this project's own use.

#include "Archive/Internal/Walk.h"

#include <QString>

namespace Archive::Internal {

class ArchiveEditor;

/// The `BaseOfObject` parts of that type in the whole document, in document order, each as often as there are root
/// objects around it: none outside of root objects, twice in two nested ones.
Elements partsOfRootObjects(ArchiveEditor& archive, const QString& type);

} // namespace Archive::Internal
