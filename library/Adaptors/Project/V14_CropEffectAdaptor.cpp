#include "Adaptors/Project/V14_CropEffectAdaptor.h"

#include "Archive/Internal/Reading.h"
#include "Archive/Internal/TransformedEffects.h"
#include "Archive/Internal/Transforms.h"

using namespace Archive::Internal;

namespace Project {
namespace {

/// The matrix that reduces the whole frame to the rectangle. Each axis has its own scale.
ScaleAndMove placement(const QDomElement& rect) {
    const double left = doubleIn(rect, "left");
    const double top = doubleIn(rect, "top");
    const double w = doubleIn(rect, "right") - left;
    const double h = doubleIn(rect, "bottom") - top;
    return {w, h, w * 0.5 + (left - 0.5), h * 0.5 + (top - 0.5)};
}

} // namespace

void V14_CropEffectAdaptor::convert(ArchiveEditor& archive) {
    TransformedEffects crops(archive, "Effect::Crop");
    for (const QDomElement& effect : crops.effects()) {
        const QDomElement rect = childOf(effect, "rect");
        const auto transform = placement(rect).inverse(); // the identity if the rectangle is empty
        archive.remove(rect);
        archive.undeclare(idOf(rect)); // 0 if there is no rectangle

        const long long id = crops.declareTransform(effect);
        // Quirk: the first reference is taken for the one to the rectangle and now refers to the matrix.
        archive.setField(childAt(crops.recordOf(effect), {Words::refs, Words::Item}), Words::Data, id);
        archive.fields(effect).transform("transform", transform, id);
    }
}

} // namespace Project
