#include "Stored/V21/Internal/AnimationDuration.h"

#include "Stored/V21/Internal/Markup.h"

#include <QIODevice>
#include <QSvgRenderer>
#include <QTextCodec>
#include <QXmlStreamWriter>

namespace Stored::V21::Internal {
namespace {

// The stream reader compares the attributes of an element, or of a document type, with one another.
constexpr int maxAttributes = 1000;
// A document type can give attributes to every element, and then each quotation mark is one of a default.
constexpr int maxQuotesBesideDefaults = 200;

/// The text as the reader sees it, once it has read the XML declaration.
QString textOf(const QXmlStreamReader& reader) {
    QIODevice* device = reader.device();
    const qint64 place = device->pos();
    device->seek(0);
    const QByteArray bytes = device->readAll();
    device->seek(place);
    const QTextCodec* codec = QTextCodec::codecForName(reader.documentEncoding().toString().toLatin1());
    return codec ? codec->toUnicode(bytes) : QString::fromUtf8(bytes);
}

/// Whether an element has too many attributes, or the document type declares too many.
bool isCrowded(const QString& text) {
    const QString list = QStringLiteral("<!ATTLIST");
    bool inTag = false;
    bool inList = false;
    QChar quote;
    QChar before; // blanks left out
    int attributes = 0;
    int declared = 0;
    for (int at = 0; at < text.size(); ++at) {
        const QChar c = text[at];
        if (c == QLatin1Char('<')) { // stands in no attribute
            inTag = true;
            inList = text.midRef(at, list.size()) == list;
            quote = QChar();
            attributes = 0;
        } else if (!inTag || c.isSpace()) {
            continue;
        } else if (!quote.isNull()) {
            quote = c == quote ? QChar() : quote;
        } else if (c == QLatin1Char('"') || c == QLatin1Char('\'')) {
            quote = c;
            // In a comment there may be any number of "=" alone.
            attributes += before == QLatin1Char('=');
            declared += inList;
        } else if (c == QLatin1Char('>')) {
            inTag = false;
        } else if (c == QLatin1Char('#')) {
            declared += inList;
        }
        if (attributes > maxAttributes || declared > maxAttributes)
            return true;
        before = c;
    }
    return false;
}

bool isBounded(const QXmlStreamReader& documentType, const QString& text) {
    const QStringRef declarations = documentType.text();
    if (declarations.contains(QLatin1String("<!ATTLIST")) &&
        declarations.count(QLatin1Char('"')) + declarations.count(QLatin1Char('\'')) >
            maxQuotesBesideDefaults)
        return false;
    EntityBudget entities(text);
    for (const QXmlStreamEntityDeclaration& entity : documentType.entityDeclarations()) {
        if (!entities.admit(entity.name().toString(), entity.value().toString()))
            return false;
    }
    return true;
}

bool isAnimation(const QStringRef& tag) {
    // The tags whose timing Qt SVG knows; `animate` and `animateMotion` are nothing to it.
    return tag == QLatin1String("animateColor") || tag == QLatin1String("animateTransform");
}

/// An SVG document of the animations alone; empty where the text is none that Qt SVG takes.
QByteArray animationsOf(QXmlStreamReader& reader) {
    const QString svg = QStringLiteral("svg");
    QByteArray animations;
    QXmlStreamWriter writer(&animations);
    writer.writeStartElement(svg);
    QString text;
    bool isRoot = true;
    reader.setNamespaceProcessing(false);
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartDocument:
            text = textOf(reader);
            if (isCrowded(text))
                return {};
            break;
        case QXmlStreamReader::DTD:
            if (!isBounded(reader, text))
                return {};
            break;
        case QXmlStreamReader::StartElement:
            if (isRoot && reader.name() != svg)
                return {};
            isRoot = false;
            if (isAnimation(reader.name())) {
                writer.writeStartElement(reader.name().toString());
                writer.writeAttributes(reader.attributes());
                writer.writeEndElement();
            }
            break;
        case QXmlStreamReader::EndElement:
            // Qt SVG stops at the first end of an `svg`, be it that of an inner one.
            if (reader.name() == svg) {
                writer.writeEndElement();
                return animations;
            }
            break;
        default:
            break;
        }
    }
    return {};
}

} // namespace

std::optional<int> animationDuration(QXmlStreamReader& reader) {
    const QByteArray animations = animationsOf(reader);
    if (animations.isEmpty())
        return std::nullopt;
    QSvgRenderer renderer;
    renderer.setFramesPerSecond(0); // no timer
    renderer.load(animations);
    return renderer.isValid() ? std::optional(renderer.animationDuration()) : std::nullopt;
}

} // namespace Stored::V21::Internal
