#pragma once

// For this project's own use.

#include "Archive/Internal/Walk.h"

#include <QDomElement>
#include <QList>
#include <QSet>

#include <functional>
#include <memory>
#include <vector>

namespace Archive::Internal {

/// The first `predeclarations` child of the `Predeclarator` among these objects; a null element for none. The
/// last of several counts, also where it has no such child.
QDomElement predeclarationsAmong(const TypedElements& rootObjects);

/// The object that a record (the `Data` of an entry of `predeclarations`) declares.
long long declaredId(const QDomElement& record);

/// An entry of an array of predeclarations.
struct Record {
    QDomElement item;
    QDomElement data; ///< its first `Data`, or a null element
    long long id;     ///< of the object that it declares
};

using Records = std::vector<Record>;
using RecordList = SharedList<Record>;

/// Reads an entry.
Record recordIn(const QDomElement& item);

std::shared_ptr<Records> readRecords(const QDomElement& predeclarations);

/// The entries of an array of predeclarations, in order, as they are at this moment. An outline keeps them.
std::shared_ptr<const Records> recordsOf(const QDomElement& predeclarations);

/// Adds to `ids` what the records of these objects refer to. `targetsOf` gives the ids in an entry of `refs`.
/// Quirk: one pass forward. Where the record of an added object precedes the reference to it, it is not read.
void collectReferenced(const Records& records, QSet<long long>& ids,
                       const std::function<QList<long long>(const QDomElement& entry)>& targetsOf);

/// What removeItemsFromList() does, on records. Calls `goes` on all in order.
bool removeRecords(QDomElement& predeclarations, const std::function<bool(const Record&)>& goes);

/// The same result as one removePredeclare() for each id, in one walk.
bool removePredeclares(QDomElement& predeclarations, const QSet<long long>& ids);

} // namespace Archive::Internal
