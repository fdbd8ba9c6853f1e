#include "Reader/Contents.h"

#include "Archive/Internal/FlatObjects.h"
#include "Archive/Internal/TreeFacts.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <QHash>

#include <unordered_set>

using nlohmann::json;
namespace Words = Archive::Words;

namespace Reader {
namespace {

const QString timelineClass = QStringLiteral("Timeline::Object");
const QString clipsField = QStringLiteral("clips");
const QString nameField = QStringLiteral("name");

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

/// The archive's root objects except predeclarations, by id. If an id occurs twice, the later object, as in
/// the conversion.
QHash<unsigned long long, QDomElement> rootObjectsById(const QDomDocument& xml) {
    QHash<unsigned long long, QDomElement> objects;
    const Archive::Internal::TypedElements elements(Archive::Internal::typedElements(xml, Words::RootObject));
    for (const auto& [e, type] : elements) {
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

/// Adds clips to a list, each id once.
class ClipList {
public:
    void add(unsigned long long id, std::string name) {
        if (id != 0 && m_ids.insert(id).second)
            m_clips.push_back({id, std::move(name)});
    }
    std::vector<Clip> take() { return std::move(m_clips); }

private:
    std::unordered_set<unsigned long long> m_ids;
    std::vector<Clip> m_clips;
};

std::vector<Clip> clipsInXml(const QDomDocument& xml) {
    ClipList clips;
    const auto objects = rootObjectsById(xml);
    for (const QDomElement& timeline : Archive::Internal::rootObjects(xml, timelineClass)) {
        for (const QDomElement& item :
             Archive::Internal::children(timeline.firstChildElement(clipsField), Words::Item)) {
            const QDomElement key = item.firstChildElement(Words::Key);
            const auto id = idIn(key.isNull() ? item.firstChildElement(Words::Data) : key);
            clips.add(id, Archive::valueOf(objects.value(id), nameField).toStdString());
        }
    }
    return clips.take();
}

std::vector<Clip> clipsInJson(const JsonDocument& document) {
    ClipList clips;
    for (const auto& [timelineId, timeline] : document.flat.objects) {
        if (classOf(timeline) != timelineClass.toStdString())
            continue;
        for (const json& entry : Archive::Internal::memberOf(timeline, clipsField.toStdString())) {
            const json& clip = entry.is_object() && entry.contains("clip") ? entry["clip"] : entry;
            const unsigned long long id = Serialize::Json::getAnyObjectId(clip).value_or(0);
            const auto object = document.flat.objects.find(id);
            const json& name = object == document.flat.objects.end()
                                   ? json()
                                   : Archive::Internal::memberOf(object->second, nameField.toStdString());
            clips.add(id, name.is_string() ? name.get<std::string>() : std::string());
        }
    }
    return clips.take();
}

/// Follows references from id to id. `refersTo(id, found)` must call `found` for each id that the object
/// refers to.
template <class RefersTo>
std::set<unsigned long long> follow(unsigned long long root, RefersTo refersTo) {
    std::set<unsigned long long> reached = {root};
    std::vector<unsigned long long> open = {root};
    while (!open.empty()) {
        const unsigned long long id = open.back();
        open.pop_back();
        refersTo(id, [&](unsigned long long target) {
            if (target != 0 && reached.insert(target).second)
                open.push_back(target);
        });
    }
    return reached;
}

std::set<unsigned long long> reachableInXml(const QDomDocument& xml) {
    const auto objects = rootObjectsById(xml);
    const auto root = idIn(xml.documentElement().firstChildElement(Words::RootRef));
    return follow(root, [&](unsigned long long id, auto found) {
        const QDomElement object = objects.value(id);
        if (object.isNull())
            return;
        walkElements(object, [&](const QDomElement& e) {
            if (Archive::typeOf(e) == Words::ObjectRef)
                found(idIn(e));
        });
    });
}

std::set<unsigned long long> reachableInJson(const JsonDocument& document) {
    return follow(document.root, [&](unsigned long long id, auto found) {
        const auto object = document.flat.objects.find(id);
        if (object == document.flat.objects.end())
            return;
        walkValues(object->second, [&](const json& value) {
            found(linkTarget(value));
            if (isClassObject(value))
                found(Serialize::Json::getObjectId(value).value_or(0));
        });
    });
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

std::vector<Clip> listClips(const Document& document) {
    return document.isXml() ? clipsInXml(document.xml()) : clipsInJson(document.json());
}

std::set<unsigned long long> findReachable(const Document& document) {
    return document.isXml() ? reachableInXml(document.xml()) : reachableInJson(document.json());
}

} // namespace Reader
