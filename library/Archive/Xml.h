#pragma once

#include "MTime/MTime.h"
#include "Stored/V14/Transform.h"
#include "Stored/V57/ResourceType.h"

#include <QByteArray>
#include <QDomDocument>
#include <QList>
#include <QString>

#include <concepts>
#include <functional>

/// Free functions on the XML archive. None inserts what it creates unless it says so: the caller appends it.
/// None logs or throws; a null element in goes through as a null element or an empty text, and a number that
/// can't be read counts as 0 where no fallback is given.
namespace Archive {

// Creating elements.

QDomElement createArray(QDomDocument& doc, const QString& name, long long size);
QDomElement createArrayItem(QDomDocument& doc, long long index);
QDomElement createBool(QDomDocument& doc, const QString& name, bool value);
QDomElement createInt32(QDomDocument& doc, const QString& name, int value);
QDomElement createUInt32(QDomDocument& doc, const QString& name, unsigned int value);
QDomElement createInt64(QDomDocument& doc, const QString& name, long long value);
QDomElement createUInt64(QDomDocument& doc, const QString& name, unsigned long long value);
QDomElement createDouble(QDomDocument& doc, const QString& name, double value);
QDomElement createMTime(QDomDocument& doc, const QString& name, MTime value);
QDomElement createString(QDomDocument& doc, const QString& name, const QString& value);
QDomElement createImageRef(QDomDocument& doc, const QString& name, const QString& ref);
QDomElement createObjectRef(QDomDocument& doc, const QString& name, long long id);
QDomElement createObject(QDomDocument& doc, const QString& name, const QString& type, long long id);
QDomElement createTypeValue(QDomDocument& doc, const QString& name, const QString& type,
                            const QString& value);

/// An array of two: the identifier as "String" and the type as "int32_t".
QDomElement createResourceId(QDomDocument& doc, const QString& name, const QString& id,
                             Stored::V57::ResourceType type);

/// An object element that holds `value`.
template <class T>
QDomElement value2element(QDomDocument& doc, const QString& name, const T& value, long long id);

/// A "Types::Transform" with "m11" to "m33". Their readable `value` has four decimals.
template <>
QDomElement value2element<Stored::V14::Transform>(QDomDocument& doc, const QString& name,
                                                  const Stored::V14::Transform& transform, long long id);

// Reading and writing single values.

QString typeOf(const QDomElement& e);
unsigned long long objectIdOf(const QDomElement& e);
QString valueOf(const QDomElement& parent, const QString& name);
QString refOf(const QDomElement& parent, const QString& name);
void setValueOf(const QDomElement& parent, const QString& name, const QString& value);

/// `text` as a decimal number, or `fallback`.
long long extractValue(const QString& text, long long fallback);
/// The same with any other integer, such as the std::int64_t of MTime::count().
template <std::integral T>
long long extractValue(const QString& text, T fallback) {
    return extractValue(text, static_cast<long long>(fallback));
}
MTime extractValue(const QString& text, MTime fallback);

/// The double in a `binaryData` text. Too short a text reads as 0.0; `fallback` stands in for an infinity.
double extractValue(const QString& text, double fallback);

/// The double of an element of type "double", from `binaryData` alone; `fallback` for any other type.
double readValue(const QDomElement& e, double fallback);

/// The `binaryData` text of a double; an infinity is written as 0.0.
QString serializeValue(double value);
void writeValue(QDomElement& e, double value);

// Finding and walking.

/// The first direct child element `name` for which `pred` holds, or a null element.
QDomElement findChild(const QDomElement& e, const QString& name,
                      const std::function<bool(const QDomElement&)>& pred);
bool hasChild(const QDomElement& e, const QString& name, const std::function<bool(const QDomElement&)>& pred);

/// The innermost base class part: down the first `BaseOfObject` children; `e` itself where there is none.
QDomElement findRootBaseOfObject(const QDomElement& e);

/// The first `RootObject` of that id. A linear walk: build a map for many lookups.
QDomElement findRootObject(QDomDocument& doc, long long id);

/// `fn` on each descendant `name`. The length of the list is read once, and the list is live: elements of the
/// tag that `fn` adds or removes shift what later numbers fetch.
void forEachChild(QDomDocument& doc, const QString& name, const std::function<void(QDomElement&)>& fn);
void forEachChild(QDomElement& e, const QString& name, const std::function<void(QDomElement&)>& fn);

/// `fn` on the `Data` of each `Item`, a null element where an item has none. `fn` must not remove its `Item`.
void iterateArray(const QDomElement& array, const std::function<void(QDomElement&)>& fn);

void removeFirstChild(QDomElement& e, const QString& name);

/// The greatest `objectId` in a document's text, at least 1. Reading stops at the first error.
long long getMaxObjectId(const QByteArray& documentText);

// Keeping arrays and predeclarations.

/// Adds an empty `Item` at the end and counts `size` up. The forms with a name make a missing array.
QDomElement appendArrayElement(QDomDocument& doc, QDomElement& array);
QDomElement appendArrayElement(QDomDocument& doc, QDomElement& parent, const QString& name);

/// The same at the front; every `index` moves up by one.
QDomElement prependArrayElement(QDomDocument& doc, QDomElement& array);
QDomElement prependArrayElement(QDomDocument& doc, QDomElement& parent, const QString& name);

/// Removes the items whose `Data` fulfils `pred`, renumbers the others from 1 and counts `size` down. True if
/// anything went.
bool removeItemsFromList(QDomElement& array, const std::function<bool(QDomElement&)>& pred);

/// Adds the record of an object and gives the object's id: `oid`, or a new one where `oid` is below 1. Each
/// new id, the record's own included, counts `maxId` up by one.
long long addPredeclaration(QDomElement& predeclarations, QDomDocument& doc, const QString& typeName,
                            long long poid, long long& maxId, const long long& oid,
                            const QList<long long>& refs);

/// Removes the records of that object; true if there was one.
bool removePredeclare(QDomElement& predeclarations, long long id);

} // namespace Archive
