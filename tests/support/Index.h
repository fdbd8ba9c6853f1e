#pragma once

#include "Archive/Internal/ArchiveEditor.h"
#include "support/Facts.h"

#include <QDomDocument>

#include <algorithm>
#include <string>

namespace Tests {

/// The first difference between the index of an editor and a search of its document; empty if there is none.
/// Updates the index.
inline std::string indexDifference(Archive::Internal::ArchiveEditor& archive) {
    using namespace Archive::Internal;
    const QDomDocument& document = archive.document();
    const auto archives = elements(document, Words::Archive);
    if (archive.root() != (archives.size() == 1 ? archives.front() : QDomElement()))
        return "another Archive";
    if (!isSameList(archive.rootObjects(Scope::Document), *typedElements(document, Words::RootObject)))
        return "other root objects, or other types";
    if (!isSameList(archive.baseParts(Scope::Document), *typedElements(document, Words::BaseOfObject)))
        return "other base parts, or other types";
    archive.beginStep(Scope::Document);
    const QDomElement array = archive.predeclarations();
    const RecordList records = archive.records();
    const Elements items = children(array, Words::Item);
    const bool areSame =
        std::equal(records.begin(), records.end(), items.begin(), items.end(),
                   [](const Record& record, const QDomElement& item) {
                       const Record fresh = recordIn(item);
                       return record.item == fresh.item && record.data == fresh.data && record.id == fresh.id;
                   });
    if (!areSame)
        return "other records";
    for (std::size_t place = 0; place < archive.numberedRecords(); ++place) {
        if (items.at(place).attribute(Words::index) != QString::number(place + 1))
            return "records with another index";
    }
    if (archive.showsTypes() && !showsTypes(document))
        return "types that the text does not show";
    const long long greatest = Archive::getMaxObjectId(document.toByteArray(1));
    if (const long long known = archive.greatestId(); known != greatest)
        return "greatest id " + std::to_string(known) + " instead of " + std::to_string(greatest);
    return {};
}

} // namespace Tests
