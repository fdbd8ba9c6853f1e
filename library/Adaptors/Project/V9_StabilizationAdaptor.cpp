#include "Adaptors/Project/V9_StabilizationAdaptor.h"

#include "Archive/Internal/StringPtr.h"
#include "Archive/Internal/Walk.h"

#include <QHash>

#include <glog/logging.h>

namespace Project {
namespace {

using Archive::Internal::firstDescendant;
using Archive::Internal::rootObjects;

/// Paths by the `objectId` of their files: ids are compared as texts here, so "07" is not "7".
using Paths = QHash<QString, QString>;

QString valueBelow(const QDomElement& e, const QString& tag) {
    return firstDescendant(e, tag).attribute(Archive::Words::value);
}

Paths collectPaths(const QDomElement& archive) {
    Paths paths;
    for (const QDomElement& file : rootObjects(archive, QStringLiteral("File")))
        paths[file.attribute(Archive::Words::objectId)] = valueBelow(file, QStringLiteral("path"));
    return paths;
}

} // namespace

void V9_StabilizationAdaptor::adapt(QDomDocument& document) {
    const QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    const Paths paths = collectPaths(archive);
    for (QDomElement& clip : rootObjects(archive, QStringLiteral("Timeline::Clip"))) {
        const QString path = paths.value(valueBelow(clip, QStringLiteral("file")));
        if (!path.isEmpty())
            clip.appendChild(
                Archive::Internal::createStringPtr(document, QStringLiteral("pathOriginal"), path));
    }
}

} // namespace Project
