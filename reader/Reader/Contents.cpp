#include "Reader/Contents.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/FlatObjects.h"
#include "Archive/Internal/TreeFacts.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <QHash>

#include <array>
#include <unordered_set>

using Archive::Internal::TypedElements;
using nlohmann::json;
namespace Words = Archive::Words;

namespace Reader {
namespace {

const QString timelineClass = QStringLiteral("Timeline::Object");
const QString clipsField = QStringLiteral("clips");
const QString effectsField = QStringLiteral("effects");
const QString overlayField = QStringLiteral("overlay");
const QString nameField = QStringLiteral("name");
const QString timestampField = QStringLiteral("timestamp");

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

/// The archive's root objects that hold the project, by id; the later of two counts, as in the conversion.
QHash<unsigned long long, QDomElement> byId(const TypedElements& rootObjects) {
    QHash<unsigned long long, QDomElement> objects;
    for (const auto& [e, type] : rootObjects) {
        if (!isDeclaring(type))
            objects.insert(Archive::objectIdOf(e), e);
    }
    return objects;
}

/// Calls `visit` for a flat object and each value inside it. Not recursive: depth costs memory, not stack.
template <class Visit>
void walkValues(const json& top, Visit visit) {
    std::vector<const json*> open = {&top};
    while (!open.empty()) {
        const json& value = *open.back();
        open.pop_back();
        visit(value);
        if (!value.is_structured())
            continue;
        for (auto it = value.rbegin(); it != value.rend(); ++it)
            open.push_back(&*it);
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

TypedElements rootObjectsOf(const QDomDocument& xml) {
    return TypedElements(Archive::Internal::typedElements(xml, Words::RootObject));
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

class ArchiveParts {
public:
    explicit ArchiveParts(const TypedElements& rootObjects)
        : m_timelines(Archive::Internal::ofType(rootObjects, timelineClass)), m_objects(byId(rootObjects)) {}

    std::vector<Part> list() {
        for (const QDomElement& timeline : m_timelines) {
            for (const QDomElement& item :
                 Archive::Internal::children(timeline.firstChildElement(clipsField), Words::Item)) {
                const QDomElement key = item.firstChildElement(Words::Key);
                addClip(idIn(key.isNull() ? item.firstChildElement(Words::Data) : key),
                        item.firstChildElement(Words::Value));
            }
        }
        return m_parts.take();
    }

private:
    void addClip(unsigned long long id, const QDomElement& timing) {
        const QDomElement timestamp = timing.firstChildElement(timestampField);
        if (!add(PartKind::Clip, id, id,
                 timestamp.isNull() ? std::nullopt
                                    : std::optional(timestamp.attribute(Words::value).toLongLong())))
            return;
        const QDomElement clip = m_objects.value(id);
        for (const QDomElement& item :
             Archive::Internal::children(clip.firstChildElement(effectsField), Words::Item))
            add(PartKind::Effect, idIn(item.firstChildElement(Words::Data)), id);
        add(PartKind::Title, idIn(clip.firstChildElement(overlayField)), id);
    }
    bool add(PartKind kind, unsigned long long id, unsigned long long clip,
             std::optional<long long> time = std::nullopt) {
        const QDomElement object = m_objects.value(id);
        return m_parts.add(kind, id, Archive::typeOf(object).toStdString(),
                           Archive::valueOf(object, nameField).toStdString(), clip, time);
    }

    Archive::Internal::Elements m_timelines;
    QHash<unsigned long long, QDomElement> m_objects;
    PartList m_parts;
};

class FlatParts {
public:
    explicit FlatParts(const JsonDocument& document) : m_objects(document.flat.objects) {}

    std::vector<Part> list() {
        for (const auto& [timelineId, timeline] : m_objects) {
            if (classOf(timeline) != timelineClass.toStdString())
                continue;
            for (const json& entry : Archive::Internal::memberOf(timeline, clipsField.toStdString()))
                addClip(entry.is_object() && entry.contains("clip") ? entry["clip"] : entry,
                        Archive::Internal::memberOf(entry, "timing"));
        }
        return m_parts.take();
    }

private:
    void addClip(const json& clip, const json& timing) {
        const unsigned long long id = idOf(clip);
        const json& time = Archive::Internal::memberOf(objectOf(timing), timestampField.toStdString());
        if (!add(PartKind::Clip, clip, id,
                 time.is_number_integer() ? std::optional(time.get<long long>()) : std::nullopt))
            return;
        const json& object = objectOf(clip);
        for (const json& effect : Archive::Internal::memberOf(object, effectsField.toStdString()))
            add(PartKind::Effect, effect, id);
        add(PartKind::Title, Archive::Internal::memberOf(object, overlayField.toStdString()), id);
    }
    bool add(PartKind kind, const json& value, unsigned long long clip,
             std::optional<long long> time = std::nullopt) {
        const json& object = objectOf(value);
        const json& name = Archive::Internal::memberOf(object, nameField.toStdString());
        return m_parts.add(kind, idOf(value), classOf(object),
                           name.is_string() ? name.get<std::string>() : std::string(), clip, time);
    }
    static unsigned long long idOf(const json& value) {
        return Serialize::Json::getAnyObjectId(value).value_or(0);
    }
    /// The object that the value refers to or is; null where there is none.
    const json& objectOf(const json& value) const {
        static const json none;
        if (isClassObject(value))
            return value;
        const auto object = m_objects.find(idOf(value));
        return object == m_objects.end() ? none : object->second;
    }

    const std::map<unsigned long long, json>& m_objects;
    PartList m_parts;
};

/// Follows references from the root object. `visit(id, found)` must call `found` for each id that the object refers to,
/// and give false where there is no such object.
template <class Visit>
std::set<unsigned long long> follow(unsigned long long root, Visit visit) {
    std::set<unsigned long long> reached = {root};
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

std::set<unsigned long long> reachableInXml(const QDomDocument& xml) {
    const auto objects = byId(rootObjectsOf(xml));
    const auto root = idIn(xml.documentElement().firstChildElement(Words::RootRef));
    return follow(root, [&](unsigned long long id, auto found) {
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

std::set<unsigned long long> reachableInJson(const JsonDocument& document) {
    std::vector<unsigned long long> embedded; // objects inside of others, whose values are visited with those
    auto reached = follow(document.root, [&](unsigned long long id, auto found) {
        const auto object = document.flat.objects.find(id);
        if (object == document.flat.objects.end())
            return false;
        walkValues(object->second, [&](const json& value) {
            found(linkTarget(value));
            if (isClassObject(value))
                embedded.push_back(Serialize::Json::getObjectId(value).value_or(0));
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
    return document.isXml() ? ArchiveParts(rootObjectsOf(document.xml())).list()
                            : FlatParts(document.json()).list();
}

std::vector<Part> listParts(Archive::Internal::ArchiveEditor& archive) {
    return ArchiveParts(archive.rootObjects(Archive::Internal::Scope::Document)).list();
}

std::vector<Clip> listClips(const Document& document) {
    std::vector<Clip> clips;
    for (Part& part : listParts(document)) {
        if (part.kind == PartKind::Clip)
            clips.push_back({part.id, std::move(part.name)});
    }
    return clips;
}

std::set<unsigned long long> findReachable(const Document& document) {
    return document.isXml() ? reachableInXml(document.xml()) : reachableInJson(document.json());
}

} // namespace Reader
