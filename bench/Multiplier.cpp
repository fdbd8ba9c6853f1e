#include "bench/Multiplier.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <stdexcept>

namespace Words = Archive::Words;
using Archive::Internal::Elements;

namespace Bench {
namespace {

using Id = unsigned long long;

const QString timestampTag = QStringLiteral("timestamp");
const QString durationTag = QStringLiteral("duration");

bool isReference(const QDomElement& e) {
    return Archive::typeOf(e) == Words::ObjectRef;
}

Id valueOf(const QDomElement& e) {
    return e.attribute(Words::value).toULongLong();
}

template <class Visit>
void walk(const QDomElement& top, Visit visit) {
    visit(top);
    Archive::Internal::walkElements(top, visit, [](const QDomElement&) {});
}

QByteArray escaped(const QString& text) {
    return text.toHtmlEscaped()
        .replace(QLatin1Char('\n'), QLatin1String("&#10;"))
        .replace(QLatin1Char('\r'), QLatin1String("&#13;"))
        .replace(QLatin1Char('\t'), QLatin1String("&#9;"))
        .toUtf8();
}

/// The objects and entries of an archive that are repeated.
class Selection {
public:
    Selection(const QDomDocument& archive, const QString& className);

    bool isRepeatedObject(const QDomElement& rootObject) const {
        return !isPredeclarator(rootObject) && !m_fixed.contains(Archive::objectIdOf(rootObject));
    }
    bool isRepeatedItem(const QDomElement& item) const;
    bool isRepeatedId(Id id) const { return m_repeatedIds.contains(id); }
    bool isOfClass(const QDomElement& rootObject) const {
        return Archive::typeOf(rootObject).startsWith(m_className);
    }

    /// Added to the ids of each copy; greater than all ids of the archive.
    long long idStep() const { return static_cast<long long>(m_greatestId) + 1; }
    /// The end of the last repeated entry, in milliseconds.
    long long length() const { return m_length; }

private:
    static bool isPredeclarator(const QDomElement& e) { return Archive::typeOf(e) == Words::Predeclarator; }
    void collectObjects(const QDomDocument& archive);
    void collectFixed(Id root);
    void collectRepeated();
    bool refersTo(const QDomElement& item, const QSet<Id>& targets) const;

