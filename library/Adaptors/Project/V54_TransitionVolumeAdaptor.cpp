#include "Adaptors/Project/V54_TransitionVolumeAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

namespace Project {

void V54_TransitionVolumeAdaptor::convert(ArchiveEditor& archive) {
    // Quirk: a transition that has a volume gets a second one.
    for (const QDomElement& transition : archive.baseParts("Transition::Object"))
        archive.fields(transition).int32("volume", 100);
}

} // namespace Project
