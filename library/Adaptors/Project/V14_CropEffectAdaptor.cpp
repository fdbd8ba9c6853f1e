#include "Adaptors/Project/V14_CropEffectAdaptor.h"

#include "Archive/Internal/PredeclarationEdits.h"
#include "Archive/Internal/RootObjects.h"
#include "Archive/Internal/StoredDouble.h"
#include "Archive/Internal/TransformedEffects.h"
#include "Archive/Internal/Transforms.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

namespace Project {
namespace {

namespace Words = Archive::Words;
using Archive::Internal::doubleIn;
using Archive::Internal::idOf;

/// The matrix that brings the part of the frame in the rectangle to the whole frame. Each axis has its own
/// scale. A rectangle without extent gives the identity.
QTransform transformOf(const QDomElement& rect) {
    const double left = doubleIn(rect, QStringLiteral("left"));
    const double top = doubleIn(rect, QStringLiteral("top"));
    const double w = doubleIn(rect, QStringLiteral("right")) - left;
    const double h = doubleIn(rect, QStringLiteral("bottom")) - top;
    const QTransform matrix = QTransform::fromScale(w, h) *
                              QTransform::fromTranslate(w * 0.5 + (left - 0.5), h * 0.5 + (top - 0.5));
    return matrix.inverted();
}

/// What referred to the rectangle refers to the matrix.
void redirectFirstRef(const QDomElement& record, long long id) {
    const QDomElement item = Archive::Internal::childAt(record, {Words::refs, Words::Item});
    Archive::setValueOf(item, Words::Data, QString::number(id));
}

} // namespace

void V14_CropEffectAdaptor::adapt(QDomDocument& document) {
    const QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    Archive::Internal::TransformedEffects crops(document, archive, QStringLiteral("Effect::Crop"));
    Archive::Internal::PredeclarationEdits records(document, crops.predeclarations());
    for (QDomElement effect : crops.effects()) {
        const QDomElement rect = effect.firstChildElement(QStringLiteral("rect"));
        const auto transform = Archive::Internal::toStored(transformOf(rect));
        Archive::Internal::removeFromParent(rect);
        records.remove(idOf(rect)); // 0 where there is no rectangle

        const long long id =
            records.add(Archive::Internal::transformClass, idOf(effect), crops.greatestId(), -1, {});
        redirectFirstRef(crops.recordOf(effect), id);
        effect.appendChild(Archive::value2element(document, QStringLiteral("transform"), transform, id));
    }
    records.finish();
}

} // namespace Project