    QString m_className;
    QHash<Id, QDomElement> m_rootObjects;
    QSet<Id> m_ofClass;
    QSet<Id> m_fixed;
    QSet<Id> m_repeatedIds;
    Id m_greatestId = 0;
    long long m_length = 0;
};

Selection::Selection(const QDomDocument& archive, const QString& className) : m_className(className) {
    collectObjects(archive);
    collectFixed(valueOf(archive.documentElement().firstChildElement(Words::RootRef)));
    collectRepeated();
}

void Selection::collectObjects(const QDomDocument& archive) {
    for (const QDomElement& object :
         Archive::Internal::children(archive.documentElement(), Words::RootObject)) {
        if (isPredeclarator(object))
            continue;
        m_rootObjects.insert(Archive::objectIdOf(object), object);
        if (isOfClass(object))
            m_ofClass.insert(Archive::objectIdOf(object));
    }
    if (m_ofClass.isEmpty())
        throw std::invalid_argument("no object of the class to repeat");
    walk(archive.documentElement(), [this](const QDomElement& e) {
        m_greatestId = std::max({m_greatestId, Archive::objectIdOf(e), isReference(e) ? valueOf(e) : 0});
    });
}

/// Collects the objects that are not repeated. Follows references from the root, except in array entries that
/// refer to objects of the class.
void Selection::collectFixed(Id root) {
    std::vector<Id> open = {root};
    while (!open.empty()) {
        const Id id = open.back();
        open.pop_back();
        if (m_fixed.contains(id) || !m_rootObjects.contains(id))
            continue;
        m_fixed.insert(id);
        const QDomElement object = m_rootObjects.value(id);
        QDomNode node = object;
        while (!node.isNull()) {
            const QDomElement e = node.toElement();
            if (e.tagName() == Words::Item && refersTo(e, m_ofClass)) {
                node = Archive::Internal::nextSkippingChildren(node, object);
                continue;
            }
            if (isReference(e))
                open.push_back(valueOf(e));
            node = Archive::Internal::nextInDocument(node, object);
        }
    }
}

void Selection::collectRepeated() {
    const auto addAll = [this](const QDomElement& top) {
        walk(top, [this](const QDomElement& e) {
            if (e.hasAttribute(Words::objectId))
                m_repeatedIds.insert(Archive::objectIdOf(e));
        });
    };
    for (const QDomElement& object : m_rootObjects) {
        if (isRepeatedObject(object))
            addAll(object);
    }
    const QSet<Id> roots = m_repeatedIds;
    for (const Id id : m_fixed) {
        for (const QDomElement& item : Archive::Internal::elements(m_rootObjects.value(id), Words::Item)) {
            if (!refersTo(item, roots))
                continue;
            addAll(item);
            walk(item, [this](const QDomElement& e) {
                const QDomElement duration = e.parentNode().firstChildElement(durationTag);
                if (e.tagName() == timestampTag)
                    m_length = std::max(m_length, static_cast<long long>(valueOf(e) + valueOf(duration)));
            });
        }
    }
}

bool Selection::refersTo(const QDomElement& item, const QSet<Id>& targets) const {
    bool refers = false;
    walk(item,
         [&](const QDomElement& e) { refers = refers || (isReference(e) && targets.contains(valueOf(e))); });
    return refers;
}

/// A predeclaration is repeated with its object, any other entry with the objects that it refers to.
bool Selection::isRepeatedItem(const QDomElement& item) const {
    const QDomElement record = item.firstChildElement(Words::Data);
    return Archive::typeOf(record) == Words::Predeclare
               ? isRepeatedId(valueOf(record.firstChildElement(Words::oid)))
               : refersTo(item, m_repeatedIds);
}

} // namespace

/// Writes the elements of an archive as blocks of pieces.
class Recorder {
public:
    Recorder(const QDomDocument& archive, const QString& className, Multiplier& result)
        : m_selection(archive, className), m_result(result) {
        m_result.m_blocks.push_back({});
        m_text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
        writeArchive(archive.documentElement());
        endPiece();
    }

private:
    void writeArchive(const QDomElement& archive);
    void writeElement(const QDomElement& e);
    void writeArray(const QDomElement& array);
    void writeStart(const QDomElement& e);
    void writeAttribute(const QDomElement& e, const QString& name);
    void writeEnd(const QDomElement& e, bool isEmpty);
    void writeNumber(long long number, long long step);
    void endPiece();
    void begin(bool isRepeated);

    bool isRepeating() const { return m_result.m_blocks.back().isRepeated; }

