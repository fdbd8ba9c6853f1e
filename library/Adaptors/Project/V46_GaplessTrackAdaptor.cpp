#include "Adaptors/Project/V46_GaplessTrackAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

namespace Project {
namespace {

constexpr int primaryTrackType = 16;

} // namespace

void V46_GaplessTrackAdaptor::adapt(QDomDocument& document) {
    const QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull())
        return; // this step has never reported it
    for (QDomElement& track : Archive::Internal::rootObjects(archive, QStringLiteral("Timeline::Track"))) {
        const bool isPrimary = Archive::valueOf(track, QStringLiteral("type")).toInt() == primaryTrackType;
        track.appendChild(Archive::createBool(document, QStringLiteral("gapless"), isPrimary));
    }
}

} // namespace Project
