#include "Reader/Contents.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/FlatEditor.h"
#include "Archive/Internal/TreeFacts.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"
#include "Reader/Internal/ProjectView.h"

#include <QHash>

#include <array>
#include <unordered_set>

using nlohmann::json;
namespace Words = Archive::Words;

namespace Reader {
namespace {

const QString timelineClass = QStringLiteral("Timeline::Object");
const FieldName effectsField("effects");
const FieldName overlayField("overlay");
const FieldName nameField("name");
const FieldName timestampField("timestamp");

unsigned long long idIn(const QDomElement& reference) {
    return reference.attribute(Words::value).toULongLong();
}

/// Calls `visit` for an element and all its descendants, in document order.
template <class Visit>
void walkElements(const QDomElement& top, Visit visit) {
    visit(top);
    for (QDomNode node = Archive::Internal::nextInDocument(top, top); !node.isNull();
         node = Archive::Internal::nextInDocument(node, top)) {
        if (node.isElement())
            visit(node.toElement());
    }
}

/// Calls `visit` for a flat object and each object inside it, in no order. Not recursive: depth costs memory, not stack.
/// `open` is an empty list, whose memory is used again.
template <class Visit>
void walkObjects(const json& top, std::vector<const json*>& open, Visit visit) {
    open.push_back(&top);
    const auto enter = [&](const json& value) {
        if (value.is_structured())
            open.push_back(&value);
    };
    while (!open.empty()) {
        const json& value = *open.back();
        open.pop_back();
        if (const auto* list = value.get_ptr<const json::array_t*>()) {
            for (const json& entry : *list)
                enter(entry);
        } else if (const auto* members = value.get_ptr<const json::object_t*>()) {
            visit(value);
            for (const auto& [key, member] : *members)
                enter(member);
        }
    }
}

std::string classOf(const json& object) {
    const std::string* name = Serialize::Json::classNameOf(object);
    return name ? *name : std::string();
}

QHash<QString, std::size_t> objectsByType(const QDomDocument& xml) {
    QHash<QString, std::size_t> objects;
    walkElements(xml.documentElement(), [&](const QDomElement& e) {
        if (e.hasAttribute(Words::objectId))
            ++objects[Archive::typeOf(e)];
    });
    return objects;
}

ObjectCounts countsOf(const QHash<QString, std::size_t>& objects) {
    ObjectCounts counts;
    for (auto type = objects.begin(); type != objects.end(); ++type) {
        if (!isDeclaring(type.key()))
            counts[type.key().toStdString()] += *type;
    }
    return counts;
}

/// Lists parts, each id once. A document calls add() for what it holds.
class PartList {
public:
    /// False for an id that is listed already, and for none.
    bool add(PartKind kind, unsigned long long id, std::string className, std::string name,
             unsigned long long clip, std::optional<long long> time) {
        if (id == 0 || !m_ids.insert(id).second)
            return false;
        m_parts.push_back({kind, id, std::move(className), std::move(name), clip, time});
        return true;
    }
    std::vector<Part> take() { return std::move(m_parts); }

private:
    std::unordered_set<unsigned long long> m_ids;
    std::vector<Part> m_parts;
};

template <class View>
class PartsOf {
public:
    using Value = typename View::Value;

    explicit PartsOf(const View& view) : m_view(view) {}

    std::vector<Part> list() { return list(m_view.ofClass(timelineClass)); }
    std::vector<Part> list(const std::vector<Value>& timelines) {
        for (const Value& timeline : timelines) {
            for (const auto& [clip, timing] : View::clipEntries(timeline))
                addClip(clip, timing);
        }
        return m_parts.take();
    }

private:
    void addClip(const Value& clip, const Value& timing) {
        const unsigned long long id = View::targetId(clip);
        if (!add(PartKind::Clip, clip, id, View::integer(View::field(m_view.target(timing), timestampField))))
            return;
        const Value object = m_view.target(clip);
        for (const Value& effect : View::items(View::field(object, effectsField)))
            add(PartKind::Effect, effect, id);
        add(PartKind::Title, View::field(object, overlayField), id);
    }
    bool add(PartKind kind, const Value& value, unsigned long long clip,
             std::optional<long long> time = std::nullopt) {
        const Value object = m_view.target(value);
        return m_parts.add(kind, View::targetId(value), View::classOf(object),
                           View::text(View::field(object, nameField)), clip, time);
    }

