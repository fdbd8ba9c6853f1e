#pragma once

#include "Archive/Internal/FieldName.h"
#include "Archive/Internal/Words.h"
#include "Archive/Xml.h"

#include <QDomElement>
#include <QString>

#include <algorithm>
#include <iterator>

namespace Archive::Internal {

// Reading the `value` of an element ("Of"), or of its first child of a name ("In"), as a number or a text. A
// value that is missing or is no number of that width reads as 0. A missing text reads as an empty one.

inline QString textOf(const QDomElement& e) {
    return e.attribute(Words::value);
}
inline int int32Of(const QDomElement& e) {
    return textOf(e).toInt();
}
inline long long int64Of(const QDomElement& e) {
    return textOf(e).toLongLong();
}

inline QString textIn(const QDomElement& parent, const FieldName& name) {
    return textOf(childOf(parent, name));
}
inline int int32In(const QDomElement& parent, const FieldName& name) {
    return textIn(parent, name).toInt();
}
inline long long int64In(const QDomElement& parent, const FieldName& name) {
    return textIn(parent, name).toLongLong();
}
/// For ids that are compared as unsigned numbers.
inline unsigned long long uint64In(const QDomElement& parent, const FieldName& name) {
    return textIn(parent, name).toULongLong();
}

/// The double in the `binaryData` of the first child `name`, of any type. 0.0 if there is none, and for an
/// infinity.
inline double doubleIn(const QDomElement& parent, const FieldName& name) {
    return extractValue(childOf(parent, name).attribute(Words::binaryData), 0.0);
}

/// The object id of an element, 64-bit and signed.
inline long long idOf(const QDomElement& object) {
    return object.attribute(Words::objectId).toLongLong();
}

/// The same for ids that are read unsigned: ids from 2^63 on wrap to negative ones.
inline long long wrappedIdOf(const QDomElement& object) {
    return static_cast<long long>(objectIdOf(object));
}

/// The first row of a table whose member `text` is equal to `key`; null if there is none.
template <class Row, std::size_t size>
const Row* findRow(const Row (&table)[size], const char* Row::*text, const QString& key) {
    const Row* row = std::find_if(std::begin(table), std::end(table), [&](const Row& candidate) {
        return key == QLatin1String(candidate.*text);
    });
    return row == std::end(table) ? nullptr : row;
}

/// Whether a text is equal to one of these.
template <std::size_t size>
bool isOneOf(const char* const (&texts)[size], const QString& text) {
    return std::any_of(std::begin(texts), std::end(texts),
                       [&](const char* candidate) { return text == QLatin1String(candidate); });
}

} // namespace Archive::Internal
