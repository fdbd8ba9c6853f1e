#include "Adaptors/Project/V7_PenEnableAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

using Archive::Internal::elements;
using Archive::Internal::Elements;
using Archive::Internal::firstDescendant;

namespace Project {
namespace {

constexpr const char* penNames[] = {
    "outline",
};

Elements pensWithoutFlag(const QDomElement& archive) {
    Elements pens;
    for (const char* name : penNames) {
        for (const QDomElement& pen :
             elements(archive, QString::fromLatin1(name), QStringLiteral("Types::Pen"))) {
            if (firstDescendant(pen, QStringLiteral("enabled")).isNull())
                pens.push_back(pen);
        }
    }
    return pens;
}

bool hasWidth(const QDomElement& pen) {
    const QDomElement width = firstDescendant(pen, QStringLiteral("width"));
    // The text decides, not the number: "0.0" is a width.
    return !width.isNull() && width.attribute(Archive::Words::value) != QLatin1String("0");
}

} // namespace

void V7_PenEnableAdaptor::adapt(QDomDocument& document) {
    const QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    for (QDomElement& pen : pensWithoutFlag(archive))
        pen.appendChild(Archive::createBool(document, QStringLiteral("enabled"), hasWidth(pen)));
}

} // namespace Project
