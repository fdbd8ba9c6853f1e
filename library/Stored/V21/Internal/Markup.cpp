#include "Stored/V21/Internal/Markup.h"

#include <QHash>
#include <QTextCodec>
#include <QTextStream>
#include <QXmlDefaultHandler>
#include <QXmlInputSource>
#include <QXmlSimpleReader>

#include <algorithm>
#include <map>
#include <vector>

// The reader that QDomDocument uses is deprecated as an interface, but only with it can a text be checked
// before it is parsed into a DOM.
QT_WARNING_DISABLE_DEPRECATED

namespace Stored::V21::Internal {
namespace {

// Qt's parser recurses and needs 350 bytes of stack for each level; no other code recurses. Measured: a text
// of 1000 levels was parsed in a thread with 370 KB of stack, and in one with 390 KB under address and
// undefined behaviour sanitizers.
constexpr int maxDepth = 1000;

// The position of an element is a list as long as its depth, so the sum of the depths of all elements is
// bounded, too. The bound is this number times the characters of the text. Real drawings are far below it.
constexpr double maxLevelsPerCharacter = 8;
constexpr double maxLevelsOfSmallText = 1'000'000;

// At each declaration Qt walks through all entities and searches the value of the previous one for all their
// names.
constexpr int maxEntities = 1000;
constexpr double maxSearchedForNames = 3e8;

// Fetching an attribute from a DOM by number takes time that grows with the number. So elements with more
// attributes are written by Qt's writer. Its time for a value grows with the length of the value times the
// number of characters to be escaped in it.
constexpr int maxIndexedAttributes = 200;
constexpr double maxMovesOfManyAttributes = 1e9;

/// Qt's parser recurses for the brackets of an element's content model, and calls no handler before. In a
/// parameter entity the declaration must be complete: the text that follows its value is not known.
bool hasDeepContentModel(const QString& text, bool isParameterEntity) {
    const QString declaration = QStringLiteral("<!ELEMENT");
    for (int at = text.indexOf(declaration); at >= 0; at = text.indexOf(declaration, at)) {
        int depth = 0;
        for (at += declaration.size(); at < text.size() && text[at] != QLatin1Char('>'); ++at) {
            if (text[at] == QLatin1Char('(') && ++depth > maxDepth)
                return true;
            if (text[at] == QLatin1Char(')'))
                --depth;
        }
        if (isParameterEntity && at == text.size())
            return true;
    }
    return false;
}

/// Checks a text during a first parse that stores nothing, and stops Qt's parser when a bound is exceeded.
class Gauge : public QXmlDefaultHandler {
public:
    explicit Gauge(int size)
        : m_maxLevels(maxLevelsOfSmallText + maxLevelsPerCharacter * size),
          m_maxExpanded(maxExpansion(size)) {}

    bool isExceeded() const { return m_exceeded; }

    bool startElement(const QString&, const QString&, const QString&,
                      const QXmlAttributes& attributes) override {
        m_levels += ++m_depth;
        if (attributes.count() > maxIndexedAttributes / 2) // the SVG model adds some
            countMoves(attributes);
        return within(m_depth <= maxDepth && m_levels <= m_maxLevels && m_moves <= maxMovesOfManyAttributes);
    }

    bool endElement(const QString&, const QString&, const QString&) override {
        --m_depth;
        return true;
    }

    bool internalEntityDecl(const QString& name, const QString& value) override {
        const QLatin1Char parameter('%');
        const bool isParameter = name.startsWith(parameter);
        m_sizes.insert(isParameter ? name.mid(1) : name,
                       value.size()); // the reader reports a name once, for one of the kinds
        if (isParameter)
            return within(!hasDeepContentModel(value, true)); // Qt accepts at most three of these
        m_sizeOfNames += name.size();
        m_searchedForNames +=
            m_sizeOfNames + double(m_sizes.size() + value.count(QLatin1Char('&'))) * value.size();
        return within(m_sizes.size() <= maxEntities && m_searchedForNames <= maxSearchedForNames);
    }

