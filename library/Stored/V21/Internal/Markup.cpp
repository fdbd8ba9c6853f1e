#include "Stored/V21/Internal/Markup.h"

#include <QTextStream>
#include <QXmlDefaultHandler>
#include <QXmlInputSource>
#include <QXmlSimpleReader>

#include <algorithm>
#include <map>
#include <vector>

// The reader behind QDomDocument is deprecated as an interface, and it alone tells beforehand what a text will do to
// the DOM.
QT_WARNING_DISABLE_DEPRECATED

namespace Stored::V21::Internal {
namespace {

// Qt's parser, DOM and writer recurse, with up to a kilobyte of stack a level.
constexpr int maxDepth = 256;

// Places of elements are lists as long as their depth, so the depths of all elements together are bounded too. No
// drawing comes near: on average its elements would have to stand as many levels deep as they have characters times
// this number.
constexpr double maxLevelsPerCharacter = 8;
constexpr double maxLevelsOfSmallText = 100'000;

// Qt compares all entities with one another.
constexpr int maxEntities = 1000;
// Qt's own limit for an entity that refers to others.
constexpr double maxNestedEntity = 4096;
constexpr double maxExpansionPerCharacter = 4;
constexpr double maxExpansionOfSmallText = 256 * 1024;

/// Reads along without keeping anything, and stops Qt's parser where a text gets out of bounds.
class Gauge : public QXmlDefaultHandler {
public:
    explicit Gauge(const QString& text)
        : m_maxLevels(maxLevelsOfSmallText + maxLevelsPerCharacter * text.size()), m_entities(text) {}

    bool isExceeded() const { return m_exceeded; }

    bool startElement(const QString&, const QString&, const QString&, const QXmlAttributes&) override {
        m_levels += ++m_depth;
        return within(m_depth <= maxDepth && m_levels <= m_maxLevels);
    }

    bool endElement(const QString&, const QString&, const QString&) override {
        --m_depth;
        return true;
    }

    bool internalEntityDecl(const QString& name, const QString& value) override {
        // A parameter entity could bring in declarations in any number, and no drawing needs one.
        return within(!name.startsWith(QLatin1Char('%')) && m_entities.admit(name, value));
    }

private:
    bool within(bool bounds) {
        m_exceeded = m_exceeded || !bounds;
        return bounds;
    }

    double m_maxLevels;
    EntityBudget m_entities;
    int m_depth = 0;
    double m_levels = 0;
    bool m_exceeded = false;
};

/// Qt's parser recurses for the brackets of an element's content model, and asks no handler before.
bool hasDeepContentModel(const QString& text) {
    const QString declaration = QStringLiteral("<!ELEMENT");
    for (int at = text.indexOf(declaration); at >= 0; at = text.indexOf(declaration, at)) {
        int depth = 0;
        for (at += declaration.size(); at < text.size() && text[at] != QLatin1Char('>'); ++at) {
            if (text[at] == QLatin1Char('(') && ++depth > maxDepth)
                return true;
            if (text[at] == QLatin1Char(')'))
                --depth;
        }
    }
    return false;
}

bool isBounded(const QString& text) {
    if (hasDeepContentModel(text))
        return false;
    Gauge gauge(text);
    QXmlSimpleReader reader;
    // As QDomDocument sets it up.
    reader.setFeature(QStringLiteral("http://xml.org/sax/features/namespaces"), false);
    reader.setFeature(QStringLiteral("http://xml.org/sax/features/namespace-prefixes"), true);
    reader.setContentHandler(&gauge);
    reader.setDeclHandler(&gauge);
    QXmlInputSource source;
    source.setData(text);
    reader.parse(&source);
    return !gauge.isExceeded();
}

/// Goes through what Qt's DOM has written, and writes it again with attributes in order of their names.
class Sorter {
public:
    explicit Sorter(const QString& text) : m_text(text) {}

    QString sorted() {
        m_sorted.reserve(m_text.size());
        while (m_at < m_text.size()) {
            copyTo(m_text.indexOf(QLatin1Char('<'), m_at));
            if (m_at == m_text.size())
                break;
            if (startsWith("<!--"))
                copyBehind("-->", 4);
            else if (startsWith("<![CDATA["))
                copyBehind("]]>", 9);
            else if (startsWith("<?"))
                copyBehind("?>", 2);
            else if (startsWith("<!DOCTYPE"))
                copyDocumentType();
            else
                copyTag();
        }
        return m_sorted;
    }

private:
    bool startsWith(const char* mark) const { return m_text.midRef(m_at).startsWith(QLatin1String(mark)); }

    /// Copies up to a place; to the end for -1.
    void copyTo(int place) {
        const int end = place < 0 ? m_text.size() : place;
        m_sorted += m_text.midRef(m_at, end - m_at);
        m_at = end;
    }

    void copyBehind(const char* mark, int from) {
        const int found = m_text.indexOf(QLatin1String(mark), m_at + from);
        copyTo(found < 0 ? found : found + static_cast<int>(qstrlen(mark)));
    }

    /// The first place, from one on, of any of these characters that stands in no quotes.
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

    /// Sorts the declarations between the brackets, each of which stands on its own line.
    void copyDocumentType() {
        copyTo(findUnquoted("[>", m_at));
        if (m_at < m_text.size() && m_text[m_at] == QLatin1Char('[')) {
            copyTo(m_at + 1);
            std::vector<QStringRef> declarations;
            const int first = findUnquoted("<]", m_at);
            copyTo(first);
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
        copyTo(findUnquoted(">", m_at));
    }

    void copyTag() {
        const int end = findUnquoted(">", m_at);
        const int behindName = std::min(findUnquoted(" />", m_at + 2), end);
        copyTo(behindName);
        std::map<QStringRef, QStringRef> attributes; // from the name to name and value
        while (m_at < end && m_text[m_at] == QLatin1Char(' ')) {
            const int name = m_at + 1;
            const int equals = findUnquoted("=>", name);
            const int behindValue = std::min(findUnquoted(" />", equals), end);
            attributes[m_text.midRef(name, equals - name)] = m_text.midRef(name, behindValue - name);
            m_at = behindValue;
        }
        for (const auto& [name, attribute] : attributes) {
            m_sorted += QLatin1Char(' ');
            m_sorted += attribute;
        }
        copyTo(end);
    }

    const QString& m_text;
    QString m_sorted;
    int m_at = 0;
};

} // namespace

bool EntityBudget::admit(const QString& name, const QString& value) {
    if (m_admitted == 0)
        countReferences();
    const double size =
        value.contains(QLatin1Char('&')) ? std::max<double>(value.size(), maxNestedEntity) : value.size();
    m_expanded += size * m_references.value(name);
    return ++m_admitted <= maxEntities &&
           m_expanded <= maxExpansionOfSmallText + maxExpansionPerCharacter * m_text.size();
}

void EntityBudget::countReferences() {
    int name = -1;
    for (int at = 0; at < m_text.size(); ++at) {
        const QChar c = m_text[at];
        if (c == QLatin1Char('&')) {
            name = at + 1;
        } else if (c == QLatin1Char(';') && name >= 0) {
            ++m_references[m_text.mid(name, at - name)];
            name = -1;
        }
    }
}

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
    return Sorter(dom.toString(1)).sorted();
}

QByteArray toUtf8(const QDomDocument& dom) {
    QString text;
    QTextStream stream(&text, QIODevice::WriteOnly);
    stream.setCodec("UTF-8");
    dom.save(stream, 1, QDomNode::EncodingFromTextStream);
    stream.flush();
    return Sorter(text).sorted().toUtf8();
}

} // namespace Stored::V21::Internal
