#pragma once

#include "Archive/Internal/Walk.h"

#include <QDomElement>
#include <QList>
#include <QSet>

#include <functional>
#include <memory>
#include <vector>

namespace Archive::Internal {

/// The id of the object that a record declares. A record is the `Data` of an entry of `predeclarations`.
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

/// Adds to `ids` the ids that the records of these objects refer to, and those that their records refer to.
/// `targetsOf` gives the ids in an entry of `refs`. Quirk: there is a single pass over the records. The
/// record of an object that is added after its record was passed is not read.
void collectReferenced(const RecordList& records, QSet<long long>& ids,
                       const std::function<QList<long long>(const QDomElement& entry)>& targetsOf);

} // namespace Archive::Internal
