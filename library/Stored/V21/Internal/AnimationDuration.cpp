#include "Stored/V21/Internal/AnimationDuration.h"

#include "Stored/V21/Internal/Markup.h"

#include <QHash>
#include <QIODevice>
#include <QSvgRenderer>
#include <QTextCodec>
#include <QXmlStreamWriter>

#include <vector>

namespace Stored::V21::Internal {
namespace {

// The stream reader compares the attributes of an element, or of a document type, with one another.
constexpr int maxAttributes = 1000;
// A document type can give attributes to every element, and then each quotation mark is one of a default.
constexpr int maxQuotesBesideDefaults = 200;

constexpr int utf8Mib = 106;

/// The text as the reader sees it, once it has read the XML declaration; nothing for one that it takes for UTF-16 or
/// UTF-32, since there are zeros in it.
QString textOf(const QXmlStreamReader& reader, const QTextCodec* declared) {
    QIODevice* device = reader.device();
    const qint64 place = device->pos();
    device->seek(0);
    const QByteArray bytes = device->readAll();
    device->seek(place);
    if (bytes.left(4).contains('\0'))
        return {};
    return declared ? declared->toUnicode(bytes) : QString::fromUtf8(bytes);
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

/// Whether parameter entities may stand between declarations. The first one that does is in the text itself, behind
/// a declaration, and so is its own.
bool usesParameterEntities(const QString& text) {
    bool declares = false;
    bool uses = false;
    for (int at = text.indexOf(QLatin1Char('%')); at >= 0; at = text.indexOf(QLatin1Char('%'), at + 1)) {
        int before = at;
        while (before > 0 && text[before - 1].isSpace())
            --before;
        const QStringRef head = text.leftRef(before);
        declares = declares || head.endsWith(QLatin1String("<!ENTITY"));
        uses = uses || head.endsWith(QLatin1Char('>'));
    }
    return declares && uses;
}

bool isEscape(const QStringRef& text) {
    return text.startsWith(QLatin1String("&#")) || text.startsWith(QLatin1String("&amp;")) ||
           text.startsWith(QLatin1String("&lt;")) || text.startsWith(QLatin1String("&gt;")) ||
           text.startsWith(QLatin1String("&quot;")) || text.startsWith(QLatin1String("&apos;"));
}

/// Whether defaults of attributes may refer to entities.
bool usesEntitiesInDefaults(const QString& text) {
    const QString list = QStringLiteral("<!ATTLIST");
    for (int at = text.indexOf(list); at >= 0; at = text.indexOf(list, at)) {
        for (++at; at < text.size() && text[at] != QLatin1Char('<'); ++at) { // which no default holds
            if (text[at] == QLatin1Char('&') && !isEscape(text.midRef(at)))
                return true;
        }
    }
    return false;
}

/// Whether the entities in a content would take it too far, found by expanding them without keeping anything.
bool expandsTooFar(const QStringRef& content, const QXmlStreamEntityDeclarations& declarations) {
    // The first declaration of a name counts, and one of a parameter entity is told like any other.
    QHash<QString, QString> values;
    for (const QXmlStreamEntityDeclaration& declaration : declarations)
        values[declaration.name().toString()] += declaration.value();
    double expanded = 0;
    // What is left of the content, and of the values that stand in one another.
    std::vector<QStringRef> open{content};
    while (!open.empty()) {
        QStringRef& rest = open.back();
        const int end = rest.indexOf(QLatin1Char(';'));
        if (end < 0) {
            open.pop_back();
            continue;
        }
        const int start = rest.left(end).lastIndexOf(QLatin1Char('&'));
        const QString name = start < 0 ? QString() : rest.mid(start + 1, end - start - 1).toString();
        rest = rest.mid(end + 1);
        const auto value = values.constFind(name);
        if (value == values.constEnd())
            continue;
        expanded += value->size();
        if (expanded > maxExpansion(content.size()))
            return true;
        open.emplace_back(&*value);
    }
    return false;
}

bool isBounded(const QXmlStreamReader& documentType, const QStringRef& content) {
    const QStringRef declarations = documentType.text();
    if (declarations.contains(QLatin1String("<!ATTLIST")) &&
        declarations.count(QLatin1Char('"')) + declarations.count(QLatin1Char('\'')) >
            maxQuotesBesideDefaults)
        return false;
    return !expandsTooFar(content, documentType.entityDeclarations());
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
    bool isRecoded = false;
    bool isRoot = true;
    reader.setNamespaceProcessing(false);
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartDocument: {
            const QTextCodec* declared =
                QTextCodec::codecForName(reader.documentEncoding().toString().toLatin1());
            text = textOf(reader, declared);
            isRecoded = declared && declared->mibEnum() != utf8Mib;
            // The reader tells which entities there are when it has read the document type, and may have expanded some
            // in it before. It bounds how far each one expands, but not how many times, nor for how long.
            if (text.isEmpty() || isCrowded(text) || usesParameterEntities(text) ||
                usesEntitiesInDefaults(text))
                return {};
            break;
        }
        case QXmlStreamReader::DTD: {
            // Once it has changed to the encoding that is declared, the reader counts characters otherwise.
            const qint64 behind = isRecoded ? 0 : reader.characterOffset();
            if (!isBounded(reader, text.midRef(static_cast<int>(behind))))
                return {};
            break;
        }
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
