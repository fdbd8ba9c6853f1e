#pragma once

#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/Outline.h"
#include "Archive/Internal/Walk.h"
#include "support/Facts.h"

#include <QDomDocument>

#include <algorithm>
#include <string>

namespace Tests {

/// Asks an outline for all that it can tell, so that it has to keep it up to date from now on.
inline void fill(Archive::Internal::Outline& outline, const QDomDocument& document) {
    outline.elements(document, Archive::Words::RootObject);
    outline.greatestId();
}

/// What an outline tells otherwise than a search of the document; empty where all is the same.
inline std::string difference(Archive::Internal::Outline& outline, const QDomDocument& document) {
    const auto found = Archive::Internal::search(document, Archive::Words::Archive);
    const auto archive = outline.soleArchive();
    if (archive && (found.size() != 1 || found.front() != *archive))
        return "another Archive";
    for (const QString& tag : {Archive::Words::RootObject, Archive::Words::BaseOfObject}) {
        const auto* known = outline.elements(document, tag);
        if (!known)
            continue;
        const auto sought = Archive::Internal::searchTyped(document, tag);
        if (!isSameList(**known, *sought))
            return "other elements " + tag.toStdString() + ", or other types";
    }
    const auto predeclarations = Archive::Internal::predeclarationsAmong(
        Archive::Internal::typedElements(document, Archive::Words::RootObject));
    const auto records = outline.records(predeclarations);
    const auto items = Archive::Internal::children(predeclarations, Archive::Words::Item);
    const bool areSame =
        std::equal(records->begin(), records->end(), items.begin(), items.end(),
                   [](const auto& record, const QDomElement& item) {
                       const auto fresh = Archive::Internal::recordIn(item);
                       return record.item == fresh.item && record.data == fresh.data && record.id == fresh.id;
                   });
    if (!areSame)
        return "other records";
    for (std::size_t place = 0; place < Archive::Internal::Outline::numberedEntries(predeclarations);
         ++place) {
        if (items.at(place).attribute(Archive::Words::index) != QString::number(place + 1))
            return "other numbers of records";
    }
    if (outline.showsTypes() && !showsTypes(document))
        return "types that are not shown";
    const auto greatest = Archive::Internal::searchGreatestId(document);
    const auto known = outline.greatestId();
    if (known.has_value() != greatest.has_value() || (known && *known != greatest->id))
        return "greatest id " + std::to_string(known.value_or(-1)) + " instead of " +
               std::to_string(greatest ? greatest->id : -1);
    return {};
}

} // namespace Tests
