#include "Report/FileNames.h"

#include <QTextCodec>

namespace Reader::FileNames {
namespace {

constexpr ushort escapeBase = 0xDC00;

bool isEscape(const QString& text, int place) {
    const ushort unit = text.at(place).unicode();
    const bool isPaired = place > 0 && text.at(place - 1).isHighSurrogate();
    return unit >= escapeBase + 0x80 && unit <= escapeBase + 0xFF && !isPaired;
}

/// Of the UTF-8 character that begins with that byte.
int lengthFor(unsigned char first) {
    return first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
}

/// Whether these bytes are UTF-8 that comes back the same.
bool isLossless(const QByteArray& bytes, const QString& text) {
    return text.toUtf8() == bytes;
}

/// Qt makes and destroys it; it belongs to Qt from its construction on.
class Codec : public QTextCodec {
public:
    QByteArray name() const override { return "adaptors-file-names"; }
    int mibEnum() const override { return -7700; } // no registered number, and none of Qt's own

protected:
    QString convertToUnicode(const char* bytes, int length, ConverterState*) const override {
        return decode(QByteArray::fromRawData(bytes, length));
    }
    QByteArray convertFromUnicode(const QChar* text, int length, ConverterState*) const override {
        return encode(QString(text, length));
    }
};

} // namespace

void keepAllBytes() {
    QTextCodec::setCodecForLocale(new Codec);
}

QString decode(const QByteArray& name) {
    QString text = QString::fromUtf8(name);
    if (isLossless(name, text))
        return text;
    text.clear();
    for (int place = 0; place < name.size();) {
        const auto first = static_cast<unsigned char>(name.at(place));
        const QByteArray bytes = name.mid(place, lengthFor(first));
        const QString character = QString::fromUtf8(bytes);
        const bool isCharacter = isLossless(bytes, character);
        text += isCharacter ? character : QString(QChar(static_cast<ushort>(escapeBase + first)));
        place += isCharacter ? bytes.size() : 1;
    }
    return text;
}

QByteArray encode(const QString& name) {
    QByteArray bytes;
    int begin = 0; // of what is not encoded yet
    for (int place = 0; place < name.size(); ++place) {
        if (!isEscape(name, place))
            continue;
        bytes += name.mid(begin, place - begin).toUtf8();
        bytes += static_cast<char>(name.at(place).unicode() - escapeBase);
        begin = place + 1;
    }
    return bytes + name.mid(begin).toUtf8();
}

} // namespace Reader::FileNames
