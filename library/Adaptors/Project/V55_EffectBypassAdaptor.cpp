#include "Adaptors/Project/V55_EffectBypassAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

namespace Project {

void V55_EffectBypassAdaptor::convert(ArchiveEditor& archive) {
    // Quirk: an effect that has `bypass` gets a second one.
    for (const QDomElement& effect : archive.baseParts("Effect::Object"))
        archive.fields(effect).boolean("bypass", false);
}

} // namespace Project
