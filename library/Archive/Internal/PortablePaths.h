#pragma once

// For this project's own use: what the two portable path adaptors share.

#include "Adaptors/PortableFolders.h"
#include "Serialize/Json/FlatObject.h"

#include <QString>

#include <array>
#include <functional>
#include <optional>

namespace Archive::Internal {

/// A folder of the installed editor and its marker in saved paths.
struct PathRoot {
    QString marker;
    QString path;
};

/// In the order of lookup.
using PathRoots = std::array<PathRoot, 3>;

/// The roots of these folders, or of those that the settings have now.
PathRoots pathRoots(const std::optional<Bundle::PortableFolders>& folders);

/// Replaces every path field of the document by what `convert` makes of it; the `description` of an import
/// follows its path. Throws the JSON type error for a field that is no string.
void convertPaths(Serialize::Json::FlatObject& document,
                  const std::function<QString(const QString&)>& convert);

} // namespace Archive::Internal
