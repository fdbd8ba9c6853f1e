#pragma once

#include "Archive/Internal/ArchiveEditor.h"
#include "support/Facts.h"

#include <QDomDocument>

#include <algorithm>
#include <set>
#include <string>

namespace Tests {

/// Whether the editor gives the same elements of a listed type as a search, in any order.
inline bool hasAllOfType(Archive::Internal::ArchiveEditor& archive, const QString& type) {
    using namespace Archive::Internal;
    const auto keysOf = [](const Elements& elements) {
        std::multiset<const void*> keys;
        for (const QDomElement& e : elements)
            keys.insert(identityOf(e));
        return keys;
    };
    Elements found;
    const auto enter = [&](const QDomElement& e) {
        if (e.attribute(Words::type) == type)
            found.push_back(e);
    };
    walkElements(archive.document(), enter, [](const QDomElement&) {});
    return keysOf(archive.ofListedType(type)) == keysOf(found);
}

/// Whether the editor gives the same records at any depth as a search, apart from those that declare nothing. If it
/// leaves some out, no other record is of the object 0.
inline bool hasAllRecords(Archive::Internal::ArchiveEditor& archive, const QDomElement& array) {
    using namespace Archive::Internal;
    const RecordList records = archive.recordsAtAnyDepth(array);
    auto record = records.begin();
    bool isOneOfNone = false;
    bool isOneMissing = false;
    for (const QDomElement& item : elements(array, Words::Item)) {
        const Record fresh = recordIn(item);
        if (record != records.end() && record->item == item) {
            if (record->data != fresh.data || record->id != fresh.id)
                return false;
            isOneOfNone = isOneOfNone || record->id == 0;
            ++record;
            continue;
        }
        if (fresh.data.hasChildNodes())
            return false;
        isOneMissing = true;
    }
    return record == records.end() && !(isOneMissing && isOneOfNone);
}

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
    if (!hasAllRecords(archive, array))
        return "other records at any depth";
    for (const QString& type : {Words::StringPtr, Words::ClipTiming}) {
        if (!hasAllOfType(archive, type))
            return "other elements of the type " + type.toStdString();
    }
    if (archive.showsTypes() && !showsTypes(document))
        return "types that the text does not show";
    const long long greatest = Archive::getMaxObjectId(document.toByteArray(1));
    if (const long long known = archive.greatestId(); known != greatest)
        return "greatest id " + std::to_string(known) + " instead of " + std::to_string(greatest);
    return {};
}

} // namespace Tests
