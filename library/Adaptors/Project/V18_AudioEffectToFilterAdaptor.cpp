#include "Adaptors/Project/V18_AudioEffectToFilterAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

namespace Project {
namespace {

namespace Words = Archive::Words;

bool isFilter(const QString& type) {
    return type == QLatin1String("Effect::AudioEqualizer") ||
           type == QLatin1String("Effect::AudioNoiseReduction");
}

} // namespace

void V18_AudioEffectToFilterAdaptor::adapt(QDomDocument& document) {
    const QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    for (const auto& [effect, type] : Archive::Internal::typedElements(archive, Words::RootObject)) {
        if (!isFilter(type))
            continue;
        QDomElement base = effect.firstChildElement(Words::BaseOfObject);
        Archive::Internal::setType(base, QStringLiteral("Effect::AudioFilter"));
    }
}

} // namespace Project
