#pragma once

#include <QString>

namespace Bundle {

/// Folders of the installed editor. Saved paths below one of them begin with its marker; an empty one has no paths
/// below it, and its marker is replaced by nothing.
///
/// Threads: a plain value.
struct PortableFolders {
    QString packages;      ///< #PACKAGES_ROOT#
    QString aiModels;      ///< #AI_MODELS_ROOT#
    QString downloadables; ///< #DOWNLOADABLE_ROOT#
};

} // namespace Bundle
