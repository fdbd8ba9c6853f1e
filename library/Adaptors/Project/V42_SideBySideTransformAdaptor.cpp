#include "Adaptors/Project/V42_SideBySideTransformAdaptor.h"

#include "Archive/Internal/Reading.h"
#include "Archive/Internal/TransformedEffects.h"
#include "Archive/Internal/Transforms.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

#include <iterator>

using namespace Archive::Internal;

namespace Project {
namespace {

// clang-format off
// By `mode`: the left, upper, right and lower half of the frame.
constexpr ScaleAndMove halves[] = {
    {0.5, 1.0, -0.25, 0.0},
    {1.0, 0.5, 0.0, -0.25},
    {0.5, 1.0, 0.25, 0.0},
    {1.0, 0.5, 0.0, 0.25},
};
// clang-format on

constexpr int sbsLeft = 0;

int modeOf(const QDomElement& effect) {
    bool isNumber = false;
    const int mode = textIn(effect, "mode").toInt(&isNumber);
    if (!isNumber) {
        LOG(ERROR) << "Can not parse mode of SideBySide effect. Assuming sbsLeft";
        return sbsLeft;
    }
    if (mode < 0 || mode >= static_cast<int>(std::size(halves))) {
        LOG(ERROR) << "Unexpected SideBySide mode. Assuming sbsLeft";
        return sbsLeft;
    }
    return mode;
}

} // namespace

void V42_SideBySideTransformAdaptor::convert(ArchiveEditor& archive) {
    TransformedEffects pairs(archive, "Effect::SideBySide");
    for (const QDomElement& effect : pairs.effects()) {
        const Subject subject(archive, effect);
        const auto transform = halves[modeOf(effect)].matrix();
        const long long source = pairs.declareTransform(effect);
        const long long destination = pairs.declareTransform(effect);
        pairs.appendRefs(effect, {source, destination});
        // Quirk: both matrices are the same, and `mode` is kept.
        archive.fields(effect)
            .transform("transformSrc", transform, source)
            .transform("transformDst", transform, destination);
    }
}

} // namespace Project
