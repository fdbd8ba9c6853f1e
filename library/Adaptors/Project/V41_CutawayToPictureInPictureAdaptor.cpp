#include "Adaptors/Project/V41_CutawayToPictureInPictureAdaptor.h"

#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/TransformedEffects.h"
#include "Archive/Internal/Transforms.h"

using namespace Archive::Internal;

namespace Project {
namespace {

constexpr const char* pictureInPicture = "Effect::PictureInPicture";

void convertClass(ArchiveEditor& archive, const QDomElement& effect) {
    archive.setType(effect, pictureInPicture);
    // Quirk: `uniqueId` of the cutaway and the types of the fields are kept.
    const QDomElement object = innerBase(effect);
    archive.setField(object, "id", "f60a32dd-2591-4cd3-859a-69f9c6a6838f");
    archive.setField(object, "tag", "effect_cutaway");
}

} // namespace

void V41_CutawayToPictureInPictureAdaptor::convert(ArchiveEditor& archive) {
    TransformedEffects cutaways(archive, "Effect::Cutaway");
    for (const QDomElement& effect : cutaways.effects()) {
        convertClass(archive, effect);
        const long long id = cutaways.declareTransform(effect);
        archive.setField(cutaways.recordOf(effect), Words::typeName, pictureInPicture);
        cutaways.appendRefs(effect, {id});
        archive.fields(effect).transform("transform", identityTransform, id);
    }
}

} // namespace Project
