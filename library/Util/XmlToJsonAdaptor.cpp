#include "Util/XmlToJsonAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Count.h"
#include "Archive/Internal/Reading.h"
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

using namespace Archive::Internal;
using nlohmann::json;
using Serialize::Json::MetaDetails;

namespace Util {
namespace {

// Scalars: the value of an element without child elements.

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

// Containers: each is a frame in a list that replaces recursion, so that depth costs memory, not stack.

/// An object element. `next` is the child to convert next, `key` the member that gets the current value.
struct ObjectFrame {
    json object;
    QDomElement next;
    std::string key;
};

/// An array element; `item` is the current entry.
struct ArrayFrame {
    std::vector<json> values;
    QDomElement item;
    bool dataGaveNothing = false;
};

/// A pair, or an entry of a map: its parts have fixed names and are converted in this order.
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

/// A map whose entries get names of their own; the entries of all other maps have "first" and "second".
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

class Conversion {
public:
    /// With `sharedIds`, embedded objects that have the id of a root object lose it.
    Conversion(ArchiveEditor& archive, std::set<unsigned long long>* sharedIds)
        : m_editor(archive), m_sharedIds(sharedIds) {}

    json run();

private:
    void collect();
    void collectPredeclarations(const QDomElement& predeclarator);

    json convertElement(const QDomElement& element);

    // Each returns the value of an element without child elements; for any other it pushes a frame and
    // returns nothing.
    std::optional<json> begin(const QDomElement& element);
    std::optional<json> beginObjectRef(const QDomElement& element, QDomElement& target);
    std::optional<json> beginObject(const QDomElement& element);
    std::optional<json> beginArray(const QDomElement& element);
    std::optional<json> beginKeyValueOrPair(const QDomElement& item);
    std::optional<json> beginMapEntry(const QDomElement& item);

    // Each continues the top frame with the value of the child that was just converted. It returns the value
    // of the frame when that is complete, or nothing when it has pushed a frame for the next child.
    std::optional<json> resume(ObjectFrame& frame, std::optional<json> value);
    std::optional<json> resume(ArrayFrame& frame, std::optional<json> value);
    std::optional<json> resume(EntryFrame& frame, std::optional<json> value);
    json complete(json value);

    QString referencedTypeName(const QDomElement& element) const;
    bool isClipPairValue(const QDomElement& value) const;
    bool losesId(const QDomElement& element);

