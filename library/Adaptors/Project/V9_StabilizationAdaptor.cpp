#include "Adaptors/Project/V9_StabilizationAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"

#include <QHash>

using namespace Archive::Internal;

namespace Project {
namespace {

/// Keyed by the text of the file's id. Quirk: ids are compared as texts here, so "07" is not "7".
using Paths = QHash<QString, QString>;

Paths collectPaths(ArchiveEditor& archive) {
    Paths paths;
    for (const QDomElement& file : archive.rootObjects("File"))
        paths[file.attribute(Words::objectId)] = textOf(firstDescendant(file, "path"));
    return paths;
}

} // namespace

void V9_StabilizationAdaptor::convert(ArchiveEditor& archive) {
    const Paths paths = collectPaths(archive);
    for (const QDomElement& clip : archive.rootObjects("Timeline::Clip")) {
        const QString path = paths.value(textOf(firstDescendant(clip, "file")));
        if (!path.isEmpty())
            archive.fields(clip).stringPtr("pathOriginal", path);
    }
}

} // namespace Project
