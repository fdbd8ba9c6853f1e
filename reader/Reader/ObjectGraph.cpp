#include "Reader/ObjectGraph.h"

#include "Archive/Internal/JsonValues.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"
#include "Reader/Contents.h"
#include "Reader/Internal/ProjectView.h"

#include <QDomElement>

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

using nlohmann::json;
namespace Words = Archive::Words;

namespace Reader {
namespace {

json makeLink(unsigned long long id) {
    return {{Serialize::Json::MetaDetails::s_meta_reference, id}};
}

// Archives

/// What a value of an archive becomes in JSON. Arrays whose entries become different kinds are written as tuples.
enum class ValueKind { Bool, Signed, Unsigned, Real, Text, Point, RealPoint, Array, Reference, Blob, Object };

ValueKind kindOf(const QString& type) {
    static const QHash<QString, ValueKind> kinds = {
        {QStringLiteral("bool"), ValueKind::Bool},
        {QStringLiteral("int32_t"), ValueKind::Signed},
        {QStringLiteral("int64_t"), ValueKind::Signed},
        {QStringLiteral("uint32_t"), ValueKind::Unsigned},
        {QStringLiteral("uint64_t"), ValueKind::Unsigned},
        {QStringLiteral("double"), ValueKind::Real},
        {QStringLiteral("String"), ValueKind::Text},
        {QStringLiteral("StringPtr"), ValueKind::Text},
        {QStringLiteral("FileContent"), ValueKind::Text},
        {QStringLiteral("Point"), ValueKind::Point},
        {QStringLiteral("PointF"), ValueKind::RealPoint},
        {QStringLiteral("Array"), ValueKind::Array},
        {QStringLiteral("ObjectRef"), ValueKind::Reference},
        {QStringLiteral("ImageRef"), ValueKind::Blob},
        {QStringLiteral("BlobRef"), ValueKind::Blob},
    };
    return kinds.value(type, ValueKind::Object);
}

/// A map of which entries get names of their own.
struct EntryNames {
    std::string_view key;
    std::string_view value;
    const char* keyName;
    const char* valueName;
};

constexpr EntryNames entryNames[] = {
    {"Timeline::Clip", "Timeline::ClipTiming", "clip", "timing"},
    {"Timeline::Clip", "Timeline::Link", "slave", "link"},
    {"Timeline::Clip", "Timeline::TrackingLinkInfo", "clip", "tracking"},
};

class ArchiveObjects {
public:
    explicit ArchiveObjects(const QDomDocument& xml)
        : m_rootObjects(objectsById(rootObjectsOf(xml))), m_root(xml.documentElement()) {}

    ObjectGraph read() {
        for (auto it = m_rootObjects.begin(); it != m_rootObjects.end(); ++it)
            m_nextId = std::max(m_nextId, it.key());
        std::vector<unsigned long long> ids(m_rootObjects.keyBegin(), m_rootObjects.keyEnd());
        std::sort(ids.begin(), ids.end());
        for (const unsigned long long id : ids)
            m_graph.objects[id]; // so that no embedded object takes the id
        for (const unsigned long long id : ids)
            addFields(m_rootObjects.value(id), id);
        while (!m_open.empty()) {
            const Task task = m_open.back();
            m_open.pop_back();
            convert(task.element, *task.target);
        }
        m_graph.root = m_root.firstChildElement(Words::RootRef).attribute(Words::value).toULongLong();
        return std::move(m_graph);
    }

private:
    /// A value that is to be written to a place in the graph, which does not move any more.
    struct Task {
        QDomElement element;
        json* target;
    };

    void addFields(const QDomElement& element, unsigned long long id) {
        GraphObject& object = m_graph.objects[id];
        object.className = Archive::typeOf(element).toStdString();
        // From the base class parts outwards: a field of the class itself counts more than one of its base.
        std::vector<QDomElement> levels = {element};
        for (QDomElement base = element.firstChildElement(Words::BaseOfObject); !base.isNull();
             base = base.firstChildElement(Words::BaseOfObject))
            levels.push_back(base);
        for (const QDomElement& level : levels) {
            std::map<QString, std::size_t> tasks; // by the names of the level's own fields
            for (QDomElement field = level.firstChildElement(); !field.isNull();
                 field = field.nextSiblingElement()) {
                if (field.tagName() == Words::BaseOfObject)
                    continue;
                const auto [task, isNew] = tasks.emplace(field.tagName(), m_open.size());
                if (isNew)
                    m_open.push_back({field, &object.fields[nameFor(field, object, level)]});
                else
                    m_open[task->second].element = field; // the later counts, as in the conversion
            }
        }
    }

