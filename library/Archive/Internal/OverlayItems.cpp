#include "Archive/Internal/OverlayItems.h"

#include "Archive/Internal/Predeclarations.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

namespace Archive::Internal {
namespace {

void collectItems(const QDomElement& preset, std::vector<OverlayItem>& items) {
    const int presetType = valueOf(preset, Words::type).toInt();
    for (const QDomElement& item : elements(preset.firstChildElement(QStringLiteral("items")), Words::Item)) {
        const QDomElement data = item.firstChildElement(Words::Data);
        items.push_back({data, extractValue(data.attribute(Words::objectId), 0), presetType});
    }
}

QHash<long long, QDomElement> recordsById(const QDomElement& predeclarations) {
    // Entries of `refs` count as well, under 0: an item without an id may find one of them.
    QHash<long long, QDomElement> records;
    for (const QDomElement& item : elements(predeclarations, Words::Item))
        records.insert(declaredId(item.firstChildElement(Words::Data)), item);
    return records;
}

} // namespace

QDomElement OverlayItems::refsOf(long long id) const {
    return childAt(records.value(id), {Words::Data, Words::refs});
}

OverlayItems collectOverlayItems(const QDomElement& archive) {
    OverlayItems collected;
    for (const auto& [object, type] : typedElements(archive, Words::RootObject)) {
        if (type == Words::Predeclarator)
            collected.predeclarations = firstDescendant(object, Words::predeclarations);
        else if (type == QLatin1String("Overlay::Preset"))
            collectItems(object, collected.items);
    }
    collected.records = recordsById(collected.predeclarations);
    return collected;
}

} // namespace Archive::Internal
