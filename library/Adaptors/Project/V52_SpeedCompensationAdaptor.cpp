#include "Adaptors/Project/V52_SpeedCompensationAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

namespace Project {

void V52_SpeedCompensationAdaptor::convert(ArchiveEditor& archive) {
    // Quirk: only timings that are values of a map are found, and a timing that has the flag gets a second
    // one.
    for (const QDomElement& timing : archive.ofListedType(Words::ClipTiming)) {
        if (timing.tagName() == Words::Value)
            archive.fields(timing).boolean("speedCompensated", false);
    }
}

} // namespace Project