    static std::string nameFor(const QDomElement& field, const GraphObject& object,
                               const QDomElement& level) {
        const std::string name = field.tagName().toStdString();
        return object.fields.contains(name) ? Archive::typeOf(level).toStdString() + '.' + name : name;
    }

    void convert(const QDomElement& element, json& target) {
        const QString text = element.attribute(Words::value);
        switch (kindOf(Archive::typeOf(element))) {
        case ValueKind::Bool:
            target = text.toInt() != 0;
            break;
        case ValueKind::Signed:
            target = text.toLongLong();
            break;
        case ValueKind::Unsigned:
            target = text.toULongLong();
            break;
        case ValueKind::Real:
            target = Archive::readValue(element, 0.0);
            break;
        case ValueKind::Text:
            target = text.toStdString();
            break;
        case ValueKind::Point:
        case ValueKind::RealPoint:
            target = pointOf(text, kindOf(Archive::typeOf(element)) == ValueKind::RealPoint);
            break;
        case ValueKind::Array:
            convertArray(element, target);
            break;
        case ValueKind::Reference:
            target = text.toLongLong() == 0 ? json() : makeLink(text.toULongLong());
            break;
        case ValueKind::Blob:
            target = {{"ref", element.attribute(Words::ref).toStdString()}};
            break;
        case ValueKind::Object:
            target = makeLink(addEmbedded(element));
            break;
        }
    }

    static json pointOf(const QString& text, bool isReal) {
        const QStringList parts = text.split(QLatin1Char(';'));
        if (parts.size() != 2)
            return {};
        if (isReal)
            return {{"x", parts[0].toDouble()}, {"y", parts[1].toDouble()}};
        return {{"x", parts[0].toInt()}, {"y", parts[1].toInt()}};
    }

    unsigned long long addEmbedded(const QDomElement& element) {
        unsigned long long id = Archive::objectIdOf(element);
        if (id == 0 || m_graph.objects.count(id) > 0)
            id = freeId();
        m_graph.objects[id];
        addFields(element, id);
        return id;
    }

    /// An id far above those of documents, for an object without one.
    unsigned long long freeId() {
        constexpr unsigned long long firstFree = 1ULL << 62U;
        m_nextId = std::max(m_nextId, firstFree);
        return ++m_nextId;
    }

    void convertArray(const QDomElement& array, json& target) {
        std::vector<QDomElement> items;
        std::set<ValueKind> kinds;
        for (QDomElement item = array.firstChildElement(Words::Item); !item.isNull();
             item = item.nextSiblingElement(Words::Item)) {
            const QDomElement data = item.firstChildElement(Words::Data);
            const bool isPair = !item.firstChildElement(Words::Key).isNull() ||
                                !item.firstChildElement(Words::First).isNull();
            const bool isNone = data.isNull() || (kindOf(Archive::typeOf(data)) == ValueKind::Reference &&
                                                  data.attribute(Words::value).toLongLong() == 0);
            if (isNone && !isPair)
                continue; // as in the conversion
            items.push_back(item);
            kinds.insert(isNone ? ValueKind::Object : jsonKindOf(kindOf(Archive::typeOf(data))));
        }
        const bool isTuple = kinds.size() > 1;
        target = isTuple ? json(json::object()) : json(json::array_t(items.size()));
        for (std::size_t place = 0; place < items.size(); ++place)
            convertItem(items[place], isTuple ? target["element_" + std::to_string(place)] : target[place]);
    }

    /// The kinds that JSON keeps apart.
    static ValueKind jsonKindOf(ValueKind kind) {
        switch (kind) {
        case ValueKind::Point:
        case ValueKind::RealPoint:
        case ValueKind::Reference:
        case ValueKind::Blob:
            return ValueKind::Object;
        default:
            return kind;
        }
    }