    const View& m_view;
    PartList m_parts;
};

/// Follows references from the root object in a document of so many objects. `visit(id, found)` must call `found` for each
/// id that the object refers to, and give false where there is no such object.
template <class Visit>
std::unordered_set<unsigned long long> follow(unsigned long long root, std::size_t objects, Visit visit) {
    std::unordered_set<unsigned long long> reached;
    reached.reserve(objects);
    reached.insert(root);
    std::vector<unsigned long long> missing;
    std::vector<unsigned long long> open = {root};
    while (!open.empty()) {
        const unsigned long long id = open.back();
        open.pop_back();
        const bool exists = visit(id, [&](unsigned long long target) {
            if (target != 0 && reached.insert(target).second)
                open.push_back(target);
        });
        if (!exists && id != root)
            missing.push_back(id);
    }
    for (const unsigned long long id : missing)
        reached.erase(id);
    return reached;
}

std::unordered_set<unsigned long long> reachableInXml(const QDomDocument& xml) {
    const auto objects = objectsById(rootObjectsOf(xml));
    const auto root = idIn(xml.documentElement().firstChildElement(Words::RootRef));
    return follow(root, static_cast<std::size_t>(objects.size()), [&](unsigned long long id, auto found) {
        const QDomElement object = objects.value(id);
        if (object.isNull())
            return false;
        walkElements(object, [&](const QDomElement& e) {
            if (Archive::typeOf(e) == Words::ObjectRef)
                found(idIn(e));
        });
        return true;
    });
}

std::unordered_set<unsigned long long> reachableInJson(const JsonDocument& document) {
    std::vector<unsigned long long> embedded; // objects inside of others, whose values are visited with those
    std::vector<const json*> open;
    auto reached =
        follow(document.root, document.flat.objects.size(), [&](unsigned long long id, auto found) {
            const auto object = document.flat.objects.find(id);
            if (object == document.flat.objects.end())
                return false;
            walkObjects(object->second, open, [&](const json& value) {
                found(linkTarget(value));
                if (!isClassObject(value))
                    return;
                if (const auto own = Serialize::Json::getObjectId(value).value_or(0); own != id)
                    embedded.push_back(own);
            });
            return true;
        });
    reached.insert(embedded.begin(), embedded.end());
    reached.erase(0);
    return reached;
}

} // namespace

bool isDeclaring(const QString& type) {
    return type == Words::Predeclarator || type == Words::Predeclare;
}

ObjectCounts countObjects(const Document& document) {
    if (document.isXml())
        return countsOf(document.m_facts ? document.m_facts->objectsByType : objectsByType(document.xml()));
    ObjectCounts counts;
    for (const auto& [id, object] : document.json().flat.objects)
        ++counts[classOf(object)];
    return counts;
}

std::string_view nameOf(PartKind kind) {
    constexpr std::array<std::string_view, 3> names = {"clip", "effect", "title"};
    return names[static_cast<std::size_t>(kind)];
}

std::vector<Part> listParts(const Document& document) {
    return document.isXml() ? PartsOf(ArchiveView(rootObjectsOf(document.xml()))).list()
                            : PartsOf(FlatView(document.json())).list();
}

std::vector<Part> listParts(Archive::Internal::ArchiveEditor& archive) {
    return PartsOf(ArchiveView(archive.rootObjects(Archive::Internal::Scope::Document))).list();
}

std::vector<Part> listParts(const JsonDocument& document, Archive::Internal::FlatEditor& editor) {
    std::vector<const json*> timelines;
    for (const auto& timeline : editor.objects(timelineClass.toStdString()))
        timelines.push_back(timeline.object);
    return PartsOf(FlatView(document)).list(timelines);
}

std::vector<Clip> listClips(const Document& document) {
    std::vector<Clip> clips;
    for (Part& part : listParts(document)) {
        if (part.kind == PartKind::Clip)
            clips.push_back({part.id, std::move(part.name)});
    }
    return clips;
}

std::unordered_set<unsigned long long> findReachable(const Document& document) {
    return document.isXml() ? reachableInXml(document.xml()) : reachableInJson(document.json());
}

} // namespace Reader
