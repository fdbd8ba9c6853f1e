#include "Adaptors/Project/V29_ClipTimingModeAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

namespace Project {

void V29_ClipTimingModeAdaptor::convert(ArchiveEditor& archive) {
    // Quirk: only timings that are values of a map are found, and a timing that has a mode gets a second one.
    for (const QDomElement& timing : archive.ofListedType(Words::ClipTiming)) {
        if (timing.tagName() == Words::Value)
            archive.fields(timing).int32("timingMode", 0);
    }
}

} // namespace Project
