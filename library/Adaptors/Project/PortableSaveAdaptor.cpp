#include "Adaptors/Project/PortableSaveAdaptor.h"

#include "Archive/Internal/PortablePaths.h"
#include "FS/FS.h"

using Archive::Internal::PathRoots;

namespace Project {
namespace {

QString toPortable(const QString& path, const QString& base, const PathRoots& roots) {
    for (const auto& root : roots) {
        if (FS::isSubPath(root.path, path))
            return FS::normalizedPath(
                FS::joinPath({root.marker, FS::toRelativePath(root.path, path)}, QString()));
    }
    return FS::normalizedPath(FS::toRelativePath(base, path));
}

} // namespace

PortableSaveAdaptor::PortableSaveAdaptor(const QString& location) : m_location(location) {}

PortableSaveAdaptor::PortableSaveAdaptor(const QString& location, const Bundle::PortableFolders& folders)
    : m_location(location), m_folders(folders) {}

void PortableSaveAdaptor::convert(Archive::Internal::FlatEditor& editor) {
    const QString base = FS::absolutePath(m_location);
    const PathRoots roots = Archive::Internal::pathRoots(m_folders);
    Archive::Internal::convertPaths(editor,
                                    [&](const QString& path) { return toPortable(path, base, roots); });
}

} // namespace Project
