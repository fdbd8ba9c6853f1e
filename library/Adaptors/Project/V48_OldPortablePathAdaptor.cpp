#include "Adaptors/Project/V48_OldPortablePathAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

namespace Project {
namespace {

struct PathField {
    const char* type;
    const char* field;
};

constexpr PathField pathFields[] = {
    {"File", "path"},
    {"Import::Object", "location"},
    {"Stabilization::Object", "pathOriginal"},
    {"Stabilization::Object", "pathStabilized"},
};

QString portablePathOf(const QDomElement& field) {
    const QString path = field.attribute("portablePath");
    return path.startsWith("/media/") ? '.' + path : path;
}

/// Sets the path fields of an object to their portable paths. Returns whether there was any.
bool convertPaths(ArchiveEditor& archive, const QDomElement& object, const QString& type) {
    bool isPortable = false;
    for (const PathField& row : pathFields) {
        if (type != QLatin1String(row.type))
            continue;
        const QDomElement field = object.firstChildElement(row.field);
        const QString path = portablePathOf(field);
        if (path.isEmpty())
            continue;
        archive.setText(field, path);
        if (type == QLatin1String("Import::Object"))
            archive.setField(object, "description", path);
        isPortable = true;
    }
    return isPortable;
}

} // namespace

void V48_OldPortablePathAdaptor::convert(ArchiveEditor& archive) {
    bool isPortable = false;
    for (const auto& [object, type] : archive.rootObjects())
        isPortable = convertPaths(archive, object, type) || isPortable;
    archive.fields(archive.lastRootObject("Project::Content")).boolean("portable", isPortable);
}

} // namespace Project
