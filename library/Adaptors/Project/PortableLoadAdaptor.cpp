#include "Adaptors/Project/PortableLoadAdaptor.h"

#include "Archive/Internal/PortablePaths.h"
#include "FS/FS.h"

using Archive::Internal::pathRoots;

namespace Project {
namespace {

QString toAbsolute(const QString& path, const QString& base) {
    if (path.isEmpty())
        return path;
    for (const auto& root : pathRoots()) {
        if (path.startsWith(root.marker)) {
            QString expanded = path;
            expanded.replace(root.marker, root.path); // wherever it stands, not only in front
            return FS::absoluteFilePath(expanded);
        }
    }
    return FS::fromRelativePath(base, path);
}

} // namespace

PortableLoadAdaptor::PortableLoadAdaptor(const QString& location) : m_location(location) {}

void PortableLoadAdaptor::adapt(Serialize::Json::FlatObject& document) {
    const QString base = FS::absolutePath(m_location);
    Archive::Internal::convertPaths(document, [&](const QString& path) { return toAbsolute(path, base); });
}

} // namespace Project
