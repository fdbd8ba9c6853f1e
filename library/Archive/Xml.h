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

/// Functions on the XML archive. A created element is not inserted into the tree unless the function says so:
/// the caller appends it. No function logs, and none throws except for an empty std::function. For a null
/// element the result is a null element or an empty text. Text that is no number reads as 0 if there is no
/// fallback.
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

/// An array of two entries: the identifier as "String" and the type as "int32_t".
QDomElement createResourceId(QDomDocument& doc, const QString& name, const QString& id,
                             Stored::V57::ResourceType type);

/// An object element that holds `value`.
template <class T>
QDomElement value2element(QDomDocument& doc, const QString& name, const T& value, long long id);

/// A "Types::Transform" with the fields "m11" to "m33". The attribute `value` of each has four decimals.
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

/// The double in a `binaryData` text. A text that is too short reads as 0.0, an infinity as `fallback`.
double extractValue(const QString& text, double fallback);

/// The double of an element of type "double", from `binaryData` only; `fallback` for any other type.
double readValue(const QDomElement& e, double fallback);

/// The `binaryData` text of a double; an infinity is written as 0.0.
QString serializeValue(double value);
void writeValue(QDomElement& e, double value);

// Finding and walking.

/// The first direct child element `name` for which `pred` holds, or a null element.
QDomElement findChild(const QDomElement& e, const QString& name,
                      const std::function<bool(const QDomElement&)>& pred);
bool hasChild(const QDomElement& e, const QString& name, const std::function<bool(const QDomElement&)>& pred);

/// The innermost base class part: follows the first child `BaseOfObject` from level to level. `e` itself if
/// it has no such child.
QDomElement findRootBaseOfObject(const QDomElement& e);

/// The first `RootObject` of that id. The search is linear: build a map for many lookups.
QDomElement findRootObject(QDomDocument& doc, long long id);

/// Calls `fn` for each descendant `name`. The length of the list is read once, and elements are fetched by
/// number from a live list: elements of that tag that `fn` adds or removes shift the numbers of the later
/// ones.
void forEachChild(QDomDocument& doc, const QString& name, const std::function<void(QDomElement&)>& fn);
void forEachChild(QDomElement& e, const QString& name, const std::function<void(QDomElement&)>& fn);

/// Calls `fn` for the `Data` of each `Item`, or for a null element if an item has none. `fn` must not remove
/// the `Item`.
void iterateArray(const QDomElement& array, const std::function<void(QDomElement&)>& fn);

void removeFirstChild(QDomElement& e, const QString& name);

/// The greatest `objectId` in the text of a document, at least 1. Reading stops at the first error in the
/// text.
long long getMaxObjectId(const QByteArray& documentText);

// Changing arrays and predeclarations.

/// Appends an empty `Item` and increments `size`. The form with a name creates the array if it is missing.
QDomElement appendArrayElement(QDomDocument& doc, QDomElement& array);
QDomElement appendArrayElement(QDomDocument& doc, QDomElement& parent, const QString& name);

/// The same at the front; the `index` of every entry is incremented.
QDomElement prependArrayElement(QDomDocument& doc, QDomElement& array);
QDomElement prependArrayElement(QDomDocument& doc, QDomElement& parent, const QString& name);

/// Removes the items for whose `Data` `pred` holds, numbers the others from 1 and reduces `size`. Returns
/// whether anything was removed.
bool removeItemsFromList(QDomElement& array, const std::function<bool(QDomElement&)>& pred);

/// Adds the record of an object and gives the object's id: `oid`, or a new one if `oid` is below 1. Each new
/// id increments `maxId`, also that of the record itself.
long long addPredeclaration(QDomElement& predeclarations, QDomDocument& doc, const QString& typeName,
                            long long poid, long long& maxId, const long long& oid,
                            const QList<long long>& refs);

/// Removes all records of that object. Returns whether there was any.
bool removePredeclare(QDomElement& predeclarations, long long id);

} // namespace Archive
