#pragma once

// For this project's own use.

#include "Archive/Internal/Walk.h"

#include <QDomElement>
#include <QSet>

namespace Archive::Internal {

/// The first `predeclarations` child of the `Predeclarator` among these objects; a null element for none. The
/// last of several counts, also where it has no such child.
QDomElement predeclarationsAmong(const TypedElements& rootObjects);

/// The object that a record (the `Data` of an entry of `predeclarations`) declares.
long long declaredId(const QDomElement& record);

/// The same result as one removePredeclare() for each id, in one walk.
bool removePredeclares(QDomElement& predeclarations, const QSet<long long>& ids);

} // namespace Archive::Internal
