#pragma once

// For this project's own use: picking from root objects that were collected in one walk, and adding to them.

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Predeclarations.h"
#include "Archive/Internal/Reading.h"
#include "Archive/Internal/Walk.h"

#include <QDomDocument>
#include <QList>

namespace Archive::Internal {

/// The `BaseOfObject` parts of that type below root objects, in document order, each as often as there are root
/// objects around it.
Elements partsOfRootObjects(ArchiveEditor& archive, const QString& type);
// To be removed with its last user.
Elements partsOfRootObjects(const QDomDocument& document, const QString& type);

/// A new `RootObject`, not yet inserted, with its id.
struct NewRootObject {
    QDomElement element;
    long long id;
};

/// Makes an object that has no parent and adds its record to `predeclarations`, which may be a null element: the
/// object and its record take the next two ids all the same.
NewRootObject declareRootObject(QDomDocument& doc, QDomElement& predeclarations, const QString& type,
                                long long& maxId, const QList<long long>& refs = {});

} // namespace Archive::Internal
