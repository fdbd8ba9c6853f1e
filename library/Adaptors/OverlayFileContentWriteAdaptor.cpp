#include "Adaptors/OverlayFileContentWriteAdaptor.h"

#include "Archive/Internal/FlatEditor.h"

namespace {

QString decoded(const std::string& encodedText) {
    const QByteArray text = QByteArray::fromBase64(QByteArray::fromStdString(encodedText));
    return QString::fromUtf8(text.constData(), text.size()); // without the size it ends at a NUL character
}

bool isFileName(const QString& text) {
    return text.endsWith(QLatin1String(".svg"));
}

bool isSvg(const QString& text) {
    return text.startsWith(QLatin1String("<svg")) || text.startsWith(QLatin1String("<?xml"));
}

} // namespace

OverlayFileContentWriteAdaptor::OverlayFileContentWriteAdaptor(
    const std::function<bool(const QString&, const QByteArray&)>& writeFile)
    : m_writeFile(writeFile) {}

void OverlayFileContentWriteAdaptor::convert(Archive::Internal::FlatEditor& editor) {
    qulonglong files = 0;
    for (const auto& [id, item] : editor.objects("Overlay::Item")) {
        nlohmann::json& encodedText = item->at("encodedText");
        const QString text = decoded(encodedText.get<std::string>());
        if (isFileName(text)) {
            encodedText = text;
        } else if (isSvg(text)) {
            // The number is used up also if the file could not be written.
            const QString name = QStringLiteral("content_%1.svg").arg(++files);
            if (m_writeFile(name, text.toUtf8()))
                encodedText = name;
        }
    }
}
