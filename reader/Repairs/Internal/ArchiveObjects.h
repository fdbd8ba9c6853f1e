#pragma once

// What repairs of archives share: finding objects and references, copying and removing.

#include "Archive/Internal/ArchiveEditor.h"

#include <QDomElement>
#include <QHash>
#include <QString>

#include <functional>

namespace Repairs {

using Archive::Internal::ArchiveEditor;
using Archive::Internal::Elements;

/// All root objects but the predeclarations, in document order.
Archive::Internal::TypedElements::List projectObjects(ArchiveEditor& archive);

/// The root objects by id. Of several with one id the last counts, as in the conversion.
QHash<unsigned long long, QDomElement> objectsById(ArchiveEditor& archive);

/// Calls `visit` once for each element of the project, the root reference and predeclarations left out.
void walkProject(ArchiveEditor& archive, const std::function<void(const QDomElement& e)>& visit);

/// All references below an element, in document order.
Elements referencesIn(const QDomElement& e);

/// The id that a reference names; 0 for none.
unsigned long long targetOf(const QDomElement& reference);

/// The items of the list `clips` of a timeline.
Elements clipItems(const QDomElement& timeline);

/// The ids of the clips of a timeline, in the list's order.
QList<unsigned long long> clipIds(const QDomElement& timeline);

/// The project's main timeline: the root object if that is one, else the first that no clip holds, else the first. Null
/// if there is none.
QDomElement mainTimeline(ArchiveEditor& archive);

/// Appends a copy of a root object with new ids, and declares it and the objects in it as the original ones are.
QDomElement appendCopy(ArchiveEditor& archive, const QDomElement& object);

/// Removes items from their arrays, which get the right `size` and positions.
void removeItems(ArchiveEditor& archive, const Elements& items);

/// Gives the items of an array their positions, and the array their number.
void countItems(ArchiveEditor& archive, const QDomElement& array);

} // namespace Repairs
