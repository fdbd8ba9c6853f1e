#pragma once

// For this project's own use.

#include <QDomElement>
#include <QSet>

namespace Archive::Internal {

/// The object that a record (the `Data` of an entry of `predeclarations`) declares.
long long declaredId(const QDomElement& record);

/// The same result as one removePredeclare() for each id, in one walk.
bool removePredeclares(QDomElement& predeclarations, const QSet<long long>& ids);

} // namespace Archive::Internal
