#include "Reader/XmlTree.h"

#include <QXmlStreamReader>

#include <array>

namespace Reader {
namespace {

/// Gives equal strings the same memory, as long as no other pushes them out.
template <std::size_t slotCount>
class StringPool {
public:
    QString take(const QStringRef& text) {
        if (text.isEmpty())
            return QLatin1String("");
        QString& kept = m_slots[qHash(text) % slotCount];
        if (kept != text)
            kept = text.toString();
        return kept;
    }

private:
    std::array<QString, slotCount> m_slots;
};

constexpr int longestSharedValue = 24;

class Builder {
public:
    explicit Builder(QXmlStreamReader& reader) : m_reader(reader) {}

    QDomDocument run();

private:
    void declare();
    void startElement();
    QString takeValue(const QStringRef& value);
    void takeCharacters();

    QXmlStreamReader& m_reader;
    QDomDocument m_document;
    QDomNode m_node; ///< what is open
    StringPool<1024> m_names;
    StringPool<4096> m_values;
};

QDomDocument Builder::run() {
    m_node = m_document = QDomDocument(QString());
    while (!m_reader.atEnd()) {
        switch (m_reader.readNext()) {
        case QXmlStreamReader::StartDocument:
            declare();
            break;
        case QXmlStreamReader::StartElement:
            startElement();
            break;
        case QXmlStreamReader::EndElement:
            m_node = m_node.parentNode();
            break;
        case QXmlStreamReader::Characters:
            takeCharacters();
            break;
        case QXmlStreamReader::Comment:
            m_node.appendChild(m_document.createComment(m_reader.text().toString()));
            break;
        case QXmlStreamReader::ProcessingInstruction:
            m_node.appendChild(
                m_document.createProcessingInstruction(m_reader.processingInstructionTarget().toString(),
                                                       m_reader.processingInstructionData().toString()));
            break;
        default:
            break;
        }
    }
    return m_document;
}

/// The tree keeps the text's declaration as a processing instruction.
void Builder::declare() {
    if (m_reader.documentVersion().isEmpty())
        return;
    QString data = QStringLiteral("version='%1'").arg(m_reader.documentVersion());
    if (!m_reader.documentEncoding().isEmpty())
        data += QStringLiteral(" encoding='%1'").arg(m_reader.documentEncoding());
    if (m_reader.isStandaloneDocument())
        data += QStringLiteral(" standalone='yes'");
    m_node.appendChild(m_document.createProcessingInstruction(QStringLiteral("xml"), data));
}

void Builder::startElement() {
    QDomElement element = m_document.createElement(m_names.take(m_reader.qualifiedName()));
    const QXmlStreamAttributes attributes = m_reader.attributes();
    for (const QXmlStreamAttribute& attribute : attributes)
        element.setAttribute(m_names.take(attribute.qualifiedName()), takeValue(attribute.value()));
    m_node.appendChild(element);
    m_node = element;
}

QString Builder::takeValue(const QStringRef& value) {
    return value.size() <= longestSharedValue ? m_values.take(value) : value.toString();
}

/// What is nothing but spaces is no content, in a CDATA section neither.
void Builder::takeCharacters() {
    const QString text = m_reader.text().toString();
    if (text.trimmed().isEmpty())
        return;
    if (m_reader.isCDATA())
        m_node.appendChild(m_document.createCDATASection(text));
    else
        m_node.appendChild(m_document.createTextNode(text));
}

} // namespace

QDomDocument buildXmlTree(QXmlStreamReader& reader) {
    return Builder(reader).run();
}

} // namespace Reader
