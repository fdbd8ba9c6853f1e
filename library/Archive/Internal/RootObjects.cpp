#include "Archive/Internal/RootObjects.h"

#include "Archive/Xml.h"

#include <optional>

namespace Archive::Internal {
namespace {

/// The parts found one by one; nothing where the document is too deep for that.
std::optional<Elements> partsByTheirAncestors(const Elements& baseParts) {
    std::size_t hopsLeft = mostHops(baseParts.size());
    Elements parts;
    for (const QDomElement& part : baseParts) {
        for (QDomNode around = part.parentNode(); !around.isNull(); around = around.parentNode()) {
            if (hopsLeft-- == 0)
                return std::nullopt;
            if (around.nodeName() == Words::RootObject)
                parts.push_back(part);
        }
    }
    return parts;
}

Elements partsInOneWalk(const QDomDocument& document, const QString& type) {
    Elements parts;
    std::size_t openRootObjects = 0;
    walkElements(
        document,
        [&](const QDomElement& e) {
            if (e.tagName() == Words::RootObject)
                ++openRootObjects;
            else if (e.tagName() == Words::BaseOfObject && typeOf(e) == type)
                parts.insert(parts.end(), openRootObjects, e);
        },
        [&](const QDomElement& e) {
            if (e.tagName() == Words::RootObject)
                --openRootObjects;
        });
    return parts;
}

} // namespace

Elements partsOfRootObjects(ArchiveEditor& archive, const QString& type) {
    const auto parts = partsByTheirAncestors(ofType(archive.baseParts(Scope::Document), type));
    return parts ? *parts : partsInOneWalk(archive.document(), type);
}

Elements partsOfRootObjects(const QDomDocument& document, const QString& type) {
    const auto parts = partsByTheirAncestors(elements(document, Words::BaseOfObject, type));
    return parts ? *parts : partsInOneWalk(document, type);
}

NewRootObject declareRootObject(QDomDocument& doc, QDomElement& predeclarations, const QString& type,
                                long long& maxId, const QList<long long>& refs) {
    const long long id = addPredeclaration(predeclarations, doc, type, 0, maxId, -1, refs);
    return {createObject(doc, Words::RootObject, type, id), id};
}

} // namespace Archive::Internal