    ArchiveEditor& m_editor;
    QDomElement m_archive;
    std::set<unsigned long long>* m_sharedIds; ///< null if embedded objects keep their ids
    QSet<unsigned long long> m_rootIds;
    QMap<qint64, QString> m_predeclaredTypes;
    QHash<qint64, QDomElement> m_rootObjects;
    QSet<qint64> m_visitedIds;
    qint64 m_nextObjectId = 1;
    std::deque<Frame> m_frames; // a deque: references to frames stay valid when others are pushed
};

json Conversion::run() {
    json result = json::object();
    result["data"] = nullptr;
    result["version"] = "1.0";
    m_archive = m_editor.document().firstChildElement(Words::Archive);
    if (m_archive.isNull())
        return result;
    collect();
    result["data"] = convertElement(m_archive.firstChildElement(Words::RootRef));
    return result;
}

void Conversion::collect() {
    Elements predeclarators;
    for (const auto& [object, type] : m_editor.rootObjectsBelow(m_archive)) {
        if (m_sharedIds)
            m_rootIds.insert(Archive::objectIdOf(object));
        if (type == Words::Predeclarator)
            predeclarators.push_back(object);
        else
            m_rootObjects[idOf(object)] = object;
    }
    for (const QDomElement& predeclarator : predeclarators)
        collectPredeclarations(predeclarator);
    // Quirk: base class parts get ids above those of the predeclared objects only: an object without a
    // predeclaration may have the same id as a part.
    if (!m_predeclaredTypes.isEmpty())
        m_nextObjectId = plusOne(m_predeclaredTypes.lastKey());
}

void Conversion::collectPredeclarations(const QDomElement& predeclarator) {
    for (const Record& record : m_editor.recordsIn(predeclarator.firstChildElement(Words::predeclarations)))
        m_predeclaredTypes[record.id] = Archive::valueOf(record.data, Words::typeName);
}

json Conversion::convertElement(const QDomElement& element) {
    std::optional<json> value = begin(element);
    while (!m_frames.empty())
        value = std::visit([&](auto& frame) { return resume(frame, std::move(value)); }, m_frames.back());
    return std::move(*value);
}

std::optional<json> Conversion::begin(const QDomElement& element) {
    QDomElement current = element;
    for (;;) {
        const QString type = Archive::typeOf(current);
        if (type == Words::ObjectRef) {
            QDomElement target;
            if (auto value = beginObjectRef(current, target))
                return value;
            current = target; // may be a reference, too
            continue;
        }
        if (const Scalar convert = scalars().value(type))
            return convert(current, current.attribute(Words::value));
        return type == Words::Array ? beginArray(current) : beginObject(current);
    }
}

std::optional<json> Conversion::beginObjectRef(const QDomElement& element, QDomElement& target) {
    const qint64 id = element.attribute(Words::value).toLongLong();
    if (id == 0)
        return json(nullptr);
    if (m_visitedIds.contains(id)) {
        json link = json::object();
        link[MetaDetails::s_meta_reference] = id;
        return link;
    }
    m_visitedIds.insert(id); // before the object is converted, so that a cycle ends with a link
    target = m_rootObjects.take(id);
    return std::nullopt;
}

std::optional<json> Conversion::beginObject(const QDomElement& element) {
    json meta = json::object();
    meta[MetaDetails::s_class_name] = Archive::typeOf(element).toStdString();
    if (element.tagName() == Words::BaseOfObject) {
        meta[MetaDetails::s_object_id] = m_nextObjectId;
        m_nextObjectId = plusOne(m_nextObjectId);
    } else {
        meta[MetaDetails::s_object_id] = losesId(element) ? 0 : idOf(element);
    }
    json object = json::object();
    object[MetaDetails::s_meta] = std::move(meta);
    m_frames.push_back(ObjectFrame{std::move(object), element.firstChildElement(), {}});
    return std::nullopt;
}

/// Whether this is an embedded object with the id of a root object, and such ids are to be removed.
bool Conversion::losesId(const QDomElement& element) {
    if (!m_sharedIds || element.tagName() == Words::RootObject)
        return false;
    const unsigned long long id = Archive::objectIdOf(element);
    if (id == 0 || !m_rootIds.contains(id))
        return false;
    m_sharedIds->insert(id);
    return true;
}

std::optional<json> Conversion::beginArray(const QDomElement& element) {
    m_frames.push_back(ArrayFrame{{}, element.firstChildElement(Words::Item)});
    return std::nullopt;
}

std::optional<json> Conversion::beginKeyValueOrPair(const QDomElement& item) {
    if (auto entry = beginMapEntry(item); !entry)
        return entry;
    const QDomElement first = item.firstChildElement(Words::First);
    const QDomElement second = item.firstChildElement(Words::Second);
    if (first.isNull() || second.isNull())
        return json(nullptr);
    m_frames.push_back(EntryFrame{{{"first", first}, {"second", second}}});
    return std::nullopt;
}

std::optional<json> Conversion::beginMapEntry(const QDomElement& item) {
    const QDomElement key = item.firstChildElement(Words::Key);
    const QDomElement value = item.firstChildElement(Words::Value);
    if (key.isNull() || value.isNull())
        return json(nullptr);
    const QString keyType = referencedTypeName(key);
    if (keyType.startsWith(QLatin1String("Transition::")) && isClipPairValue(value)) {
        const QDomElement pair = value.firstChildElement(Words::Item);
        // The clips are converted before the transition, since an object is written in full at its first
        // reference.
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

std::optional<json> Conversion::resume(ObjectFrame& frame, std::optional<json> value) {
    for (;;) {
        if (value)
            frame.object[std::move(frame.key)] = std::move(*value);
        if (frame.next.isNull())
            return complete(std::move(frame.object));
        const QDomElement child = frame.next;
        frame.next = child.nextSiblingElement();
        const QString tag = child.tagName();
        frame.key = (tag == Words::BaseOfObject ? Archive::typeOf(child) : tag).toStdString();
        value = begin(child);
        if (!value)
            return std::nullopt;
    }
}

std::optional<json> Conversion::resume(ArrayFrame& frame, std::optional<json> value) {
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

std::optional<json> Conversion::resume(EntryFrame& frame, std::optional<json> value) {
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

json Conversion::complete(json value) {
    m_frames.pop_back();
    return value;
}

QString Conversion::referencedTypeName(const QDomElement& element) const {
    QString type = Archive::typeOf(element);
    if (type != Words::ObjectRef)
        return type;
    const qint64 id = element.attribute(Words::value).toLongLong();
    return id == 0 ? QStringLiteral("Null") : m_predeclaredTypes.value(id, type);
}

bool Conversion::isClipPairValue(const QDomElement& value) const {
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
    ArchiveEditor archive(document);
    return Conversion(archive, nullptr).run();
}

json XmlToJsonAdaptor::adapt(ArchiveEditor& archive, std::set<unsigned long long>& sharedIds) {
    return Conversion(archive, &sharedIds).run();
}

} // namespace Util
