#pragma once

#include <QString>

namespace Bundle {

/// Folders of the installed editor. Saved paths below one of them start with its marker instead. If a folder
/// is empty, no path is below it, and its marker is replaced by an empty text.
///
/// Threads: a plain value.
struct PortableFolders {
    QString packages;      ///< `#PACKAGES_ROOT#`
    QString aiModels;      ///< `#AI_MODELS_ROOT#`
    QString downloadables; ///< `#DOWNLOADABLE_ROOT#`
};

} // namespace Bundle
