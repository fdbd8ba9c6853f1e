#include "Adaptors/Project/V41_CutawayToPictureInPictureAdaptor.h"

#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/TransformedEffects.h"
#include "Archive/Internal/Transforms.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

namespace Project {
namespace {

namespace Words = Archive::Words;

const QString pictureInPicture = QStringLiteral("Effect::PictureInPicture");

void becomePictureInPicture(QDomElement& effect) {
    Archive::Internal::setType(effect, pictureInPicture);
    const QDomElement object = Archive::Internal::innerBase(effect);
    Archive::setValueOf(object, QStringLiteral("id"), QStringLiteral("f60a32dd-2591-4cd3-859a-69f9c6a6838f"));
    Archive::setValueOf(object, QStringLiteral("tag"), QStringLiteral("effect_cutaway"));
    // `uniqueId` stays that of the cutaway, and the types of the fields stay what they were.
}

} // namespace

void V41_CutawayToPictureInPictureAdaptor::adapt(QDomDocument& document) {
    const QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    Archive::Internal::TransformedEffects cutaways(document, archive, QStringLiteral("Effect::Cutaway"));
    for (QDomElement effect : cutaways.effects()) {
        becomePictureInPicture(effect);
        const long long id = cutaways.declareTransform(document, effect);
        Archive::setValueOf(cutaways.recordOf(effect), Words::typeName, pictureInPicture);
        cutaways.appendRefs(document, effect, {id});
        effect.appendChild(Archive::value2element(document, QStringLiteral("transform"),
                                                  Archive::Internal::identityTransform, id));
    }
}

} // namespace Project
