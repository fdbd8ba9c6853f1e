#include "Archive/Internal/OverlayItems.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Predeclarations.h"
#include "Archive/Internal/Reading.h"

#include <glog/logging.h>

namespace Archive::Internal {

OverlayItems::OverlayItems(ArchiveEditor& archive) {
    if (archive.root().isNull()) {
        LOG(ERROR) << "<Archive> element not found or is not unique";
        return;
    }
    const TypedElements objects = archive.rootObjects(Scope::Archive);
    for (const QDomElement& preset : ofType(objects, "Overlay::Preset"))
        collectItems(preset);
    QDomElement predeclarations;
    // Quirk: the records are the first descendant of that name, not the first child.
    for (const QDomElement& predeclarator : ofType(objects, Words::Predeclarator))
        predeclarations = firstDescendant(predeclarator, Words::predeclarations);
    archive.setPredeclarations(predeclarations);
    // Quirk: entries of `refs` are collected as well, as records of the object 0. An item without an id may
    // find one of them.
    for (const Record& record : archive.recordsAtAnyDepth(predeclarations))
        m_records.insert(record.id, record.item);
}

void OverlayItems::collectItems(const QDomElement& preset) {
    const int presetType = int32In(preset, "type");
    for (const QDomElement& item : elements(childOf(preset, "items"), Words::Item)) {
        const QDomElement data = item.firstChildElement(Words::Data);
        m_items.push_back({data, idOf(data), presetType});
    }
}

QDomElement OverlayItems::refsOf(long long id) const {
    return childAt(m_records.value(id), {Words::Data, Words::refs});
}

} // namespace Archive::Internal
