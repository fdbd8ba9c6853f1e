#include "Adaptors/Project/V25_OverlayAnimationAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Envelopes.h"
#include "Archive/Internal/OverlayItems.h"
#include "Archive/Internal/References.h"
#include "Archive/Internal/TransformedEffects.h"

using namespace Archive::Internal;

namespace Project {
namespace {

/// Quirk: inner objects are declared first, unlike in declareTransformation().
void declareEnvelope(ArchiveEditor& archive, long long id, const TransformationIds& defaultValue,
                     long long itemId) {
    archive.declareAs(defaultValue.matrix, transformClass, defaultValue.object);
    archive.declareAs(defaultValue.object, "Transformation::Object", id, {defaultValue.matrix});
    archive.declareAs(id, "TransformationEnvelope", itemId, {defaultValue.object});
}

} // namespace

void V25_OverlayAnimationAdaptor::convert(ArchiveEditor& archive) {
    const OverlayItems overlays(archive);
    for (const OverlayItem& item : overlays.items()) {
        const long long id = archive.nextId();
        const TransformationIds defaultValue{archive.nextId(), archive.nextId()};
        // Quirk: an envelope is declared also for an entry without `Data`, which gets none.
        if (!item.data.isNull())
            appendEnvelope(archive, item.data, "envelope", id, defaultValue, Aspect::Absent);
        declareEnvelope(archive, id, defaultValue, item.id);
        appendUncountedReferences(archive, overlays.refsOf(item.id), {id});
    }
}

} // namespace Project
