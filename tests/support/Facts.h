#pragma once

#include "Archive/Internal/StringPtr.h"
#include "Archive/Internal/TreeFacts.h"
#include "Archive/Xml.h"

#include <QDomDocument>

#include <algorithm>
#include <string>

namespace Tests {

template <class List, class OtherList>
bool isSameList(const List& one, const OtherList& other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(), [](const auto& a, const auto& b) {
        return a.element == b.element && a.type == b.type;
    });
}

inline bool showsTypes(const QDomDocument& document) {
    return Archive::Internal::stringPtrAttributes(document) &&
           Archive::Internal::showsTypes(document.documentElement());
}

/// The first difference between the facts and a search of the document; empty if there is none.
inline std::string difference(const Archive::Internal::TreeFacts& facts, const QDomDocument& document) {
    namespace Words = Archive::Words;
    if (facts.archives != Archive::Internal::elements(document, Words::Archive).size())
        return "another number of archives";
    if (!isSameList(*facts.rootObjects, *Archive::Internal::typedElements(document, Words::RootObject)))
        return "other root objects";
    if (!isSameList(*facts.baseParts, *Archive::Internal::typedElements(document, Words::BaseOfObject)))
        return "other base parts";
    const auto greatest = Archive::Internal::searchGreatestId(document);
    if (facts.greatest.has_value() != greatest.has_value() ||
        (greatest && (facts.greatest->id != greatest->id || facts.greatest->holder != greatest->holder)))
        return "another greatest id";
    if (facts.showsTypes && !showsTypes(document))
        return "types that the text does not show";
    QHash<QString, std::size_t> objects;
    Archive::Internal::ElementsByType ofListedTypes = {{Words::StringPtr, {}}, {Words::ClipTiming, {}}};
    const auto count = [&](const QDomElement& e) {
        if (e.hasAttribute(Words::objectId))
            ++objects[Archive::typeOf(e)];
        if (const auto list = ofListedTypes.find(Archive::typeOf(e)); list != ofListedTypes.end())
            list->push_back(e);
    };
    Archive::Internal::walkElements(document, count, [](const QDomElement&) {});
    if (facts.elementsByType != ofListedTypes)
        return "other elements of a type";
    return facts.objectsByType == objects ? std::string() : "other objects";
}

} // namespace Tests
