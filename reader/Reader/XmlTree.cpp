#include "Reader/XmlTree.h"

#include "Archive/Internal/PlainText.h"
#include "Archive/Internal/TreeFacts.h"

#include <QXmlStreamReader>

#include <array>
#include <optional>
#include <utility>
#include <vector>

namespace Words = Archive::Words;
using Archive::Internal::TreeFacts;

namespace Reader {
namespace {

/// A cache that gives equal strings the same memory. A string with the same hash replaces the cached one.
template <std::size_t slotCount>
class StringPool {
public:
    /// Calls `look` for each string that is not in the cache.
    template <class Look>
    QString take(const QStringRef& text, Look look) {
        if (text.isEmpty())
            return QLatin1String("");
        QString& kept = m_slots[qHash(text) % slotCount];
        if (kept != text) {
            kept = text.toString();
            look(kept);
        }
        return kept;
    }

private:
    std::array<QString, slotCount> m_slots;
};

constexpr int longestSharedValue = 24;

class Builder {
public:
    Builder(QXmlStreamReader& reader, TreeFacts* facts) : m_reader(reader), m_facts(facts) {}

    QDomDocument run();

private:
    void declare();
    void startElement();
    void endElement();
    QString takeName(const QStringRef& name);
    QString takeValue(const QStringRef& value);
    void takeCharacters();
    void note(const QDomElement& element, const QString& tag, const QString& type,
              const std::optional<QString>& objectId);

    QXmlStreamReader& m_reader;
    TreeFacts* m_facts;
    bool m_isPlain = true; ///< for the part of the document element that was read so far
    bool m_showsTypes = true;
    Archive::Internal::GreatestId m_greatest;
    QDomDocument m_document;
    QDomNode m_node;                ///< what is open
    std::vector<QDomNode> m_around; ///< the nodes around it, innermost last
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
            endElement();
            break;
        case QXmlStreamReader::Characters:
            takeCharacters();
            break;
        case QXmlStreamReader::Comment:
            m_isPlain = false;
            m_node.appendChild(m_document.createComment(m_reader.text().toString()));
            break;
        case QXmlStreamReader::ProcessingInstruction:
            m_isPlain = false;
            m_node.appendChild(
                m_document.createProcessingInstruction(m_reader.processingInstructionTarget().toString(),
                                                       m_reader.processingInstructionData().toString()));
            break;
        default:
            break;
        }
    }
    while (!m_around.empty())
        endElement(); // there was an error
    if (m_facts && m_isPlain && Archive::Internal::hasPlainFrame(m_document)) {
        m_facts->greatest = m_greatest;
        m_facts->showsTypes = m_showsTypes && !m_document.documentElement().isNull();
    }
    return m_document;
}

/// In the tree, the XML declaration is a processing instruction.
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
    const QString tag = takeName(m_reader.qualifiedName());
    QDomElement element = m_document.createElement(tag);
    const QXmlStreamAttributes attributes = m_reader.attributes();
    m_isPlain = m_isPlain && attributes.size() <= Archive::Internal::mostPlainAttributes;
    QString type;
    std::optional<QString> id;
    for (const QXmlStreamAttribute& attribute : attributes) {
        const QString name = takeName(attribute.qualifiedName());
        const QString value = takeValue(attribute.value());
        element.setAttribute(name, value);
        if (name == Words::type)
            type = value;
        else if (name == Words::objectId)
            id = value;
    }
    m_around.push_back(std::exchange(m_node, element));
    if (m_facts)
        note(element, tag, type, id);
}

/// An element is inserted into the tree when it is complete: each change of a node in the tree walks up to the root.
void Builder::endElement() {
    m_around.back().appendChild(m_node);
    m_node = m_around.back();
    m_around.pop_back();
}

/// Adds an element to the facts.
void Builder::note(const QDomElement& element, const QString& tag, const QString& type,
                   const std::optional<QString>& objectId) {
    if (tag == Words::RootObject)
        m_facts->rootObjects->push_back({element, type});
    else if (tag == Words::BaseOfObject)
        m_facts->baseParts->push_back({element, type});
    else if (tag == Words::Archive)
        ++m_facts->archives;
    if (Archive::Internal::isListedType(type))
        m_facts->elementsByType[type].push_back(element);
    if (!objectId)
        return;
    ++m_facts->objectsByType[type];
    if (const long long id = objectId->toLongLong(); id > m_greatest.id)
        m_greatest = {id, element};
}

QString Builder::takeName(const QStringRef& name) {
    return m_names.take(name, [this](const QString& taken) {
        m_isPlain = m_isPlain && Archive::Internal::isPlainName(taken);
        m_showsTypes = m_showsTypes && (taken == Words::type || !taken.endsWith(Words::type));
    });
}

QString Builder::takeValue(const QStringRef& value) {
    const auto look = [this](const QString& taken) {
        m_isPlain = m_isPlain && Archive::Internal::isPlainText(taken);
        m_showsTypes = m_showsTypes && Archive::Internal::survivesRewriting(taken);
    };
    if (value.size() <= longestSharedValue)
        return m_values.take(value, look);
    QString taken = value.toString();
    look(taken);
    return taken;
}

/// Text of white space only is ignored, also in a CDATA section.
void Builder::takeCharacters() {
    const QString text = m_reader.text().toString();
    if (text.trimmed().isEmpty())
        return;
    m_isPlain = m_isPlain && !m_reader.isCDATA() && Archive::Internal::isPlainText(text);
    m_showsTypes = false; // the text itself may name a type
    if (m_reader.isCDATA())
        m_node.appendChild(m_document.createCDATASection(text));
    else
        m_node.appendChild(m_document.createTextNode(text));
}

} // namespace

QDomDocument buildXmlTree(QXmlStreamReader& reader, TreeFacts* facts) {
    return Builder(reader, facts).run();
}

} // namespace Reader
