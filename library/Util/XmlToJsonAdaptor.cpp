#include "Util/XmlToJsonAdaptor.h"

#include "Archive/Internal/Count.h"
#include "Archive/Internal/Outline.h"
#include "Archive/Internal/Predeclarations.h"
#include "Archive/Internal/RootObjects.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Internal/Words.h"
#include "Archive/Xml.h"
#include "Serialize/Json/FlatObject.h"

#include <QDomDocument>
#include <QHash>
#include <QMap>
#include <QSet>

#include <algorithm>
#include <deque>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

using Archive::Internal::idOf;
using nlohmann::json;
using Serialize::Json::MetaDetails;
namespace Words = Archive::Words;

namespace Util {
namespace {

// Scalars: the value of an element that holds no other.

template <class Coordinate>
json convertPoint(const QString& value, Coordinate coordinate) {
    const QStringList parts = value.split(QLatin1Char(';'));
    if (parts.size() != 2)
        return nullptr;
    json point = json::object();
    point["x"] = coordinate(parts[0]);
    point["y"] = coordinate(parts[1]);
    return point;
}

json convertRef(const QDomElement& e) {
    json image = json::object();
    image["ref"] = e.attribute(Words::ref).toStdString();
    return image;
}

using Scalar = json (*)(const QDomElement&, const QString& value);

struct ScalarType {
    const char* type;
    Scalar convert;
};

constexpr ScalarType scalarTypes[] = {
    {"bool", [](const QDomElement&, const QString& value) -> json { return value.toInt() != 0; }},
    {"int32_t", [](const QDomElement&, const QString& value) -> json { return value.toInt(); }},
    {"uint32_t", [](const QDomElement&, const QString& value) -> json { return value.toUInt(); }},
    {"int64_t", [](const QDomElement&, const QString& value) -> json { return value.toLongLong(); }},
    {"uint64_t", [](const QDomElement&, const QString& value) -> json { return value.toULongLong(); }},
    {"double", [](const QDomElement& e, const QString&) -> json { return Archive::readValue(e, 0.0); }},
    {"String", [](const QDomElement&, const QString& value) -> json { return value.toStdString(); }},
    {"Point",
     [](const QDomElement&, const QString& value) -> json {
         return convertPoint(value, [](const QString& part) { return part.toInt(); });
     }},
    {"PointF",
     [](const QDomElement&, const QString& value) -> json {
         return convertPoint(value, [](const QString& part) { return part.toDouble(); });
     }},
    {"ImageRef", [](const QDomElement& e, const QString&) -> json { return convertRef(e); }},
    {"BlobRef", [](const QDomElement& e, const QString&) -> json { return convertRef(e); }},
};

const QHash<QString, Scalar>& scalars() {
    static const QHash<QString, Scalar> table = [] {
        QHash<QString, Scalar> result;
        for (const ScalarType& row : scalarTypes)
            result.insert(QString::fromLatin1(row.type), row.convert);
        return result;
    }();
    return table;
}

// Containers: each is a frame on the converter's own stack, so that depth costs memory and never call stack.

/// An object element; `next` is the child whose turn it is, `key` the place of the value under way. `spent` is the
/// element where it is to be freed.
struct ObjectFrame {
    json object;
    QDomElement next;
    std::string key;
    QDomElement spent;
};

/// An array element; `item` is the entry under way.
struct ArrayFrame {
    std::vector<json> values;
    QDomElement item;
    bool dataGaveNothing = false;
};

/// A pair or an entry of a map: parts under fixed names, in the order of conversion.
struct EntryFrame {
    struct Part {
        const char* name;
        QDomElement element;
    };
    std::vector<Part> parts;
    std::size_t next = 0;
    json object = json::object();
};

using Frame = std::variant<ObjectFrame, ArrayFrame, EntryFrame>;

json joinValues(std::vector<json> values) {
    const bool alike = std::all_of(values.begin(), values.end(),
                                   [&](const json& value) { return value.type() == values.front().type(); });
    if (alike)
        return json(
            json::array_t(std::make_move_iterator(values.begin()), std::make_move_iterator(values.end())));
    json tuple = json::object();
    for (std::size_t position = 0; position < values.size(); ++position)
        tuple["element_" + std::to_string(position)] = std::move(values[position]);
    return tuple;
}

/// A map whose entries get readable names; those of all others are "first" and "second".
struct NamedMap {
    const char* keyType;
    const char* valueType;
    const char* keyName;
    const char* valueName;
};

constexpr NamedMap namedMaps[] = {
    {"Timeline::Clip", "Timeline::ClipTiming", "clip", "timing"},
    {"Timeline::Clip", "Timeline::Link", "slave", "link"},
    {"Timeline::Clip", "Timeline::TrackingLinkInfo", "clip", "tracking"},
};

class Impl {
public:
    json adapt(const QDomDocument& document);
    json consume(const QDomDocument& document, std::set<unsigned long long>& idsTaken);

private:
    void collect();
    void collectPredeclarations(const QDomElement& predeclarator);

