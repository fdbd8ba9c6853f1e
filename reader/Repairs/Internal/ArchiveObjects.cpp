#include "Repairs/Internal/ArchiveObjects.h"

#include "Archive/Internal/Reading.h"
#include "Reader/Contents.h"

#include <QSet>

#include <algorithm>

using namespace Archive::Internal;

namespace Repairs {
namespace {

/// The new ids of a copy by the ids of its original.
using NewIds = QHash<long long, long long>;

/// Gives new ids to the objects in an element that is not yet in the tree. A base class part has the id of its object.
NewIds renumber(ArchiveEditor& archive, const QDomElement& top) {
    NewIds ids;
    const auto renumberOne = [&](const QDomElement& e) {
        if (!e.hasAttribute(Words::objectId))
            return;
        const long long id = idOf(e);
        if (!ids.contains(id))
            ids.insert(id, archive.nextId());
        archive.setObjectId(e, ids.value(id));
    };
    renumberOne(top);
    walkElements(top, renumberOne, [](const QDomElement&) {});
    for (const QDomElement& reference : referencesIn(top)) {
        const auto id = ids.constFind(int64Of(reference));
        if (id != ids.constEnd())
            archive.setText(reference, QString::number(*id));
    }
    return ids;
}

/// Declares the objects of a copy as the originals are declared.
void declareCopies(ArchiveEditor& archive, const NewIds& ids) {
    const auto newId = [&](long long id) { return ids.value(id, id); };
    QSet<long long> declared;
    const RecordList records = archive.records(); // a snapshot
    for (const Record& record : records) {
        if (!ids.contains(record.id) || declared.contains(record.id))
            continue;
        declared.insert(record.id);
        QList<long long> refs;
        for (const QDomElement& item : children(record.data.firstChildElement(Words::refs), Words::Item))
            refs.append(newId(int64In(item, Words::Data)));
        archive.declareAs(newId(record.id), Archive::valueOf(record.data, Words::typeName),
                          newId(int64In(record.data, Words::poid)), refs);
    }
}

} // namespace

TypedElements::List projectObjects(ArchiveEditor& archive) {
    TypedElements::List objects;
    for (const auto& object : archive.rootObjects()) {
        if (!Reader::isDeclaring(object.type))
            objects.push_back(object);
    }
    return objects;
}

QHash<unsigned long long, QDomElement> objectsById(ArchiveEditor& archive) {
    QHash<unsigned long long, QDomElement> objects;
    for (const auto& [object, type] : projectObjects(archive))
        objects.insert(Archive::objectIdOf(object), object);
    return objects;
}

void walkProject(ArchiveEditor& archive, const std::function<void(const QDomElement&)>& visit) {
    std::size_t declarators = 0; // that contain the current element
    const auto isLeftOut = [](const QDomElement& e) {
        return e.tagName() == Words::RootRef ||
               (e.tagName() == Words::RootObject && Reader::isDeclaring(Archive::typeOf(e)));
    };
    walkElements(
        archive.root(),
        [&](const QDomElement& e) {
            declarators += isLeftOut(e) ? 1 : 0;
            if (declarators == 0)
                visit(e);
        },
        [&](const QDomElement& e) { declarators -= isLeftOut(e) ? 1 : 0; });
}

Elements referencesIn(const QDomElement& e) {
    Elements references;
    walkElements(
        e,
        [&](const QDomElement& inner) {
            if (Archive::typeOf(inner) == Words::ObjectRef)
                references.push_back(inner);
        },
        [](const QDomElement&) {});
    return references;
}

unsigned long long targetOf(const QDomElement& reference) {
    return textOf(reference).toULongLong();
}

Elements clipItems(const QDomElement& timeline) {
    return children(timeline.firstChildElement("clips"), Words::Item);
}

QList<unsigned long long> clipIds(const QDomElement& timeline) {
    QList<unsigned long long> ids;
    for (const QDomElement& item : clipItems(timeline))
        ids.append(uint64In(item, Words::Key));
    return ids;
}

QDomElement mainTimeline(ArchiveEditor& archive) {
    const Elements timelines = archive.rootObjects("Timeline::Object");
    const auto root = uint64In(archive.root(), Words::RootRef);
    QSet<unsigned long long> nested;
    for (const QDomElement& clip : archive.rootObjects("Timeline::Clip"))
        nested.insert(uint64In(clip, "nestedTimeline"));
    const auto find = [&](auto predicate) {
        const auto found = std::find_if(timelines.begin(), timelines.end(), [&](const QDomElement& timeline) {
            return predicate(Archive::objectIdOf(timeline));
        });
        return found == timelines.end() ? QDomElement() : *found;
    };
    QDomElement main = find([&](unsigned long long id) { return id == root; });
    if (main.isNull())
        main = find([&](unsigned long long id) { return !nested.contains(id); });
    if (main.isNull() && !timelines.empty())
        main = timelines.front();
    return main;
}

QDomElement appendCopy(ArchiveEditor& archive, const QDomElement& object) {
    const QDomElement copy = object.cloneNode(true).toElement();
    const NewIds ids = renumber(archive, copy);
    archive.append(archive.root(), copy);
    declareCopies(archive, ids);
    return copy;
}

void removeItems(ArchiveEditor& archive, const Elements& items) {
    Elements arrays;
    QSet<const void*> known;
    for (const QDomElement& item : items) {
        const QDomElement array = item.parentNode().toElement();
        if (!array.isNull() && !known.contains(identityOf(array))) {
            known.insert(identityOf(array));
            arrays.push_back(array);
        }
        archive.remove(item);
    }
    for (const QDomElement& array : arrays)
        countItems(archive, array);
}

void countItems(ArchiveEditor& archive, const QDomElement& array) {
    const Elements items = children(array, Words::Item);
    for (std::size_t position = 0; position < items.size(); ++position)
        archive.setIndex(items[position], static_cast<long long>(position) + 1);
    archive.setSize(array, static_cast<long long>(items.size()));
}

} // namespace Repairs