    void convertItem(const QDomElement& item, json& target) {
        const QDomElement data = item.firstChildElement(Words::Data);
        const QDomElement key = item.firstChildElement(Words::Key);
        if (!data.isNull())
            m_open.push_back({data, &target});
        else if (!key.isNull())
            convertEntry(key, item.firstChildElement(Words::Value), target);
        else
            addPair({item.firstChildElement(Words::First), "first"},
                    {item.firstChildElement(Words::Second), "second"}, target);
    }

    struct Named {
        QDomElement element;
        const char* name;
    };

    void addPair(const Named& one, const Named& other, json& target) {
        target = json::object();
        for (const Named& part : {one, other})
            m_open.push_back({part.element, &target[part.name]});
    }

    void convertEntry(const QDomElement& key, const QDomElement& value, json& target) {
        const std::string keyClass = classOf(key);
        const std::string valueClass = classOf(value);
        const QDomElement clips = value.firstChildElement(Words::Item);
        if (keyClass.starts_with("Transition::") && Archive::typeOf(value) == Words::Array) {
            addPair({clips.firstChildElement(Words::First), "clipFrom"},
                    {clips.firstChildElement(Words::Second), "clipTo"}, target);
            m_open.push_back({key, &target["transition"]});
            return;
        }
        const auto* names =
            std::find_if(std::begin(entryNames), std::end(entryNames), [&](const EntryNames& row) {
                return row.key == keyClass && row.value == valueClass;
            });
        const bool isKnown = names != std::end(entryNames);
        addPair({key, isKnown ? names->keyName : "first"}, {value, isKnown ? names->valueName : "second"},
                target);
    }

    std::string classOf(const QDomElement& value) const {
        const bool isReference = Archive::typeOf(value) == Words::ObjectRef;
        return Archive::typeOf(isReference ? m_rootObjects.value(value.attribute(Words::value).toULongLong())
                                           : value)
            .toStdString();
    }

    QHash<unsigned long long, QDomElement> m_rootObjects;
    QDomElement m_root;
    ObjectGraph m_graph;
    std::vector<Task> m_open;
    unsigned long long m_nextId = 0;
};

// JSON

class FlatObjects {
public:
    explicit FlatObjects(const JsonDocument& document) : m_objects(document.flat.objects) {
        m_graph.root = document.root;
        m_graph.envelope = Archive::Internal::copied(document.envelope);
    }

    ObjectGraph read() {
        std::set<unsigned long long> parts;
        for (const auto& [id, object] : m_objects) {
            for (const unsigned long long part : basePartsOf(object))
                parts.insert(part);
        }
        for (const auto& [id, object] : m_objects) {
            if (parts.count(id) == 0)
                add(id, object);
        }
        return std::move(m_graph);
    }

private:
    static std::string classOf(const json& object) {
        const std::string* name = Serialize::Json::classNameOf(object);
        return name ? *name : std::string();
    }

    /// The base class part that a member is: its key is the class of the object that it refers to. 0 if it is none.
    unsigned long long basePart(const std::string& key, const json& value) const {
        const unsigned long long id = linkTarget(value);
        const auto object = id == 0 ? m_objects.end() : m_objects.find(id);
        return object != m_objects.end() && key.find("::") != std::string::npos &&
                       classOf(object->second) == key
                   ? id
                   : 0;
    }

    std::vector<unsigned long long> basePartsOf(const json& object) const {
        std::vector<unsigned long long> parts;
        if (!object.is_object())
            return parts;
        for (const auto& [key, value] : object.items()) {
            if (const unsigned long long id = basePart(key, value))
                parts.push_back(id);
        }
        return parts;
    }

    void add(unsigned long long id, const json& object) {
        GraphObject& result = m_graph.objects[id];
        result.className = classOf(object);
        std::vector<const json*> open = {&object};
        std::set<const json*> added; // base class parts may hold each other in a broken document
        while (!open.empty()) {
            const json& level = *open.back();
            open.pop_back();
            if (!level.is_object() || !added.insert(&level).second)
                continue;
            for (const auto& [key, value] : level.items()) {
                if (key == Serialize::Json::MetaDetails::s_meta)
                    continue;
                if (const unsigned long long part = basePart(key, value))
                    open.push_back(&m_objects.at(part));
                else if (result.fields.contains(key))
                    result.fields[classOf(level) + '.' + key] = Archive::Internal::copied(value);
                else
                    result.fields[key] = Archive::Internal::copied(value);
            }
        }
    }

