#include "Adaptors/Project/V38_OverlayDropShadowAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/OverlayItems.h"
#include "Archive/Internal/Reading.h"

using namespace Archive::Internal;

namespace Project {
namespace {

constexpr unsigned int shadowColor = 0xB43F3F3F;
constexpr int featuredPresetType = 3;
constexpr int shadowFeature = 4;

void appendShadow(ArchiveEditor& archive, const QDomElement& item, long long id) {
    const QDomElement shadow = archive.appendObject(item, "dropShadow", "Overlay::DropShadow", id);
    archive.fields(shadow)
        .boolean("enabled", false)
        .uint32("color", shadowColor)
        .int32("offsetX", 4)
        .int32("offsetY", 4)
        .int32("blurRadius", 1);
}

} // namespace

void V38_OverlayDropShadowAdaptor::convert(ArchiveEditor& archive) {
    const OverlayItems overlays(archive);
    for (const OverlayItem& item : overlays.items()) {
        if (Archive::typeOf(item.data) != QLatin1String("Overlay::Item"))
            continue;
        const long long id = archive.nextId();
        appendShadow(archive, item.data, id);
        archive.declareAs(id, "Overlay::DropShadow", item.id);
        archive.appendReference(overlays.refsOf(item.id), id);
        if (item.presetType == featuredPresetType)
            archive.setField(item.data, "features", int32In(item.data, "features") | shadowFeature);
    }
}

} // namespace Project
