#include "Adaptors/Project/V17_TitleAdaptorSunLabel.h"

#include "Archive/Internal/ArrayItems.h"
#include "Archive/Internal/Walk.h"

#include <glog/logging.h>

namespace Words = Archive::Words;

namespace Project {
namespace {

bool isSunLabel(const QDomElement& preset) {
    const QDomElement tag = Archive::Internal::firstDescendant(preset, QStringLiteral("tag"));
    return tag.attribute(Words::value) == QLatin1String("SunLabel");
}

void exchangeIndices(const QDomElement& preset) {
    // The items keep their places, and a lone one gets its new index all the same.
    Archive::Internal::Elements items = Archive::Internal::elements(preset, Words::Item);
    if (!items.empty())
        Archive::Internal::setIndex(items[0], 2);
    if (items.size() > 1)
        Archive::Internal::setIndex(items[1], 1);
}

} // namespace

void V17_TitleAdaptorSunLabel::adapt(QDomDocument& document) {
    const QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    for (const QDomElement& preset :
         Archive::Internal::rootObjects(archive, QStringLiteral("Overlay::Preset"))) {
        if (isSunLabel(preset))
            exchangeIndices(preset);
    }
}

} // namespace Project
