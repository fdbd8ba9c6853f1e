#include "Adaptors/Project/V25_TransitionTypeResourceAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/NestedParts.h"

using namespace Archive::Internal;

namespace Project {

void V25_TransitionTypeResourceAdaptor::convert(ArchiveEditor& archive) {
    // Quirk: a transition inside two nested root objects gets both fields twice; one outside of root objects
    // gets none.
    for (const QDomElement& transition : partsOfRootObjects(archive, "Transition::Object"))
        archive.fields(transition).int32("type", 0).array("resources");
}

} // namespace Project
