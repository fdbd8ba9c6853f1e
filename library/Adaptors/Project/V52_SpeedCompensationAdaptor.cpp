#include "Adaptors/Project/V52_SpeedCompensationAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

namespace Project {

void V52_SpeedCompensationAdaptor::convert(ArchiveEditor& archive) {
    // Quirk: only timings that are values of a map are found, and a timing that has the flag gets a second
    // one.
    for (const QDomElement& timing : elements(archive.document(), Words::Value, "Timeline::ClipTiming"))
        archive.fields(timing).boolean("speedCompensated", false);
}

} // namespace Project