    json convertElement(const QDomElement& element);

    // Each gives the value of an element that holds no other, or pushes the frame that will give it.
    std::optional<json> begin(const QDomElement& element);
    std::optional<json> beginObjectRef(const QDomElement& element, QDomElement& target);
    std::optional<json> beginObject(const QDomElement& element);
    std::optional<json> beginArray(const QDomElement& element);
    std::optional<json> beginKeyValueOrPair(const QDomElement& item);
    std::optional<json> beginMapEntry(const QDomElement& item);

    // Each takes the top frame on, with the value that the frame waited for, until it is complete and gives its
    // own value, or has to wait again for one that a frame above it will give.
    std::optional<json> resume(ObjectFrame& frame, std::optional<json> value);
    std::optional<json> resume(ArrayFrame& frame, std::optional<json> value);
    std::optional<json> resume(EntryFrame& frame, std::optional<json> value);
    json complete(json value);

    QString referencedTypeName(const QDomElement& element) const;
    bool isClipPairValue(const QDomElement& value) const;
    bool takesIdOfRootObject(const QDomElement& element);

    QDomElement m_archive;
    bool m_freesObjects = false;
    std::set<unsigned long long>* m_idsTaken =
        nullptr; ///< from embedded objects; null where they keep theirs
    QSet<unsigned long long> m_rootIds;
    QMap<qint64, QString> m_predeclaredTypes;
    QHash<qint64, QDomElement> m_rootObjects;
    QSet<qint64> m_visitedIds;
    qint64 m_nextObjectId = 1;
    std::deque<Frame> m_frames; // a deque: a frame stays where it is while others are pushed
};

json Impl::consume(const QDomDocument& document, std::set<unsigned long long>& idsTaken) {
    m_freesObjects = true;
    m_idsTaken = &idsTaken;
    return adapt(document);
}

json Impl::adapt(const QDomDocument& document) {
    json result = json::object();
    result["data"] = nullptr;
    result["version"] = "1.0";
    m_archive = document.firstChildElement(Words::Archive);
    if (m_archive.isNull())
        return result;
    collect();
    result["data"] = convertElement(m_archive.firstChildElement(Words::RootRef));
    return result;
}

void Impl::collect() {
    Archive::Internal::Elements predeclarators;
    for (const auto& [object, type] : Archive::Internal::typedElements(m_archive, Words::RootObject)) {
        if (object.parentNode() != m_archive)
            m_freesObjects = false; // it may be converted once in its place and once by a reference
        if (m_idsTaken)
            m_rootIds.insert(Archive::objectIdOf(object));
        if (type == Words::Predeclarator)
            predeclarators.push_back(object);
        else
            m_rootObjects[idOf(object)] = object;
    }
    for (const QDomElement& predeclarator : predeclarators)
        collectPredeclarations(predeclarator);
    if (m_freesObjects) {
        Archive::Internal::Outline::forget(m_archive.ownerDocument()); // it holds objects
        for (const QDomElement& predeclarator : predeclarators)
            m_archive.removeChild(predeclarator);
    }
    // Base class parts are numbered behind the predeclared objects alone: an object that has no predeclaration
    // may share its id with a part.
    if (!m_predeclaredTypes.isEmpty())
        m_nextObjectId = Archive::Internal::plusOne(m_predeclaredTypes.lastKey());
}

void Impl::collectPredeclarations(const QDomElement& predeclarator) {
    const auto records =
        Archive::Internal::recordsOf(predeclarator.firstChildElement(Words::predeclarations));
    for (const auto& record : *records)
        m_predeclaredTypes[record.id] = Archive::valueOf(record.data, Words::typeName);
}

json Impl::convertElement(const QDomElement& element) {
    std::optional<json> value = begin(element);
    while (!m_frames.empty())
        value = std::visit([&](auto& frame) { return resume(frame, std::move(value)); }, m_frames.back());
    return std::move(*value);
}

std::optional<json> Impl::begin(const QDomElement& element) {
    QDomElement current = element;
    for (;;) {
        const QString type = Archive::typeOf(current);
        if (type == Words::ObjectRef) {
            QDomElement target;
            if (auto value = beginObjectRef(current, target))
                return value;
            current = target; // which may be a reference in turn
            continue;
        }
        if (const Scalar convert = scalars().value(type))
            return convert(current, current.attribute(Words::value));
        return type == Words::Array ? beginArray(current) : beginObject(current);
    }
}

std::optional<json> Impl::beginObjectRef(const QDomElement& element, QDomElement& target) {
    const qint64 id = element.attribute(Words::value).toLongLong();
    if (id == 0)
        return json(nullptr);
    if (m_visitedIds.contains(id)) {
        json link = json::object();
        link[MetaDetails::s_meta_reference] = id;
        return link;
    }
    m_visitedIds.insert(id); // before the object itself: a cycle ends in a link
    target = m_rootObjects.take(id);
    return std::nullopt;
}

std::optional<json> Impl::beginObject(const QDomElement& element) {
    json meta = json::object();
    meta[MetaDetails::s_class_name] = Archive::typeOf(element).toStdString();
    if (element.tagName() == Words::BaseOfObject) {
        meta[MetaDetails::s_object_id] = m_nextObjectId;
        m_nextObjectId = Archive::Internal::plusOne(m_nextObjectId);
    } else {
        meta[MetaDetails::s_object_id] = takesIdOfRootObject(element) ? 0 : idOf(element);
    }
    json object = json::object();
    object[MetaDetails::s_meta] = std::move(meta);
    const bool isSpent = m_freesObjects && element.tagName() == Words::RootObject;
    m_frames.push_back(
        ObjectFrame{std::move(object), element.firstChildElement(), {}, isSpent ? element : QDomElement()});
    return std::nullopt;
}

/// Whether an embedded object has an id that a root object has, where such ids are taken away.
bool Impl::takesIdOfRootObject(const QDomElement& element) {
    if (!m_idsTaken || element.tagName() == Words::RootObject)
        return false;
    const unsigned long long id = Archive::objectIdOf(element);
    if (id == 0 || !m_rootIds.contains(id))
        return false;
    m_idsTaken->insert(id);
    return true;
}

std::optional<json> Impl::beginArray(const QDomElement& element) {
    m_frames.push_back(ArrayFrame{{}, element.firstChildElement(Words::Item)});
    return std::nullopt;
}

std::optional<json> Impl::beginKeyValueOrPair(const QDomElement& item) {
    if (auto entry = beginMapEntry(item); !entry)
        return entry;
    const QDomElement first = item.firstChildElement(Words::First);
    const QDomElement second = item.firstChildElement(Words::Second);
    if (first.isNull() || second.isNull())
        return json(nullptr);
    m_frames.push_back(EntryFrame{{{"first", first}, {"second", second}}});
    return std::nullopt;
}

std::optional<json> Impl::beginMapEntry(const QDomElement& item) {
    const QDomElement key = item.firstChildElement(Words::Key);
    const QDomElement value = item.firstChildElement(Words::Value);
    if (key.isNull() || value.isNull())
        return json(nullptr);
    const QString keyType = referencedTypeName(key);
    if (keyType.startsWith(QLatin1String("Transition::")) && isClipPairValue(value)) {
        const QDomElement pair = value.firstChildElement(Words::Item);
        // The clips come before the transition: an object stands in full where it is met first.
        m_frames.push_back(EntryFrame{{{"clipFrom", pair.firstChildElement(Words::First)},
                                       {"clipTo", pair.firstChildElement(Words::Second)},
                                       {"transition", key}}});
        return std::nullopt;
    }
    const QString valueType = referencedTypeName(value);
    const auto* named = std::find_if(std::begin(namedMaps), std::end(namedMaps), [&](const NamedMap& row) {
        return keyType == QLatin1String(row.keyType) && valueType == QLatin1String(row.valueType);
    });
    if (named != std::end(namedMaps))
        m_frames.push_back(EntryFrame{{{named->keyName, key}, {named->valueName, value}}});
    else
        m_frames.push_back(EntryFrame{{{"first", key}, {"second", value}}});
    return std::nullopt;
}

std::optional<json> Impl::resume(ObjectFrame& frame, std::optional<json> value) {
    for (;;) {
        if (value)
            frame.object[frame.key] = std::move(*value);
        if (frame.next.isNull()) {
            if (!frame.spent.isNull())
                m_archive.removeChild(frame.spent);
            return complete(std::move(frame.object));
        }
        const QDomElement child = frame.next;
        frame.next = child.nextSiblingElement();
        const QString tag = child.tagName();
        frame.key = (tag == Words::BaseOfObject ? Archive::typeOf(child) : tag).toStdString();
        value = begin(child);
        if (!value)
            return std::nullopt;
    }
}

std::optional<json> Impl::resume(ArrayFrame& frame, std::optional<json> value) {
    for (;;) {
        if (value && value->is_null() && !frame.dataGaveNothing) {
            frame.dataGaveNothing = true;
            value = beginKeyValueOrPair(frame.item);
            if (!value)
                return std::nullopt;
        }
        if (value) {
            if (!value->is_null())
                frame.values.push_back(std::move(*value));
            frame.item = frame.item.nextSiblingElement(Words::Item);
            frame.dataGaveNothing = false;
        }
        if (frame.item.isNull())
            return complete(joinValues(std::move(frame.values)));
        const QDomElement data = frame.item.firstChildElement(Words::Data);
        value = data.isNull() ? json(nullptr) : begin(data);
        if (!value)
            return std::nullopt;
    }
}

std::optional<json> Impl::resume(EntryFrame& frame, std::optional<json> value) {
    for (;;) {
        if (value)
            frame.object[frame.parts[frame.next++].name] = std::move(*value);
        if (frame.next == frame.parts.size())
            return complete(std::move(frame.object));
        value = begin(frame.parts[frame.next].element);
        if (!value)
            return std::nullopt;
    }
}

json Impl::complete(json value) {
    m_frames.pop_back();
    return value;
}

QString Impl::referencedTypeName(const QDomElement& element) const {
    QString type = Archive::typeOf(element);
    if (type != Words::ObjectRef)
        return type;
    const qint64 id = element.attribute(Words::value).toLongLong();
    return id == 0 ? QStringLiteral("Null") : m_predeclaredTypes.value(id, type);
}

bool Impl::isClipPairValue(const QDomElement& value) const {
    if (Archive::typeOf(value) != Words::Array || value.attribute(Words::size).toLongLong() != 1)
        return false;
    const QDomElement pair = value.firstChildElement(Words::Item);
    const auto isClip = [&](const QString& name) {
        const QString type = referencedTypeName(pair.firstChildElement(name));
        return type == QLatin1String("Timeline::Clip") || type == QLatin1String("Null");
    };
    return isClip(Words::First) && isClip(Words::Second);
}

} // namespace

json XmlToJsonAdaptor::adapt(const QDomDocument& document) {
    return Impl().adapt(document);
}

json XmlToJsonAdaptor::consume(QDomDocument document, std::set<unsigned long long>& idsTaken) {
    json result = Impl().consume(document, idsTaken);
    document.clear(); // what is left of it
    return result;
}

} // namespace Util
