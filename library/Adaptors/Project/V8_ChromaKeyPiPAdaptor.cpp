#include "Adaptors/Project/V8_ChromaKeyPiPAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/Reading.h"

#include <QSet>

#include <algorithm>

using namespace Archive::Internal;

namespace Project {
namespace {

// Quirk: the tag is spelled "effet".
constexpr NumberedEffect cutaway = {"Effect::Cutaway", 14, "effet_cutaway", 32769};

/// Quirk: ids are read in 32 bits; greater ones read as 0.
using Ids = QSet<int>;

Ids collectIds(const Elements& objects) {
    Ids ids;
    for (const QDomElement& object : objects)
        ids.insert(object.attribute(Words::objectId).toInt());
    return ids;
}

void setUniqueId(ArchiveEditor& archive, const QDomElement& chromaKey) {
    const QDomElement base = firstDescendant(chromaKey, Words::BaseOfObject);
    const QDomElement object = firstDescendant(base, Words::BaseOfObject);
    archive.setText(firstDescendant(object, "uniqueId"), "15");
}

/// Whether an entry of the list, at any depth, refers to one of the objects.
bool refersToAny(const QDomElement& list, const Ids& ids) {
    const Elements items = elements(list, Words::Item);
    return std::any_of(items.begin(), items.end(),
                       [&](const QDomElement& item) { return ids.contains(int32In(item, Words::Data)); });
}

} // namespace

void V8_ChromaKeyPiPAdaptor::convert(ArchiveEditor& archive) {
    // Quirk: the records are those in the first descendant of that name, not in the first child.
    const QDomElement predeclarator = archive.lastRootObject(Words::Predeclarator);
    archive.setPredeclarations(firstDescendant(predeclarator, Words::predeclarations));

    const Elements chromaKeys = archive.rootObjects("Effect::ChromaKey");
    if (chromaKeys.empty())
        return;
    archive.startIds(); // before texts change: a scan for ids ends at a text that is not valid XML
    for (const QDomElement& chromaKey : chromaKeys)
        setUniqueId(archive, chromaKey);

    const Ids ids = collectIds(chromaKeys);
    for (const QDomElement& clip : archive.rootObjects("Timeline::Clip")) {
        const QDomElement effects = firstDescendant(clip, "effects");
        if (refersToAny(effects, ids)) // one cutaway for all chroma keys of a clip
            appendNumberedEffect(archive, cutaway, effects);
    }
}

} // namespace Project
