#include "Adaptors/Project/V13_PictureInPictureAdaptor.h"

#include "Archive/Internal/Reading.h"
#include "Archive/Internal/TransformedEffects.h"
#include "Archive/Internal/Transforms.h"

#include <glog/logging.h>

using namespace Archive::Internal;

namespace Project {
namespace {

constexpr const char* pictureFields[] = {
    "fadeInTime", "fadeOutTime", "offsetX", "offsetY", "scaleX", "scaleY",
};

/// The offsets are the position of the picture's top left corner, with the frame from 0 to 1. The matrix
/// holds the position of its centre relative to the centre of the frame.
ScaleAndMove placement(const QDomElement& effect) {
    const double offsetX = doubleIn(effect, "offsetX");
    const double offsetY = doubleIn(effect, "offsetY");
    const double scaleX = doubleIn(effect, "scaleX");
    const double scaleY = doubleIn(effect, "scaleY");
    return {scaleX, scaleY, scaleX * 0.5 + (offsetX - 0.5), scaleY * 0.5 + (offsetY - 0.5)};
}

/// Quirk: the fades of the picture are lost; they are only logged.
void reportFades(const QDomElement& effect) {
    const long long fadeIn = int64In(effect, "fadeInTime");
    const long long fadeOut = int64In(effect, "fadeOutTime");
    if (fadeIn != 0 || fadeOut != 0)
        LOG(WARNING) << "PiP adaptor: Non-zero fades time for pip effect! fadeIn = " << fadeIn
                     << " fadeOut = " << fadeOut;
}

} // namespace

void V13_PictureInPictureAdaptor::convert(ArchiveEditor& archive) {
    TransformedEffects pictures(archive, "Effect::PictureInPicture");
    for (const QDomElement& effect : pictures.effects()) {
        const Subject subject(archive, effect);
        const auto transform = placement(effect).matrix();
        reportFades(effect);
        for (const char* field : pictureFields)
            archive.removeField(effect, field);
        const long long id = pictures.declareTransform(effect);
        pictures.appendRefs(effect, {id});
        archive.fields(effect).transform("transform", transform, id);
    }
}

} // namespace Project
