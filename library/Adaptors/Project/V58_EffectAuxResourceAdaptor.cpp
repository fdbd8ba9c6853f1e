#include "Adaptors/Project/V58_EffectAuxResourceAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

namespace Project {

void V58_EffectAuxResourceAdaptor::convert(ArchiveEditor& archive) {
    for (const QDomElement& effect : archive.baseParts("Effect::Object"))
        archive.fields(effect).resourceId("auxResource", QString(), Stored::V57::ResourceType::Unknown);
}

} // namespace Project
