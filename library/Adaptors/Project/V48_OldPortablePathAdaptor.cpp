#include "Adaptors/Project/V48_OldPortablePathAdaptor.h"

#include "Archive/Internal/Outline.h"
#include "Archive/Internal/RootObjects.h"
#include "Archive/Xml.h"

using namespace Archive::Internal;
namespace Words = Archive::Words;

namespace Project {
namespace {

struct PathField {
    const char* type;
    const char* field;
};

// clang-format off
constexpr PathField pathFields[] = {
    {"File", "path"},
    {"Import::Object", "location"},
    {"Stabilization::Object", "pathOriginal"},
    {"Stabilization::Object", "pathStabilized"},
};
// clang-format on

QString portablePathOf(const QDomElement& field) {
    const QString media = QStringLiteral("/media/");
    const QString path = field.attribute(QStringLiteral("portablePath"));
    return path.startsWith(media) ? QLatin1Char('.') + path : path;
}

/// Gives the number of paths that were set.
int settlePaths(const QDomElement& object, const QString& type) {
    int settled = 0;
    for (const PathField& row : pathFields) {
        if (type != QLatin1String(row.type))
            continue;
        QDomElement field = object.firstChildElement(QLatin1String(row.field));
        const QString path = portablePathOf(field);
        if (path.isEmpty())
            continue;
        field.setAttribute(Words::value, path);
        Archive::Internal::Outline::wrote(path);
        if (type == QLatin1String("Import::Object"))
            Archive::setValueOf(object, QStringLiteral("description"), path);
        ++settled;
    }
    return settled;
}

} // namespace

void V48_OldPortablePathAdaptor::adapt(QDomDocument& document) {
    const auto objects = Archive::Internal::typedElements(document, Words::RootObject);
    int settled = 0;
    for (const auto& [object, type] : objects)
        settled += settlePaths(object, type);
    QDomElement content = lastOfType(objects, QStringLiteral("Project::Content"));
    if (!content.isNull())
        content.appendChild(Archive::createBool(document, QStringLiteral("portable"), settled > 0));
}

} // namespace Project
