#include "Adaptors/Project/V55_AudioEffectsGroupIdAdaptor.h"

#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <QSet>

#include <glog/logging.h>

namespace Project {
namespace {

namespace Words = Archive::Words;

// clang-format off
const QSet<QString> groupClasses = {
    QStringLiteral("Effect::AudioEcho"),
    QStringLiteral("Effect::AudioReverberation"),
    QStringLiteral("Effect::AudioMuffle"),
    QStringLiteral("Effect::AudioPhone"),
    QStringLiteral("Effect::AudioRadio"),
    QStringLiteral("Effect::AudioPitch"),
};
// clang-format on

const QString groupId = QStringLiteral("820c9391-6388-49f7-83a2-590014abcfa3");
const QString uniqueId = QStringLiteral("uniqueId");

} // namespace

void V55_AudioEffectsGroupIdAdaptor::adapt(QDomDocument& document) {
    // The first child, not the only one anywhere: this step lets further Archive elements pass.
    const QDomElement archive = document.firstChildElement(Words::Archive);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    for (const auto& [effect, type] : Archive::Internal::typedElements(archive, Words::RootObject)) {
        if (!groupClasses.contains(type))
            continue;
        const QDomElement base = Archive::Internal::innerBase(effect);
        if (Archive::valueOf(base, uniqueId) == groupId)
            Archive::setValueOf(base, uniqueId, Archive::valueOf(base, QStringLiteral("id")));
    }
}

} // namespace Project
