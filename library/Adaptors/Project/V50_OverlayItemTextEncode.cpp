#include "Adaptors/Project/V50_OverlayItemTextEncode.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

namespace Project {
namespace {

void encodeText(QDomDocument& document, QDomElement& item) {
    const QString name = QStringLiteral("text");
    const QByteArray text = Archive::valueOf(item, name).toUtf8();
    Archive::removeFirstChild(item, name);
    // Also where there was no text, and beside an `encodedText` that stands already: the format never looked.
    item.appendChild(
        Archive::createString(document, QStringLiteral("encodedText"), QString::fromLatin1(text.toBase64())));
}

} // namespace

void V50_OverlayItemTextEncode::adapt(QDomDocument& document) {
    for (const QDomElement& preset :
         Archive::Internal::rootObjects(document, QStringLiteral("Overlay::Preset"))) {
        Archive::iterateArray(preset.firstChildElement(QStringLiteral("items")), [&](QDomElement& item) {
            if (!item.isNull())
                encodeText(document, item);
        });
    }
}

} // namespace Project
