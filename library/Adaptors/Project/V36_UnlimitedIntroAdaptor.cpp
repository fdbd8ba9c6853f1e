#include "Adaptors/Project/V36_UnlimitedIntroAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"

using namespace Archive::Internal;

namespace Project {

void V36_UnlimitedIntroAdaptor::convert(ArchiveEditor& archive) {
    for (const QDomElement& clip : archive.rootObjects("Timeline::Clip")) {
        const int type = int32In(clip, Words::type);
        if (type == 8 || type == 16)
            archive.setField(clip, "unlimitedDuration", "0");
    }
}

} // namespace Project
