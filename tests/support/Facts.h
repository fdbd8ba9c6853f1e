#pragma once

#include "Archive/Internal/StringPtr.h"
#include "Archive/Internal/TreeFacts.h"
#include "Archive/Xml.h"

#include <QDomDocument>

#include <algorithm>
#include <string>

namespace Tests {

inline bool isSameList(const Archive::Internal::TypedElements::List& one,
                       const Archive::Internal::TypedElements::List& other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(), [](const auto& a, const auto& b) {
        return a.element == b.element && a.type == b.type;
    });
}

inline bool showsTypes(const QDomDocument& document) {
    return Archive::Internal::stringPtrAttributes(document) &&
           Archive::Internal::showsTypes(document.documentElement());
}

/// Where the facts differ from a search of the document; empty where all is the same.
inline std::string difference(const Archive::Internal::TreeFacts& facts, const QDomDocument& document) {
    namespace Words = Archive::Words;
    if (facts.archives != Archive::Internal::search(document, Words::Archive).size())
        return "another number of archives";
    if (!isSameList(*facts.rootObjects, *Archive::Internal::searchTyped(document, Words::RootObject)))
        return "other root objects";
    if (!isSameList(*facts.baseParts, *Archive::Internal::searchTyped(document, Words::BaseOfObject)))
        return "other base parts";
    const auto greatest = Archive::Internal::searchGreatestId(document);
    if (facts.greatest.has_value() != greatest.has_value() ||
        (greatest && (facts.greatest->id != greatest->id || facts.greatest->holder != greatest->holder)))
        return "another greatest id";
    if (facts.showsTypes && !showsTypes(document))
        return "types that are not shown";
    QHash<QString, std::size_t> objects;
    const auto count = [&](const QDomElement& e) {
        if (e.hasAttribute(Words::objectId))
            ++objects[Archive::typeOf(e)];
    };
    Archive::Internal::walkElements(document, count, [](const QDomElement&) {});
    return facts.objectsByType == objects ? std::string() : "other objects";
}

} // namespace Tests
