#include "Adaptors/OverlayFileContentReadAdaptor.h"

#include "Archive/Internal/FlatObjects.h"
#include "Archive/Internal/Outline.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"
#include "Serialize/Json/FlatObject.h"

namespace Words = Archive::Words;
using Archive::Internal::children;

namespace {

QString toBase64(const QByteArray& content) {
    return QString::fromLatin1(content.toBase64());
}

void bringBack(QDomElement& text, const QByteArray& content) {
    Archive::Internal::setType(text, QStringLiteral("String"));
    // Under any other tag the name of the file stays as the text.
    if (text.tagName() == QLatin1String("text"))
        // Without the size it ends at a NUL character.
        text.setAttribute(Words::value, QString::fromUtf8(content.constData(), content.size()));
    else if (text.tagName() == QLatin1String("encodedText"))
        text.setAttribute(Words::value, toBase64(content));
    Archive::Internal::Outline::wrote(text.attribute(Words::value));
}

} // namespace

OverlayFileContentReadAdaptor::OverlayFileContentReadAdaptor(
    const std::function<QByteArray(const QString&)>& readFile)
    : m_readFile(readFile) {}

void OverlayFileContentReadAdaptor::adapt(QDomDocument& document) {
    for (const QDomElement& preset :
         children(document.firstChildElement(Words::Archive), Words::RootObject)) {
        if (Archive::typeOf(preset) != QLatin1String("Overlay::Preset"))
            continue;
        Archive::iterateArray(preset.firstChildElement(QStringLiteral("items")), [this](QDomElement& item) {
            for (QDomElement text = item.firstChildElement(); !text.isNull();
                 text = text.nextSiblingElement()) {
                if (Archive::typeOf(text) == QLatin1String("FileContent"))
                    bringBack(text, m_readFile(text.attribute(Words::value)));
            }
        });
    }
}

void OverlayFileContentReadAdaptor::adapt(Serialize::Json::FlatObject& document) {
    for (const auto& [id, item] : Archive::Internal::selectObjects(document, "Overlay::Item")) {
        nlohmann::json& text = item->at("encodedText");
        const auto name = QString::fromStdString(text.get<std::string>());
        if (name.startsWith(QLatin1String("content_")))
            text = toBase64(m_readFile(name));
    }
}
