#include "Adaptors/Project/V18_AudioEffectToFilterAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

namespace Project {

void V18_AudioEffectToFilterAdaptor::convert(ArchiveEditor& archive) {
    for (const char* filter : {"Effect::AudioEqualizer", "Effect::AudioNoiseReduction"}) {
        for (const QDomElement& effect : archive.rootObjects(filter))
            archive.setType(effect.firstChildElement(Words::BaseOfObject), "Effect::AudioFilter");
    }
}

} // namespace Project