    const Selection m_selection;
    Multiplier& m_result;
    QByteArray m_text; ///< the text since the last piece
    int m_depth = 0;
    bool m_isWithinRepeated = false; ///< in the first copy of an object that is repeated as a whole
    QDomElement m_sized;             ///< the current array in which entries are repeated
    long long m_sizeStep = 0;        ///< the number of repeated entries in it
    QDomElement m_numbered;          ///< the current repeated entry
    long long m_itemStart = 0;       ///< its index in the second copy minus `m_itemStep`
    long long m_itemStep = 0;
};

void Recorder::begin(bool isRepeated) {
    endPiece();
    m_result.m_blocks.push_back({{}, isRepeated});
}

void Recorder::endPiece() {
    if (!m_text.isEmpty())
        m_result.m_blocks.back().pieces.push_back({m_text, false, 0, 0});
    m_text.clear();
}

void Recorder::writeNumber(long long number, long long step) {
    m_result.m_blocks.back().pieces.push_back({m_text, true, number, step});
    m_text.clear();
}

void Recorder::writeArchive(const QDomElement& archive) {
    writeStart(archive);
    m_text += ">\n";
    ++m_depth;
    for (QDomElement e = archive.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        m_isWithinRepeated = e.tagName() == Words::RootObject && m_selection.isRepeatedObject(e);
        writeElement(e);
    }
    begin(true);
    for (const QDomElement& object : Archive::Internal::children(archive, Words::RootObject)) {
        if (m_selection.isRepeatedObject(object)) {
            writeElement(object);
            m_result.m_further.objects += m_selection.isOfClass(object) ? 1 : 0;
        }
    }
    begin(false);
    --m_depth;
    m_text += "</" + archive.tagName().toUtf8() + ">\n";
    m_result.m_one.objects = m_result.m_further.objects;
}

void Recorder::writeElement(const QDomElement& e) {
    if (!isRepeating() && !m_isWithinRepeated && Archive::typeOf(e) == Words::Array) {
        writeArray(e);
        return;
    }
    writeStart(e);
    const bool isEmpty = e.firstChild().isNull();
    m_text += isEmpty ? "/>\n" : ">\n";
    ++m_depth;
    for (QDomElement child = e.firstChildElement(); !child.isNull(); child = child.nextSiblingElement())
        writeElement(child);
    --m_depth;
    writeEnd(e, isEmpty);
}

/// Writes an array that is not repeated itself: its entries, then those of further copies.
void Recorder::writeArray(const QDomElement& array) {
    const Elements items = Archive::Internal::children(array, Words::Item);
    Elements repeated;
    std::copy_if(items.begin(), items.end(), std::back_inserter(repeated),
                 [this](const QDomElement& item) { return m_selection.isRepeatedItem(item); });
    const auto step = static_cast<long long>(repeated.size());
    m_sized = array;
    m_sizeStep = step;
    writeStart(array);
    const bool isEmpty = array.firstChild().isNull();
    m_text += isEmpty ? "/>\n" : ">\n";
    ++m_depth;
    for (const QDomElement& item : items) {
        m_isWithinRepeated = m_selection.isRepeatedItem(item);
        writeElement(item);
    }
    m_isWithinRepeated = false;
    if (!repeated.empty()) {
        begin(true);
        m_itemStep = step;
        m_itemStart = static_cast<long long>(items.size()) - step;
        for (const QDomElement& item : repeated) {
            m_numbered = item;
            ++m_itemStart;
            writeElement(item);
        }
        m_numbered = QDomElement();
        begin(false);
    }
    --m_depth;
    writeEnd(array, isEmpty);
}

void Recorder::writeStart(const QDomElement& e) {
    ++(isRepeating() ? m_result.m_further : m_result.m_one).elements;
    m_text += QByteArray(m_depth, ' ') + '<' + e.tagName().toUtf8();
    const QDomNamedNodeMap attributes = e.attributes();
    QStringList names;
    for (int place = 0; place < attributes.size(); ++place)
        names.append(attributes.item(place).nodeName());
    names.sort();
    for (const QString& name : names) {
        m_text += ' ' + name.toUtf8() + "=\"";
        writeAttribute(e, name);
        m_text += '"';
    }
}

void Recorder::writeAttribute(const QDomElement& e, const QString& name) {
    const QString value = e.attribute(name);
    if (!isRepeating() && e == m_sized && name == Words::size)
        return writeNumber(value.toLongLong(), m_sizeStep);
    if (isRepeating()) {
        const bool isId = name == Words::objectId || (name == Words::value && isReference(e));
        const auto id = value.toULongLong();
        if (isId && (m_selection.isRepeatedId(id) || Archive::typeOf(e) == Words::Predeclare))
            return writeNumber(value.toLongLong(), m_selection.idStep());
        if (e == m_numbered && name == Words::index)
            return writeNumber(m_itemStart, m_itemStep);
        if (!m_numbered.isNull() && e.tagName() == timestampTag && name == Words::value)
            return writeNumber(value.toLongLong(), m_selection.length());
    }
    m_text += escaped(value);
}

void Recorder::writeEnd(const QDomElement& e, bool isEmpty) {
    if (!isEmpty)
        m_text += QByteArray(m_depth, ' ') + "</" + e.tagName().toUtf8() + ">\n";
}

Multiplier::Multiplier(const QDomDocument& archive, const QString& className) {
    Recorder(archive, className, *this);
    for (const Block& block : m_blocks) {
        QByteArray text;
        append(text, block, 1);
        (block.isRepeated ? m_further : m_one).bytes += static_cast<std::size_t>(text.size());
    }
}

void Multiplier::append(QByteArray& text, const Block& block, std::size_t copy) {
    for (const Piece& piece : block.pieces) {
        text += piece.text;
        if (piece.hasNumber)
            text += QByteArray::number(piece.number + static_cast<long long>(copy) * piece.step);
    }
}

QByteArray Multiplier::text(std::size_t copies) const {
    QByteArray text;
    for (const Block& block : m_blocks) {
        if (!block.isRepeated)
            append(text, block, copies - 1);
        for (std::size_t copy = 1; block.isRepeated && copy < copies; ++copy)
            append(text, block, copy);
    }
    return text;
}

} // namespace Bench
