#include "Adaptors/Project/V50_OverlayItemTextEncode.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"
#include "Archive/Xml.h"

using namespace Archive::Internal;

namespace Project {
namespace {

void encodeText(ArchiveEditor& archive, const QDomElement& item) {
    const QByteArray text = textIn(item, "text").toUtf8();
    archive.removeField(item, "text");
    // Quirk: an item without a text gets an `encodedText` as well, also if it already has one.
    archive.fields(item).string("encodedText", text.toBase64());
}

} // namespace

void V50_OverlayItemTextEncode::convert(ArchiveEditor& archive) {
    for (const QDomElement& preset : archive.rootObjects("Overlay::Preset"))
        Archive::iterateArray(childOf(preset, "items"),
                              [&](QDomElement& item) { encodeText(archive, item); });
}

} // namespace Project
