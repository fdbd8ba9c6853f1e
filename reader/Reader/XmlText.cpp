#include "Reader/XmlText.h"

#include "Reader/Error.h"
#include "Reader/TextForm.h"
#include "Reader/XmlTree.h"

#include <QStringList>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace Reader {
namespace {

/// Scans the tags of a text for too great a depth and too many attributes, before a tree is built. That takes
/// little time compared to parsing. Text that is not well-formed need not be handled: the counts are right up
/// to the first error, where the parser stops.
class TagScan {
public:
    explicit TagScan(std::string_view text) : m_text(text) {}

    /// Scans up to the end or to the first refused tag. Returns the reason of the refusal; empty if there is
    /// none.
    QString run();
    std::size_t position() const { return m_position; }

private:
    void skipPast(std::string_view end);
    /// Skips a tag; the position must be at its '<'. Returns the change of depth.
    int passTag();
    bool passStartTag();

    std::string_view m_text;
    std::size_t m_position = 0;
    QString m_refusal;
};

QString TagScan::run() {
    long long mostNesting = maxXmlNesting;
    long long nesting = 0;
    for (int depth = 0; m_refusal.isEmpty();) {
        const std::size_t tag = m_text.find('<', m_position);
        if (tag == std::string_view::npos)
            break;
        m_position = tag;
        depth += passTag();
        nesting += depth;
        mostNesting += maxXmlNestingOfEach;
        if (depth > maxXmlDepth)
            m_refusal = QStringLiteral("elements are nested deeper than %1 levels").arg(maxXmlDepth);
        else if (nesting > mostNesting)
            m_refusal =
                QStringLiteral("too many elements are nested deeper than %1 levels").arg(maxXmlNestingOfEach);
    }
    return m_refusal;
}

int TagScan::passTag() {
    const std::string_view rest = m_text.substr(m_position);
    if (rest.starts_with("<!--")) {
        m_position += 4;
        skipPast("-->");
        return 0;
    }
    if (rest.starts_with("<![CDATA[")) {
        skipPast("]]>");
        return 0;
    }
    if (rest == "<!" || rest == "<!-" || std::string_view("<![CDATA[").starts_with(rest)) {
        m_position = m_text.size(); // the text was cut off
        return 0;
    }
    if (rest.starts_with("<!")) {
        m_refusal = QStringLiteral("a document type declaration or an entity");
        return 0;
    }
    if (rest.starts_with("<?")) {
        skipPast("?>");
        return 0;
    }
    if (rest.starts_with("</")) {
        skipPast(">");
        return -1;
    }
    return passStartTag() ? 1 : 0;
}

bool TagScan::passStartTag() {
    char quote = 0;
    int attributes = 0;
    for (++m_position; m_position < m_text.size(); ++m_position) {
        const char c = m_text[m_position];
        if (c == '<') { // not well-formed, also between quotes
            m_position = m_text.size();
            return false;
        }
        if (quote) {
            quote = c == quote ? char(0) : quote;
        } else if (c == '"' || c == '\'') {
            quote = c;
            if (++attributes > maxXmlAttributes) {
                m_refusal = QStringLiteral("an element has more than %1 attributes").arg(maxXmlAttributes);
                return false;
            }
        } else if (c == '>') {
            const bool isEmpty = m_text[m_position - 1] == '/';
            ++m_position;
            return !isEmpty;
        }
    }
    return false;
}

void TagScan::skipPast(std::string_view end) {
    const std::size_t found = m_text.find(end, m_position);
    m_position = found == std::string_view::npos ? m_text.size() : found + end.size();
}

[[noreturn]] void failForEncoding(const QString& name, const std::string& encoding) {
    throw Error(ErrorKind::ForeignEncoding, {.file = name, .line = 1, .column = 1, .reason = encoding});
}

/// Tags are found in the bytes, so the encoding must be one that writes them as ASCII does.
void refuseForeignEncoding(const QByteArray& text, const QString& name) {
    QXmlStreamReader start(text.left(1024));
    start.readNext();
    const QString encoding = start.documentEncoding().toString();
    static const QStringList known = {QStringLiteral("utf-8"), QStringLiteral("us-ascii"),
                                      QStringLiteral("iso-8859-"), QStringLiteral("windows-125")};
    const bool isKnown =
        encoding.isEmpty() || std::any_of(known.begin(), known.end(), [&](const QString& prefix) {
            return encoding.startsWith(prefix, Qt::CaseInsensitive);
        });
    if (!isKnown)
        failForEncoding(name, encoding.toStdString());
}

/// The XML reader takes NUL characters for text. So many in a row are a block of the file that was lost, which can hide
/// tags.
void refuseLostBlocks(const QByteArray& bytes, const QString& name) {
    static const QByteArray block(16, '\0');
    const int found = bytes.indexOf(block);
    if (found < 0)
        return;
    int end = found;
    while (end < bytes.size() && bytes.at(end) == '\0')
        ++end;
    const std::string_view text(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    const auto [line, column] = lineAndColumn(text, static_cast<std::size_t>(found));
    throw Error(ErrorKind::BrokenXml, {.file = name,
                                       .line = line,
                                       .column = column,
                                       .reason = "here are " + std::to_string(end - found) +
                                                 " NUL bytes in place of a part of the file that was lost"});
}

void refuseHostileText(const QByteArray& bytes, const QString& name) {
    const std::string_view text(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    TagScan scan(text);
    const QString refusal = scan.run();
    if (refusal.isEmpty())
        return;
    const auto [line, column] = lineAndColumn(text, scan.position());
    throw Error(ErrorKind::RefusedXml,
                {.file = name, .line = line, .column = column, .reason = refusal.toStdString()});
}

class Writer {
public:
    QByteArray run(const QDomDocument& document);

private:
    void begin(const QDomNode& node);
    void writeAttributes(const QDomElement& element);

    QByteArray m_text;
    QXmlStreamWriter m_out{&m_text};
};

QByteArray Writer::run(const QDomDocument& document) {
    m_out.setAutoFormatting(true);
    m_out.setAutoFormattingIndent(1);
    m_out.writeStartDocument();
    QDomNode node = document.firstChild();
    while (!node.isNull()) {
        begin(node);
        QDomNode next = node.firstChild();
        while (next.isNull() && !node.isNull() && node != document) {
            if (node.isElement())
                m_out.writeEndElement();
            next = node.nextSibling();
            if (next.isNull())
                node = node.parentNode();
        }
        node = next;
    }
    m_out.writeEndDocument();
    return m_text;
}

void Writer::begin(const QDomNode& node) {
    switch (node.nodeType()) {
    case QDomNode::ElementNode:
        m_out.writeStartElement(node.nodeName());
        writeAttributes(node.toElement());
        break;
    case QDomNode::TextNode:
        m_out.writeCharacters(node.nodeValue());
        break;
    case QDomNode::CDATASectionNode:
        m_out.writeCDATA(node.nodeValue());
        break;
    case QDomNode::CommentNode:
        m_out.writeComment(node.nodeValue());
        break;
    case QDomNode::ProcessingInstructionNode:
        if (node.nodeName() != QLatin1String("xml")) // the writer writes its own declaration
            m_out.writeProcessingInstruction(node.nodeName(), node.nodeValue());
        break;
    default:
        break;
    }
}

void Writer::writeAttributes(const QDomElement& element) {
    const QDomNamedNodeMap map = element.attributes();
    std::vector<std::pair<QString, QString>> attributes;
    for (int number = 0; number < map.length(); ++number) {
        const QDomNode attribute = map.item(number);
        attributes.emplace_back(attribute.nodeName(), attribute.nodeValue());
    }
    std::sort(attributes.begin(), attributes.end());
    for (const auto& [key, value] : attributes)
        m_out.writeAttribute(key, value);
}

/// The tag of the element in which the text ends, and the text was cut off there.
std::string innermostTag(const QByteArray& text) {
    QXmlStreamReader reader(text);
    reader.setNamespaceProcessing(false);
    std::vector<QString> open;
    while (!reader.atEnd()) {
        const auto token = reader.readNext();
        if (token == QXmlStreamReader::StartElement)
            open.push_back(reader.qualifiedName().toString());
        else if (token == QXmlStreamReader::EndElement)
            open.pop_back();
    }
    return open.empty() ? "the document" : '<' + open.back().toStdString() + '>';
}

[[noreturn]] void failIn(const QXmlStreamReader& reader, const QString& name) {
    throw Error(ErrorKind::BrokenXml, {.file = name,
                                       .line = reader.lineNumber(),
                                       .column = reader.columnNumber(),
                                       .reason = reader.errorString().toStdString()});
}

} // namespace

QDomDocument parseXml(const QByteArray& bytes, const QString& name, Archive::Internal::TreeFacts* facts) {
    const Encoding encoding = encodingOf(bytes);
    if (encoding == Encoding::Utf32Little || encoding == Encoding::Utf32Big)
        failForEncoding(name, nameOf(encoding));
    const auto [text, endsInCharacter] = decode(bytes, name);
    refuseForeignEncoding(text, name);
    refuseHostileText(text, name);
    refuseLostBlocks(text, name);
    QXmlStreamReader reader(text);
    reader.setNamespaceProcessing(false);
    QDomDocument document = buildXmlTree(reader, facts);
    if (reader.error() == QXmlStreamReader::PrematureEndOfDocumentError ||
        (endsInCharacter && !reader.hasError()))
        throw cutOff(ErrorKind::BrokenXml, name, text, bytes.size(), innermostTag(text));
    if (reader.hasError())
        failIn(reader, name);
    return document;
}

QByteArray writeXml(const QDomDocument& document) {
    return Writer().run(document);
}

} // namespace Reader
