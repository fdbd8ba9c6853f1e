#include "Adaptors/Project/V47_TransitionDurationAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/NestedParts.h"

using namespace Archive::Internal;

namespace Project {

void V47_TransitionDurationAdaptor::convert(ArchiveEditor& archive) {
    // Quirk: a part that has a `defaultDuration` gets a second one, and one inside two nested root objects gets two.
    for (const QDomElement& part : partsOfRootObjects(archive, "Transition::Object"))
        archive.fields(part).int64("defaultDuration", 2000);
}

} // namespace Project
