#pragma once

// For this project's own use: what the two portable path adaptors share.

#include "Serialize/Json/FlatObject.h"

#include <QString>

#include <array>
#include <functional>

namespace Archive::Internal {

/// A folder of the installed editor and the marker that stands for it in saved paths.
struct PathRoot {
    QString marker;
    QString path;
};

/// The roots as the settings have them now, in the order of lookup.
std::array<PathRoot, 3> pathRoots();

/// Replaces every path field of the document by what `convert` makes of it; the `description` of an import
/// follows its path. Throws the JSON type error for a field that is no string.
void convertPaths(Serialize::Json::FlatObject& document,
                  const std::function<QString(const QString&)>& convert);

} // namespace Archive::Internal
