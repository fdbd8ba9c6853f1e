#include "Adaptors/Project/V46_GaplessTrackAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"

using namespace Archive::Internal;

namespace Project {
namespace {

constexpr int primaryTrackType = 16;

} // namespace

void V46_GaplessTrackAdaptor::convert(ArchiveEditor& archive) {
    // Quirk: a missing `Archive` is not logged.
    for (const QDomElement& track : ofType(archive.rootObjects(Scope::Archive), "Timeline::Track"))
        archive.fields(track).boolean("gapless", int32In(track, "type") == primaryTrackType);
}

} // namespace Project
