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

// The stream reader compares each attribute of an element, or of a document type, with all others.
constexpr int maxAttributes = 1000;
// A document type can give default attributes to every element. Quotation marks give an upper bound of their
// number.
constexpr int maxQuotesBesideDefaults = 200;

constexpr int utf8Mib = 106;

/// The text as the reader decodes it after the XML declaration. Nothing if the reader takes it for UTF-16 or
/// UTF-32, because it starts with zero bytes.
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
    QChar before; // the previous character that is no blank
    int attributes = 0;
    int declared = 0;
    for (int at = 0; at < text.size(); ++at) {
        const QChar c = text[at];
        if (c == QLatin1Char('<')) { // never occurs inside an attribute
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
            // A "=" alone does not count: a comment may contain any number of them.
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

/// Whether parameter entities may be used between declarations. The first such use, and the declaration of
/// that entity, are both in the text itself.
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

/// Whether default values of attributes may refer to entities.
bool usesEntitiesInDefaults(const QString& text) {
    const QString list = QStringLiteral("<!ATTLIST");
    for (int at = text.indexOf(list); at >= 0; at = text.indexOf(list, at)) {
        for (++at; at < text.size() && text[at] != QLatin1Char('<');
             ++at) { // never occurs in a default value
            if (text[at] == QLatin1Char('&') && !isEscape(text.midRef(at)))
                return true;
        }
    }
    return false;
}

/// Whether the entities in `content` expand to too much. Expands them without storing the result.
bool expandsTooFar(const QStringRef& content, const QXmlStreamEntityDeclarations& declarations) {
    // The reader lists parameter entities like all others, so a name may occur twice. All its values are
    // counted.
    QHash<QString, QString> values;
    for (const QXmlStreamEntityDeclaration& declaration : declarations)
        values[declaration.name().toString()] += declaration.value();
    double expanded = 0;
    // The unread rest of the content, and of each value that is being expanded in it.
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
    // Qt SVG reads the timing of these tags only, not that of `animate` and `animateMotion`.
    return tag == QLatin1String("animateColor") || tag == QLatin1String("animateTransform");
}

/// An SVG document with the animations only; empty if Qt SVG would not accept the text.
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
            // The reader lists the entities only after it has read the document type, and may expand some
            // before. It limits the size of each expansion, but neither their number nor their time.
            if (text.isEmpty() || isCrowded(text) || usesParameterEntities(text) ||
                usesEntitiesInDefaults(text))
                return {};
            break;
        }
        case QXmlStreamReader::DTD: {
            // After a change to the declared encoding, the offset of the reader is not one in `text`.
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
            // Qt SVG stops at the first end of an `svg`, also at that of an inner one.
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
    renderer.setFramesPerSecond(0); // starts no timer
    renderer.load(animations);
    return renderer.isValid() ? std::optional(renderer.animationDuration()) : std::nullopt;
}

} // namespace Stored::V21::Internal
