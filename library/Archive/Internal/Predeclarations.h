#pragma once

#include "Archive/Internal/Walk.h"

#include <QDomElement>
#include <QList>
#include <QSet>

#include <functional>
#include <memory>
#include <vector>

namespace Archive::Internal {

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

/// Reads the entries of an array of predeclarations, in order.
std::shared_ptr<Records> readRecords(const QDomElement& predeclarations);

/// Adds to `ids` what the records of these objects refer to. `targetsOf` gives the ids in an entry of `refs`.
/// Quirk: one pass forward. Where the record of an added object precedes the reference to it, it is not read.
void collectReferenced(const RecordList& records, QSet<long long>& ids,
                       const std::function<QList<long long>(const QDomElement& entry)>& targetsOf);

} // namespace Archive::Internal
