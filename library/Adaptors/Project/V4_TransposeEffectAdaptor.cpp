#include "Adaptors/Project/V4_TransposeEffectAdaptor.h"

#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

namespace Project {
namespace {

namespace Words = Archive::Words;
using Archive::Internal::firstDescendant;

constexpr Archive::Internal::NumberedEffect transpose{"Effect::Transpose", 35, "effect_transpose", 35};

/// The clips that can be turned.
constexpr int turnedType = 1;

int valueIn(const QDomElement& e) {
    return e.attribute(Words::value).toInt();
}

/// The clip's angle, which leaves the clip, whether or not an effect takes its place.
int takeAngle(const QDomElement& clip) {
    const QDomElement angle = firstDescendant(clip, QStringLiteral("angle"));
    Archive::Internal::removeFromParent(angle);
    return valueIn(angle);
}

} // namespace

void V4_TransposeEffectAdaptor::adapt(QDomDocument& document) {
    QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    const auto clips = Archive::Internal::rootObjects(archive, QStringLiteral("Timeline::Clip"));
    if (clips.empty())
        return;
    QDomElement predeclarations = firstDescendant(archive, Words::predeclarations);
    long long greatestId = Archive::Internal::maxObjectId(document);

    for (const QDomElement& clip : clips) {
        const int angle = takeAngle(clip);
        if (angle % 360 == 0 || valueIn(firstDescendant(clip, Words::type)) != turnedType)
            continue;
        QDomElement effects = firstDescendant(clip, QStringLiteral("effects"));
        auto effect = Archive::Internal::addNumberedEffect(document, archive, predeclarations, greatestId,
                                                           transpose, effects);
        effect.root.appendChild(Archive::createInt32(document, QStringLiteral("angle"), angle));
    }
}

} // namespace Project
