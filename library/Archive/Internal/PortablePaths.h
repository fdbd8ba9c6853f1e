#pragma once

// Shared code of PortableLoadAdaptor and PortableSaveAdaptor: the folders for path markers, and the fields
// with paths.

#include "Adaptors/PortableFolders.h"

#include <QString>

#include <array>
#include <functional>
#include <optional>

namespace Archive::Internal {

class FlatEditor;

/// A folder of the installed editor and its marker in saved paths.
struct PathRoot {
    QString marker;
    QString path;
};

/// In the order in which they are tried.
using PathRoots = std::array<PathRoot, 3>;

/// The roots of these folders; without folders, of those in the settings at the time of the call.
PathRoots pathRoots(const std::optional<Bundle::PortableFolders>& folders);

/// Replaces the value of every path field of the document by the result of `convert`. The `description` of an
/// import is set to its path. Throws the JSON type error for a path field that is no string.
void convertPaths(FlatEditor& editor, const std::function<QString(const QString&)>& convert);

} // namespace Archive::Internal
