#include "Adaptors/Project/V59_EffectAuxResourceDownloadingAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

namespace Project {

void V59_EffectAuxResourceDownloadingAdaptor::convert(ArchiveEditor& archive) {
    for (const QDomElement& effect : archive.baseParts("Effect::Object"))
        archive.fields(effect)
            .string("location", QString())
            .string("remoteUrl", QString())
            .int64("remoteSize", -1);
}

} // namespace Project