    /// Called each time that an entity is expanded, in any place. So all expansions are counted. Qt's own
    /// limit of 4096 characters does not apply to the entity that is declared last, to those that name later
    /// ones, and to expansions to an empty text.
    bool startEntity(const QString& name) override {
        m_expanded += m_sizes.value(name);
        return within(m_expanded <= m_maxExpanded);
    }

private:
    bool within(bool bounds) {
        m_exceeded = m_exceeded || !bounds;
        return bounds;
    }

    void countMoves(const QXmlAttributes& attributes) {
        for (int number = 0; number < attributes.count(); ++number) {
            const QString value = attributes.value(number);
            const auto mayBeEscaped = [](QChar c) {
                return c < QLatin1Char(' ') || c == QLatin1Char('<') || c == QLatin1Char('"') ||
                       c == QLatin1Char('&') || c > QLatin1Char('~');
            };
            m_moves += double(std::count_if(value.begin(), value.end(), mayBeEscaped)) * value.size();
        }
    }

    double m_maxLevels;
    double m_maxExpanded;
    QHash<QString, int> m_sizes; ///< the lengths of the values of entities, by name
    double m_sizeOfNames = 0;
    double m_searchedForNames = 0;
    double m_expanded = 0;
    int m_depth = 0;
    double m_levels = 0;
    double m_moves = 0;
    bool m_exceeded = false;
};

bool isBounded(const QString& text) {
    if (hasDeepContentModel(text, false))
        return false;
    Gauge gauge(text.size());
    QXmlSimpleReader reader;
    // The same settings as in QDomDocument.
    reader.setFeature(QStringLiteral("http://xml.org/sax/features/namespaces"), false);
    reader.setFeature(QStringLiteral("http://xml.org/sax/features/namespace-prefixes"), true);
    // One more, which does not change what is read.
    reader.setFeature(QStringLiteral("http://qt-project.org/xml/features/report-start-end-entity"), true);
    reader.setContentHandler(&gauge);
    reader.setDeclHandler(&gauge);
    reader.setLexicalHandler(&gauge);
    QXmlInputSource source;
    source.setData(text);
    reader.parse(&source);
    return !gauge.isExceeded();
}

/// Sorts the attributes of a tag, and the declarations of a document type, in text that Qt's DOM has written.
class Sorter {
public:
    explicit Sorter(const QString& text) : m_text(text) {}

    /// The declarations between the brackets of a document type, one on each line.
    QString documentType() {
        copyTo(findUnquoted("[", m_at));
        if (m_at < m_text.size()) {
            copyTo(m_at + 1);
            std::vector<QStringRef> declarations;
            copyTo(findUnquoted("<]", m_at));
            while (m_at < m_text.size() && m_text[m_at] == QLatin1Char('<')) {
                const int end = std::min(findUnquoted(">", m_at) + 1, m_text.size());
                declarations.push_back(m_text.midRef(m_at, end - m_at));
                m_at = findUnquoted("<]", end);
            }
            std::sort(declarations.begin(), declarations.end());
            for (const QStringRef& declaration : declarations) {
                m_sorted += declaration;
                m_sorted += QLatin1Char('\n');
            }
        }
        copyTo(m_text.size());
        return m_sorted;
    }

    /// The attributes of a tag without children, each after a blank.
    QString attributes() {
        std::map<QStringRef, QStringRef> attributes; // name to "name=value"
        m_at = findUnquoted(" />", m_text.indexOf(QLatin1Char('<')) + 1);
        while (m_at < m_text.size() && m_text[m_at] == QLatin1Char(' ')) {
            const int name = m_at + 1;
            const int equals = findUnquoted("=>", name);
            m_at = findUnquoted(" />", equals);
            attributes[m_text.midRef(name, equals - name)] = m_text.midRef(name, m_at - name);
        }
        for (const auto& [name, attribute] : attributes) {
            m_sorted += QLatin1Char(' ');
            m_sorted += attribute;
        }
        return m_sorted;
    }

private:
    void copyTo(int place) {
        m_sorted += m_text.midRef(m_at, place - m_at);
        m_at = place;
    }

