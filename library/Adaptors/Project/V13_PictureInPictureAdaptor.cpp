#include "Adaptors/Project/V13_PictureInPictureAdaptor.h"

#include "Archive/Internal/StoredDouble.h"
#include "Archive/Internal/TransformedEffects.h"
#include "Archive/Internal/Transforms.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

namespace Project {
namespace {

double takeDouble(QDomElement& effect, const QString& name) {
    const double stored = Archive::Internal::doubleIn(effect, name);
    Archive::removeFirstChild(effect, name);
    return stored;
}

long long takeTime(QDomElement& effect, const QString& name) {
    const QString stored = Archive::valueOf(effect, name);
    Archive::removeFirstChild(effect, name);
    return Archive::extractValue(stored, 0);
}

/// Fades of the picture have no successor.
void dropFades(QDomElement& effect) {
    const long long fadeIn = takeTime(effect, QStringLiteral("fadeInTime"));
    const long long fadeOut = takeTime(effect, QStringLiteral("fadeOutTime"));
    if (fadeIn != 0 || fadeOut != 0)
        LOG(WARNING) << "PiP adaptor: Non-zero fades time for pip effect! fadeIn = " << fadeIn
                     << " fadeOut = " << fadeOut;
}

/// The offsets name the picture's top left corner in the unit frame; the matrix moves its centre, counted
/// from the centre of the frame.
QTransform takeTransform(QDomElement& effect) {
    const double offsetX = takeDouble(effect, QStringLiteral("offsetX"));
    const double offsetY = takeDouble(effect, QStringLiteral("offsetY"));
    const double scaleX = takeDouble(effect, QStringLiteral("scaleX"));
    const double scaleY = takeDouble(effect, QStringLiteral("scaleY"));
    return QTransform::fromScale(scaleX, scaleY) *
           QTransform::fromTranslate(scaleX * 0.5 + (offsetX - 0.5), scaleY * 0.5 + (offsetY - 0.5));
}

} // namespace

void V13_PictureInPictureAdaptor::adapt(QDomDocument& document) {
    const QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    Archive::Internal::TransformedEffects pictures(document, archive,
                                                   QStringLiteral("Effect::PictureInPicture"));
    for (QDomElement effect : pictures.effects()) {
        const auto transform = Archive::Internal::toStored(takeTransform(effect));
        dropFades(effect);
        const long long id = pictures.declareTransform(document, effect);
        pictures.appendRefs(document, effect, {id});
        effect.appendChild(Archive::value2element(document, QStringLiteral("transform"), transform, id));
    }
}

} // namespace Project