    const std::map<unsigned long long, json>& m_objects;
    ObjectGraph m_graph;
};

} // namespace

const GraphObject* ObjectGraph::find(unsigned long long id) const {
    const auto object = objects.find(id);
    return object == objects.end() ? nullptr : &object->second;
}

const GraphObject* ObjectGraph::target(const GraphObject& object, const std::string& field) const {
    const auto value = object.fields.find(field);
    return value == object.fields.end() ? nullptr : find(linkTarget(*value));
}

ObjectGraph readObjects(const Document& document) {
    return document.isXml() ? ArchiveObjects(document.xml()).read() : FlatObjects(document.json()).read();
}

json shown(const json& value, const ObjectGraph& graph, int levels) {
    if (const unsigned long long id = linkTarget(value)) {
        const GraphObject* object = graph.find(id);
        json result = {{"class", object ? object->className : ""}, {"id", id}};
        if (object && object->fields.contains("name") && object->fields["name"].is_string())
            result["name"] = object->fields["name"];
        return result;
    }
    if (!value.is_structured())
        return value;
    if (levels == 0)
        return "...";
    constexpr std::size_t mostParts = 8;
    json result = value.is_array() ? json::array() : json::object();
    for (auto it = value.begin(); it != value.end() && result.size() < mostParts; ++it) {
        json part = shown(*it, graph, levels - 1);
        if (value.is_array())
            result.push_back(std::move(part));
        else
            result[it.key()] = std::move(part);
    }
    if (value.size() > mostParts && value.is_array())
        result.push_back("and " + std::to_string(value.size() - mostParts) + " more");
    return result;
}

ObjectGraph reachable(ObjectGraph graph) {
    std::map<unsigned long long, GraphObject> reached;
    std::vector<unsigned long long> open = {graph.root};
    while (!open.empty()) {
        auto object = graph.objects.extract(open.back());
        open.pop_back();
        if (object.empty())
            continue;
        for (const unsigned long long id : linksIn(object.mapped().fields))
            open.push_back(id);
        reached.emplace(object.key(), std::move(object.mapped()));
    }
    graph.objects = std::move(reached);
    return graph;
}

std::vector<unsigned long long> linksIn(const json& top) {
    std::vector<unsigned long long> links;
    std::vector<const json*> open = {&top};
    while (!open.empty()) {
        const json& value = *open.back();
        open.pop_back();
        if (!value.is_structured())
            continue;
        if (const unsigned long long id = linkTarget(value)) {
            links.push_back(id);
            continue;
        }
        for (auto it = value.rbegin(); it != value.rend(); ++it)
            open.push_back(&*it);
    }
    return links;
}

std::unordered_map<unsigned long long, unsigned long long> clipsOfObjects(const ObjectGraph& graph) {
    std::unordered_map<unsigned long long, unsigned long long> owners;
    std::vector<std::pair<unsigned long long, unsigned long long>> open; // an object and its clip
    for (const auto& [id, object] : graph.objects) {
        if (object.className == "Timeline::Clip")
            open.emplace_back(id, id);
        if (object.className != "Timeline::Object" || !object.fields.contains("clips"))
            continue;
        for (const json& entry : object.fields["clips"]) {
            if (entry.is_object() && entry.contains("clip") && entry.contains("timing"))
                open.emplace_back(linkTarget(entry["timing"]), linkTarget(entry["clip"]));
        }
    }
    std::reverse(open.begin(), open.end());
    while (!open.empty()) {
        const auto [id, clip] = open.back();
        open.pop_back();
        const GraphObject* object = graph.find(id);
        const bool isOwn = id == clip || (object && object->className == "Timeline::ClipTiming");
        const bool isShared = object && object->className.starts_with("Timeline::") && !isOwn &&
                              object->className != "Timeline::CollectionItemInfo";
        if (!object || isShared || !owners.emplace(id, clip).second)
            continue;
        for (const unsigned long long link : linksIn(object->fields))
            open.emplace_back(link, clip);
    }
    return owners;
}

} // namespace Reader
