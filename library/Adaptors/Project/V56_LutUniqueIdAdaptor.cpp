#include "Adaptors/Project/V56_LutUniqueIdAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/Reading.h"
#include "Archive/Xml.h"

using namespace Archive::Internal;

namespace Project {

void V56_LutUniqueIdAdaptor::convert(ArchiveEditor& archive) {
    const QString genericLut = "296139e9-c085-4e73-aacd-df41093c132a";
    for (const QDomElement& lut : archive.rootObjects("Effect::Lut")) {
        const QDomElement base = innerBase(lut);
        if (textIn(base, "uniqueId") == genericLut)
            archive.setField(base, "uniqueId", textIn(lut, "cubeResourceUuid"));
    }
}

} // namespace Project
