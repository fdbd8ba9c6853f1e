#include "Adaptors/Project/V15_SvgRetainFeatureAdaptor.h"

#include "Archive/Internal/Walk.h"

#include <glog/logging.h>

namespace Words = Archive::Words;
using Archive::Internal::Elements;
using Archive::Internal::firstDescendant;

namespace Project {
namespace {

Elements collectItems(const QDomElement& archive) {
    Elements items;
    for (const QDomElement& preset :
         Archive::Internal::rootObjects(archive, QStringLiteral("Overlay::Preset"))) {
        const QDomElement array = firstDescendant(preset, QStringLiteral("items"));
        for (QDomElement item = array.firstChildElement(); !item.isNull(); item = item.nextSiblingElement())
            items.push_back(item); // whatever its tag
    }
    return items;
}

void retainGradient(const QDomElement& item) {
    const QString name = QStringLiteral("gradient_solid_white");
    QDomElement text = firstDescendant(item, QStringLiteral("text"));
    QString svg = text.attribute(Words::value);
    // The longer name holds the shorter one and grows once more: the format never looked.
    if (svg.contains(name))
        text.setAttribute(Words::value, svg.replace(name, QStringLiteral("gradient_solid_white_retain")));
}

} // namespace

void V15_SvgRetainFeatureAdaptor::adapt(QDomDocument& document) {
    const QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    for (const QDomElement& item : collectItems(archive))
        retainGradient(item);
}

} // namespace Project