    /// The first position of one of these characters outside of quotes, from a position on.
    int findUnquoted(const char* characters, int from) const {
        const QLatin1String wanted(characters);
        QChar quote;
        for (int place = from; place < m_text.size(); ++place) {
            const QChar c = m_text[place];
            if (!quote.isNull())
                quote = c == quote ? QChar() : quote;
            else if (c == QLatin1Char('"') || c == QLatin1Char('\''))
                quote = c;
            else if (wanted.contains(c))
                return place;
        }
        return m_text.size();
    }

    const QString& m_text;
    QString m_sorted;
    int m_at = 0;
};

/// Writes the same as QDomDocument::save() with an indent of 1, but with sorted attributes, in linear time
/// and without recursion. Qt recurses, and it moves the rest of a value for each character that it escapes.
class Writer {
public:
    explicit Writer(const QTextCodec& codec) : m_codec(codec) {}

    /// Writes a node and all its following siblings.
    void writeFrom(QDomNode node) {
        int depth = 0;
        while (!node.isNull()) {
            begin(node, depth);
            if (node.hasChildNodes() && node.isElement()) {
                node = node.firstChild();
                ++depth;
                continue;
            }
            while (depth > 0 && node.nextSibling().isNull()) {
                node = node.parentNode();
                end(node, --depth);
            }
            node = node.nextSibling();
        }
    }

    /// Writes a node without children, or the start of an element with children.
    void begin(const QDomNode& node, int depth) {
        switch (node.nodeType()) {
        case QDomNode::ElementNode:
            beginElement(node.toElement(), depth);
            break;
        case QDomNode::TextNode:
            writeEscaped(node.nodeValue(), Inside::Text);
            break;
        case QDomNode::CDATASectionNode:
            written += QStringLiteral("<![CDATA[") + node.nodeValue() + QStringLiteral("]]>");
            break;
        case QDomNode::CommentNode:
            indent(node, depth);
            written += QStringLiteral("<!--") + node.nodeValue();
            if (node.nodeValue().endsWith(QLatin1Char('-'))) // "--->" does not end a comment
                written += QLatin1Char(' ');
            written += QStringLiteral("-->");
            endLine(node);
            break;
        case QDomNode::ProcessingInstructionNode:
            written += QStringLiteral("<?") + node.nodeName() + QLatin1Char(' ') + node.nodeValue() +
                       QStringLiteral("?>\n");
            break;
        case QDomNode::EntityReferenceNode:
            written += QLatin1Char('&') + node.nodeName() + QLatin1Char(';');
            break;
        default:
            break;
        }
    }

    void writeDocumentType(const QDomDocumentType& type) { written += Sorter(textByQt(type)).documentType(); }

    QString written;

private:
    enum class Inside { Text, Attribute };

    void beginElement(const QDomElement& element, int depth) {
        indent(element, depth);
        written += QLatin1Char('<') + element.tagName();
        writeAttributes(element);
        if (element.hasChildNodes()) {
            written += QLatin1Char('>');
            if (!element.firstChild().isText())
                written += QLatin1Char('\n');
        } else {
            written += QStringLiteral("/>");
            endLine(element);
        }
    }

    void end(const QDomNode& element, int depth) {
        if (!element.lastChild().isText())
            written += QString(depth, QLatin1Char(' '));
        written += QStringLiteral("</") + element.nodeName() + QLatin1Char('>');
        endLine(element);
    }

