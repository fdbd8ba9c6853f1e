#include "Adaptors/Project/PortableLoadAdaptor.h"

#include "Archive/Internal/PortablePaths.h"
#include "FS/FS.h"

using Archive::Internal::PathRoots;

namespace Project {
namespace {

QString toAbsolute(const QString& path, const QString& base, const PathRoots& roots) {
    if (path.isEmpty())
        return path;
    for (const auto& root : roots) {
        if (path.startsWith(root.marker)) {
            QString expanded = path;
            expanded.replace(root.marker, root.path); // Quirk: anywhere, not only at the start
            return FS::absoluteFilePath(expanded);
        }
    }
    return FS::fromRelativePath(base, path);
}

} // namespace

PortableLoadAdaptor::PortableLoadAdaptor(const QString& location) : m_location(location) {}

PortableLoadAdaptor::PortableLoadAdaptor(const QString& location, const Bundle::PortableFolders& folders)
    : m_location(location), m_folders(folders) {}

void PortableLoadAdaptor::convert(Archive::Internal::FlatEditor& editor) {
    const QString base = FS::absolutePath(m_location);
    const PathRoots roots = Archive::Internal::pathRoots(m_folders);
    Archive::Internal::convertPaths(editor,
                                    [&](const QString& path) { return toAbsolute(path, base, roots); });
}

} // namespace Project
