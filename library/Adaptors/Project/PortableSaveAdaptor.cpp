#include "Adaptors/Project/PortableSaveAdaptor.h"

#include "Archive/Internal/PortablePaths.h"
#include "FS/FS.h"

using Archive::Internal::pathRoots;

namespace Project {
namespace {

QString toPortable(const QString& path, const QString& base) {
    for (const auto& root : pathRoots()) {
        if (FS::isSubPath(root.path, path))
            return FS::normalizedPath(
                FS::joinPath({root.marker, FS::toRelativePath(root.path, path)}, QString()));
    }
    return FS::normalizedPath(FS::toRelativePath(base, path));
}

} // namespace

PortableSaveAdaptor::PortableSaveAdaptor(const QString& location) : m_location(location) {}

void PortableSaveAdaptor::adapt(Serialize::Json::FlatObject& document) {
    const QString base = FS::absolutePath(m_location);
    Archive::Internal::convertPaths(document, [&](const QString& path) { return toPortable(path, base); });
}

} // namespace Project