    void writeAttributes(const QDomElement& element) {
        const QDomNamedNodeMap attributes = element.attributes();
        if (attributes.count() > maxIndexedAttributes) {
            written += Sorter(textByQt(element.cloneNode(false))).attributes();
            return;
        }
        std::map<QString, QString> byName;
        for (int number = 0; number < attributes.count(); ++number) {
            const QDomNode attribute = attributes.item(number);
            byName[attribute.nodeName()] = attribute.nodeValue();
        }
        for (const auto& [name, value] : byName) {
            written += QLatin1Char(' ') + name + QStringLiteral("=\"");
            writeEscaped(value, Inside::Attribute);
            written += QLatin1Char('"');
        }
    }

    void writeEscaped(const QString& text, Inside inside) {
        const bool isAttribute = inside == Inside::Attribute;
        const int start = written.size();
        for (const QChar c : text) {
            const ushort code = c.unicode();
            if (code == '<')
                written += QStringLiteral("&lt;");
            else if (code == '"' && isAttribute)
                written += QStringLiteral("&quot;");
            else if (code == '&')
                written += QStringLiteral("&amp;");
            else if (code == '>' && written.size() - start >= 2 && written.endsWith(QLatin1String("]]")))
                written += QStringLiteral("&gt;");
            else if (code == '\r' || (isAttribute && (code == '\n' || code == '\t')) || !canEncode(c))
                written += QStringLiteral("&#x") + QString::number(code, 16) + QLatin1Char(';');
            else
                written += c;
        }
    }

    bool canEncode(QChar c) const {
        constexpr int utf8 = 106;
        return (m_codec.mibEnum() == utf8 && !c.isSurrogate()) || m_codec.canEncode(c);
    }

    /// Blanks and line ends next to a text would become part of the text.
    void indent(const QDomNode& node, int depth) {
        if (!node.previousSibling().isText())
            written += QString(depth, QLatin1Char(' '));
    }
    void endLine(const QDomNode& node) {
        if (!node.nextSibling().isText())
            written += QLatin1Char('\n');
    }

    QString textByQt(const QDomNode& node) const {
        QString text;
        QTextStream stream(&text, QIODevice::WriteOnly);
        stream.setCodec(const_cast<QTextCodec*>(&m_codec));
        node.save(stream, 1);
        stream.flush();
        return text;
    }

    const QTextCodec& m_codec;
};

bool isXmlDeclaration(const QDomNode& node) {
    return node.isProcessingInstruction() && node.nodeName() == QLatin1String("xml");
}

const QTextCodec& utf8() {
    return *QTextCodec::codecForName("UTF-8");
}

/// The encoding that Qt's DOM reads from the declaration of the document.
const QTextCodec& codecOf(const QDomDocument& dom) {
    if (!isXmlDeclaration(dom.firstChild()))
        return utf8();
    QDomDocument head;
    head.appendChild(head.importNode(dom.firstChild(), false));
    QString text;
    QTextStream stream(&text, QIODevice::WriteOnly);
    head.save(stream, 1);
    return *stream.codec();
}

} // namespace

bool parse(QDomDocument& dom, const QString& text) {
    dom = QDomDocument();
    if (!isBounded(text))
        return false;
    dom.setContent(text, false);
    return true;
}

QString decoded(const QByteArray& bytes) {
    QXmlInputSource source;
    source.setData(bytes);
    return source.data();
}

QString toText(const QDomDocument& dom) {
    Writer writer(codecOf(dom));
    QDomNode first = dom.firstChild();
    if (isXmlDeclaration(first)) {
        writer.begin(first, 0);
        first = first.nextSibling();
    }
    // The document type is written before comments, wherever it was.
    if (!first.isNull())
        writer.writeDocumentType(dom.doctype());
    writer.writeFrom(first);
    return writer.written;
}

QByteArray toUtf8(const QDomDocument& dom) {
    // Qt does not write the document type to a stream.
    QDomNode first = dom.firstChild();
    if (isXmlDeclaration(first))
        first = first.nextSibling();
    Writer writer(utf8());
    writer.written = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    writer.writeFrom(first);
    return writer.written.toUtf8();
}

} // namespace Stored::V21::Internal
