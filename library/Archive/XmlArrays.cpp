#include "Archive/Internal/ArrayItems.h"
#include "Archive/Internal/Count.h"
#include "Archive/Internal/Predeclarations.h"
#include "Archive/Internal/Words.h"
#include "Archive/Xml.h"

#include <vector>

using Archive::Internal::nextId;
using Archive::Internal::plusOne;

namespace Archive {
namespace {

long long sizeOf(const QDomElement& array) {
    return array.attribute(Words::size).toLongLong();
}

void setSize(QDomElement& array, long long size) {
    array.setAttribute(Words::size, QString::number(size));
}

QDomElement takeOrMakeArray(QDomDocument& doc, QDomElement& parent, const QString& name) {
    QDomElement array = parent.firstChildElement(name);
    if (array.isNull()) {
        array = createArray(doc, name, 0);
        if (!parent.isNull())
            parent.appendChild(array);
    }
    return array;
}

QDomElement createRecord(QDomDocument& doc, const QString& typeName, long long id, long long poid,
                         long long& maxId, const QList<long long>& refs) {
    QDomElement record = createObject(doc, Words::Data, Words::Predeclare, nextId(maxId));
    record.appendChild(createString(doc, Words::typeName, typeName));
    record.appendChild(createObjectRef(doc, Words::oid, id));
    record.appendChild(createObjectRef(doc, Words::poid, poid));
    QDomElement list = createArray(doc, Words::refs, refs.size());
    long long index = 0;
    for (const long long target : refs) {
        QDomElement item = createArrayItem(doc, ++index);
        item.appendChild(createObjectRef(doc, Words::Data, target));
        list.appendChild(item);
    }
    record.appendChild(list);
    return record;
}

} // namespace

namespace Internal {

void setIndex(QDomElement& item, long long index) {
    const QString text = QString::number(index);
    if (item.attribute(Words::index) == text)
        return;
    item.setAttribute(Words::index, text);
}

Elements numberItems(QDomElement& array, const std::function<bool(QDomElement&)>& predicate) {
    Elements found;
    long long index = 0;
    for (QDomElement item = array.firstChildElement(Words::Item); !item.isNull();
         item = item.nextSiblingElement(Words::Item)) {
        QDomElement data = item.firstChildElement(Words::Data);
        if (predicate(data))
            found.push_back(item);
        else
            setIndex(item, ++index); // also if nothing is to be removed
    }
    return found;
}

bool removeItems(QDomElement& array, const Elements& items) {
    if (items.empty())
        return false;
    const long long size = sizeOf(array);
    for (const QDomElement& item : items)
        array.removeChild(item);
    // Quirk: the old attribute minus the removals, not a new count: a `size` that was wrong stays wrong.
    setSize(array, static_cast<long long>(static_cast<unsigned long long>(size) - items.size()));
    return true;
}

} // namespace Internal

QDomElement appendArrayElement(QDomDocument& doc, QDomElement& array) {
    const long long size = plusOne(sizeOf(array));
    QDomElement item = createArrayItem(doc, size);
    if (!array.isNull()) {
        array.appendChild(item);
        setSize(array, size);
    }
    return item;
}

QDomElement appendArrayElement(QDomDocument& doc, QDomElement& parent, const QString& name) {
    QDomElement array = takeOrMakeArray(doc, parent, name);
    return appendArrayElement(doc, array);
}

QDomElement prependArrayElement(QDomDocument& doc, QDomElement& array) {
    QDomElement item = createArrayItem(doc, 0);
    if (array.isNull())
        return item;
    const QDomElement first = array.firstChildElement();
    if (first.isNull())
        array.appendChild(item);
    else
        array.insertBefore(item, first);
    setSize(array, plusOne(sizeOf(array)));
    // Quirk: each index is incremented, not numbered anew: gaps stay.
    for (QDomElement e = array.firstChildElement(Words::Item); !e.isNull();
         e = e.nextSiblingElement(Words::Item))
        e.setAttribute(Words::index, QString::number(plusOne(e.attribute(Words::index).toLongLong())));
    return item;
}

QDomElement prependArrayElement(QDomDocument& doc, QDomElement& parent, const QString& name) {
    QDomElement array = takeOrMakeArray(doc, parent, name);
    return prependArrayElement(doc, array);
}

bool removeItemsFromList(QDomElement& array, const std::function<bool(QDomElement&)>& pred) {
    return Internal::removeItems(array, Internal::numberItems(array, pred));
}

long long addPredeclaration(QDomElement& predeclarations, QDomDocument& doc, const QString& typeName,
                            long long poid, long long& maxId, const long long& oid,
                            const QList<long long>& refs) {
    const long long id = oid < 1 ? nextId(maxId) : oid;
    QDomElement record = createRecord(doc, typeName, id, poid, maxId, refs);
    appendArrayElement(doc, predeclarations).appendChild(record);
    return id;
}

bool removePredeclare(QDomElement& predeclarations, long long id) {
    return removeItemsFromList(predeclarations,
                               [id](QDomElement& data) { return Internal::declaredId(data) == id; });
}

} // namespace Archive
