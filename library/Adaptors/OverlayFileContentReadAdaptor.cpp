#include "Adaptors/OverlayFileContentReadAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/FlatEditor.h"
#include "Archive/Internal/Reading.h"
#include "Serialize/Json/FlatObject.h"

using namespace Archive::Internal;

namespace {

QString toBase64(const QByteArray& content) {
    return QString::fromLatin1(content.toBase64());
}

void insertContent(ArchiveEditor& archive, const QDomElement& text, const QByteArray& content) {
    archive.setType(text, "String");
    // Quirk: in a field of another tag the name of the file is kept as the text.
    if (text.tagName() == "text")
        archive.setText(text, QString::fromUtf8(content.constData(), content.size())); // may contain NUL
    else if (text.tagName() == "encodedText")
        archive.setText(text, toBase64(content));
}

} // namespace

OverlayFileContentReadAdaptor::OverlayFileContentReadAdaptor(
    const std::function<QByteArray(const QString&)>& readFile)
    : m_readFile(readFile) {}

void OverlayFileContentReadAdaptor::convert(ArchiveEditor& archive) {
    for (const QDomElement& preset : children(archive.topArchive(), Words::RootObject)) {
        if (Archive::typeOf(preset) != QLatin1String("Overlay::Preset"))
            continue;
        const Subject subject(archive, preset);
        Archive::iterateArray(childOf(preset, "items"), [&](QDomElement& item) {
            for (QDomElement text = item.firstChildElement(); !text.isNull();
                 text = text.nextSiblingElement()) {
                if (Archive::typeOf(text) == QLatin1String("FileContent"))
                    insertContent(archive, text, m_readFile(textOf(text)));
            }
        });
    }
}

void OverlayFileContentReadAdaptor::convert(Archive::Internal::FlatEditor& editor) {
    for (const auto& [id, item] : editor.objects("Overlay::Item")) {
        nlohmann::json& text = item->at("encodedText");
        const auto name = QString::fromStdString(text.get<std::string>());
        if (name.startsWith(QLatin1String("content_")))
            text = toBase64(m_readFile(name));
    }
}
