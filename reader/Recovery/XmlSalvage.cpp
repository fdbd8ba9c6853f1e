#include "Recovery/XmlSalvage.h"

#include <QString>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <functional>
#include <iterator>
#include <limits>
#include <set>
#include <utility>

namespace Reader {
namespace {

constexpr std::string_view predeclaratorClass = "Predeclarator";
constexpr std::string_view recordClass = "Predeclare";
constexpr std::string_view referenceType = "ObjectRef";

template <class Number>
std::optional<Number> toNumber(std::string_view text) {
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

std::string escaped(const std::string& text) {
    return QString::fromStdString(text).toHtmlEscaped().toStdString();
}

/// A value of an attribute without entities.
std::string unescaped(std::string_view text) {
    QString result = QString::fromUtf8(text.data(), static_cast<int>(text.size()));
    const std::array<std::pair<const char*, const char*>, 5> entities = {
        {{"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&apos;", "'"}, {"&amp;", "&"}}};
    for (const auto& [entity, character] : entities)
        result.replace(QLatin1String(entity), QLatin1String(character));
    return result.toStdString();
}

std::string_view typeNameOf(FieldKind kind) {
    constexpr std::array<std::string_view, 7> names = {"bool",   "int32_t",   "int64_t", "double",
                                                       "String", "ObjectRef", "Array"};
    return names[static_cast<std::size_t>(kind)];
}

std::string binaryOf(double number) {
    std::array<char, sizeof(double)> bytes;
    quint64 bits = 0;
    std::memcpy(&bits, &number, sizeof(bits));
    qToBigEndian(bits, bytes.data());
    return QByteArray(bytes.data(), static_cast<int>(bytes.size())).toBase64().toStdString();
}

/// An entry of a timeline's list: the field that the list belongs to.
std::string_view listOfEntry(bool isMap, std::string_view valueType) {
    if (!isMap)
        return "tracks";
    if (valueType == timingClassName)
        return "clips";
    return valueType == "Array" ? "transitions" : valueType == "Timeline::Link" ? "links" : "";
}

} // namespace

XmlSalvage::XmlSalvage(ScannedTree tree, RecoveryReport& report) : m_tree(std::move(tree)), m_report(report) {
    findRootObjects();
}

std::vector<int> XmlSalvage::children(int node, std::string_view tag) const {
    std::vector<int> result;
    for (int next = at(node).firstChild; next >= 0; next = at(next).next) {
        if (!at(next).isDead && !at(next).isText && (tag.empty() || at(next).tag == tag))
            result.push_back(next);
    }
    return result;
}

int XmlSalvage::child(int node, std::string_view tag) const {
    for (int next = node < 0 ? -1 : at(node).firstChild; next >= 0; next = at(next).next) {
        if (!at(next).isDead && !at(next).isText && at(next).tag == tag)
            return next;
    }
    return -1;
}

ObjectId XmlSalvage::idOf(int node) const {
    return toNumber<ObjectId>(m_tree.attribute(node, "objectId")).value_or(0);
}

ObjectId XmlSalvage::refIn(int node, std::string_view field) const {
    const int reference = child(node, field);
    return reference < 0 ? 0 : toNumber<ObjectId>(m_tree.attribute(reference, "value")).value_or(0);
}

long long XmlSalvage::numberIn(int node, std::string_view field) const {
    const int value = child(node, field);
    return value < 0 ? 0 : toNumber<long long>(m_tree.attribute(value, "value")).value_or(0);
}

int XmlSalvage::objectAt(ObjectId id) const {
    const auto found = m_objectsById.find(id);
    return found == m_objectsById.end() ? -1 : found->second;
}

/// Calls `visit` for an element and all below it that are written, in document order. `visit` may mark elements as
/// dead: what is below them is not visited.
template <class Visit>
void XmlSalvage::walk(int top, Visit visit) const {
    int node = top;
    while (true) {
        if (!at(node).isDead && !at(node).isText)
            visit(node);
        if (at(node).firstChild >= 0 && !at(node).isDead) {
            node = at(node).firstChild;
            continue;
        }
        while (node != top && at(node).next < 0)
            node = at(node).parent;
        if (node == top)
            return;
        node = at(node).next;
    }
}

/// Calls `visit` for all elements of the project's objects.
void XmlSalvage::walkProject(const std::function<void(int, int)>& visit) const {
    for (const int object : m_rootObjects) {
        if (!at(object).isDead && typeOf(object) != predeclaratorClass)
            walk(object, [&](int node) { visit(node, object); });
    }
}

void XmlSalvage::findRootObjects() {
    for (int node = 0; node < static_cast<int>(m_tree.nodes.size()); ++node) {
        const bool isReference = typeOf(node) == referenceType;
        const ObjectId value =
            isReference ? toNumber<ObjectId>(m_tree.attribute(node, "value")).value_or(0) : 0;
        constexpr ObjectId highest = std::numeric_limits<long long>::max() / 2;
        for (const ObjectId id : {idOf(node), value}) {
            if (id < highest)
                m_greatestId = std::max(m_greatestId, id);
        }
    }
    for (const int node : children(0)) {
        if (at(node).tag == "RootRef" && m_rootRef < 0) {
            m_rootRef = node;
        } else if (at(node).tag == "RootObject") {
            m_rootObjects.push_back(node);
            if (typeOf(node) != predeclaratorClass && !m_objectsById.emplace(idOf(node), node).second &&
                isDamaged())
                at(node).isDead = true; // a part of another copy
        } else if (isDamaged()) {
            at(node).isDead = true; // the rest of an object whose start is lost
        }
    }
}

std::optional<std::string> XmlSalvage::statedVersion() const {
    const ScannedNode& archive = at(0);
    for (std::uint32_t number = 0; number < archive.attributes; ++number) {
        const ScannedAttribute& attribute = m_tree.attributes[archive.firstAttribute + number];
        if (attribute.name == "schemaVersion")
            return unescaped(attribute.value);
    }
    return std::nullopt;
}

VersionFacts XmlSalvage::versionFacts() const {
    VersionFacts facts;
    walkProject([&](int node, int) {
        const std::string className(typeOf(node));
        const bool isObject = !m_tree.attribute(node, "objectId").empty();
        if (!isObject || !VersionFacts::knows(className))
            return;
        facts.addObject(className, !at(node).isCut);
        for (const int field : children(node)) {
            if (!at(field).isLate)
                facts.addField(className, at(field).tag, typeOf(field));
        }
    });
    return facts;
}

// Dropping and closing

void XmlSalvage::dropDamaged() {
    std::vector<int> alive;
    for (const int object : m_rootObjects) {
        const std::string_view className = typeOf(object);
        const bool isDeclaring = className == predeclaratorClass;
        if (at(object).isDead)
            continue;
        if (isDamaged() && !at(object).isCut && className == clipClassName &&
            lacksFields(object, clipFields, m_version))
            at(object).isCut = true; // two pieces that happen to fit
        if (!at(object).isCut) {
            if (isDamaged())
                checkParts(object);
            alive.push_back(object);
            m_report.objectsWhole += isDeclaring ? 0 : 1;
            continue;
        }
        const bool isClip = className == clipClassName;
        if (isClip)
            m_damagedClips.push_back(
                {idOf(object), unescaped(m_tree.attribute(std::max(child(object, "name"), 0), "value"))});
        const bool leadsToClips =
            !fieldsOf(className).empty() || className == persistentClassName || (isClip && isScene(object));
        if (idOf(object) == 0 || (!leadsToClips && !isDeclaring)) {
            at(object).isDead = true;
            m_objectsById.erase(idOf(object));
            ++m_report.objectsDropped;
            continue;
        }
        alive.push_back(object);
        if (isDeclaring) {
            for (const int list : children(object, "predeclarations"))
                closeList(list);
            continue;
        }
        m_changed.insert(object);
        ++m_report.objectsClosed;
        close(object);
    }
    m_rootObjects = std::move(alive);
}

bool XmlSalvage::lacksFields(int object, std::span<const FieldRow> fields, int version) const {
    return std::any_of(fields.begin(), fields.end(), [&](const FieldRow& row) {
        const int field = row.isAt(version) ? child(object, row.name) : 0;
        return field < 0 ||
               (row.kind != FieldKind::Text && field > 0 && m_tree.attribute(field, "value").empty());
    });
}

/// Completes tracks, and removes the entries of a timeline whose timing says no time. In a healthy project there is
/// nothing to do.
void XmlSalvage::checkParts(int object) {
    if (typeOf(object) == trackClassName && lacksFields(object, trackFields, m_version)) {
        complete(object, trackFields);
        ++m_report.objectsClosed;
    }
    const int clips = typeOf(object) == timelineClassName ? child(object, "clips") : -1;
    for (const int item : clips < 0 ? std::vector<int>() : children(clips, "Item")) {
        const int timing = child(item, "Value");
        if (timing < 0 || child(item, "Key") < 0 || lacksFields(timing, placeFields, m_version)) {
            at(item).isDead = true;
            ++m_report.entriesDropped;
            m_changed.insert(object);
        }
    }
}

/// Whether a damaged clip shows a timeline.
bool XmlSalvage::isScene(int clip) const {
    const int nested = child(clip, "nestedTimeline");
    return nested >= 0 && !at(nested).isLate && refIn(clip, "nestedTimeline") != 0;
}

/// Removes from a damaged object what is not whole or not its own, and adds what it lacks.
void XmlSalvage::close(int object) {
    const std::string_view className = typeOf(object);
    const auto fields = fieldsOf(className);
    const bool isClip = className == clipClassName;
    std::set<std::string_view> names;
    for (const int field : children(object)) {
        const ScannedNode& node = at(field);
        const bool isOwn = std::any_of(fields.begin(), fields.end(),
                                       [&](const FieldRow& row) { return row.name == at(field).tag; });
        const bool isEmbedded = className == persistentClassName && !fieldsOf(typeOf(field)).empty();
        const bool isList = isOwn && typeOf(field) == "Array";
        if ((node.isCut && !isList && !isEmbedded) || (node.isLate && !isOwn && !isEmbedded) ||
            (isClip && node.isCut) || !names.insert(node.tag).second) {
            at(field).isDead = true;
        } else if (isEmbedded && node.isCut) {
            close(field); // one level only: the classes that are embedded embed none
        } else if (isList && node.isCut) {
            closeList(field);
        }
    }
    if (className == timelineClassName)
        closeTimeline(object);
    complete(object, fields);
}

/// Removes the entries of a list that are not whole.
void XmlSalvage::closeList(int list) {
    const bool isClips = at(list).tag == "clips";
    const bool isDeclaring = at(list).tag == "predeclarations";
    for (int item = at(list).firstChild; item >= 0; item = at(item).next) {
        if (isClips && at(item).isCut && !at(item).isText)
            completeTiming(item);
        if (at(item).tag != "Item" || at(item).isText || at(item).isCut) {
            m_report.entriesDropped += at(item).isDead || isDeclaring ? 0 : 1;
            at(item).isDead = true;
        }
    }
    at(list).isCut = false;
}

/// Keeps a damaged entry of a timeline's clips if it still says which clip is where.
void XmlSalvage::completeTiming(int item) {
    const int key = child(item, "Key");
    const int timing = child(item, "Value");
    if (key < 0 || timing < 0 || at(key).isCut || at(key).isLate || at(timing).isLate ||
        typeOf(timing) != timingClassName)
        return;
    std::set<std::string_view> names;
    for (int field = at(timing).firstChild; field >= 0; field = at(field).next) {
        if (at(field).isText || at(field).isCut || at(field).isLate)
            at(field).isDead = true;
        else
            names.insert(at(field).tag);
    }
    for (const std::string_view needed : {"track", "timestamp", "duration"}) {
        if (!names.count(needed))
            return;
    }
    complete(timing, timingFields);
    at(item).isCut = at(timing).isCut = false;
}

/// Entries behind a loss may be in the wrong list of a timeline: moves each to its own.
void XmlSalvage::closeTimeline(int timeline) {
    struct Entry {
        std::string_view list;
        int item;
    };
    std::vector<Entry> entries;
    for (const int list : children(timeline)) {
        if (typeOf(list) != "Array" || at(list).tag == "trackingLinks")
            continue;
        for (int item = at(list).firstChild; item >= 0; item = at(item).next) {
            if (at(item).isDead)
                continue;
            const int key = child(item, "Key");
            const int value = child(item, "Value");
            const int data = child(item, "Data");
            const std::string_view name =
                listOfEntry(data < 0, value < 0 ? std::string_view() : typeOf(value));
            const ObjectId id =
                toNumber<ObjectId>(m_tree.attribute(std::max({key, data, 0}), "value")).value_or(0);
            const int target = objectAt(id);
            const bool isOfClass = target < 0 || (name == "tracks"  ? typeOf(target) == trackClassName
                                                  : name == "clips" ? typeOf(target) == clipClassName
                                                                    : typeOf(target) != trackClassName);
            if (name.empty() || (key < 0 && data < 0) || !isOfClass || (target < 0 && at(item).isLate)) {
                at(item).isDead = true;
                ++m_report.entriesDropped;
            } else if (name != at(list).tag) {
                entries.push_back({name, item});
            }
        }
    }
    for (const auto& [list, item] : entries) {
        const int copy = addItem(listIn(timeline, list));
        // The element moves with all below it.
        at(copy).firstChild = at(item).firstChild;
        at(copy).lastChild = at(item).lastChild;
        at(item).firstChild = at(item).lastChild = -1;
        at(item).isDead = true;
        for (int part = at(copy).firstChild; part >= 0; part = at(part).next)
            at(part).parent = copy;
    }
}

/// Adds the fields that are missing.
void XmlSalvage::complete(int object, std::span<const FieldRow> fields) {
    for (const FieldRow& row : fields) {
        if (row.isAt(m_version) && child(object, row.name) < 0)
            addField(object, row);
    }
}

// Adding

std::string_view XmlSalvage::keep(std::string text) {
    return m_texts.emplace_back(std::move(text));
}

int XmlSalvage::add(std::string_view tag, int parent,
                    std::initializer_list<std::pair<std::string_view, std::string>> attributes) {
    const int node = m_tree.add(tag, parent);
    at(node).firstAttribute = static_cast<std::uint32_t>(m_tree.attributes.size());
    at(node).attributes = static_cast<std::uint32_t>(attributes.size());
    for (const auto& [name, value] : attributes)
        m_tree.attributes.push_back({name, keep(escaped(value))});
    return node;
}

int XmlSalvage::addField(int parent, const FieldRow& row, const std::string& value) {
    const std::string type(typeNameOf(row.kind));
    const std::string text =
        !value.empty() || row.kind == FieldKind::Text ? value : std::to_string(row.value);
    if (row.kind == FieldKind::List)
        return add(row.name, parent, {{"type", type}, {"size", "0"}});
    if (row.kind == FieldKind::Double)
        return add(row.name, parent, {{"type", type}, {"value", text}, {"binaryData", binaryOf(row.value)}});
    if (row.kind == FieldKind::Text && m_version < 44)
        return add(row.name, parent, {{"type", "StringPtr"}, {"value", text}, {"isNull", "0"}});
    return add(row.name, parent, {{"type", type}, {"value", text}});
}

int XmlSalvage::addReference(int parent, std::string_view field, ObjectId id) {
    return add(field, parent, {{"type", std::string(referenceType)}, {"value", std::to_string(id)}});
}

int XmlSalvage::addItem(int list) {
    return add("Item", list, {{"type", "Item"}, {"index", "0"}}); // mendCounts() numbers it
}

ObjectId XmlSalvage::newId() {
    return ++m_greatestId;
}

/// Makes a root object without fields.
int XmlSalvage::makeObject(std::string_view className, ObjectId id) {
    id = id == 0 ? newId() : id;
    const int object =
        add("RootObject", 0, {{"type", std::string(className)}, {"objectId", std::to_string(id)}});
    m_rootObjects.push_back(object);
    m_objectsById[id] = object;
    m_changed.insert(object);
    ++m_report.objectsMade;
    return object;
}

int XmlSalvage::embed(int parent, std::string_view field, std::string_view className, ObjectId id) {
    return add(field, parent, {{"type", std::string(className)}, {"objectId", std::to_string(id)}});
}

/// The list of that name, which is added where it is missing.
int XmlSalvage::listIn(int object, std::string_view field) {
    const int list = child(object, field);
    return list >= 0 ? list : addField(object, {field, FieldKind::List});
}

void XmlSalvage::set(int node, std::string_view attribute, const std::string& value) {
    ScannedNode& element = at(node);
    for (std::uint32_t number = 0; number < element.attributes; ++number) {
        ScannedAttribute& candidate = m_tree.attributes[element.firstAttribute + number];
        if (candidate.name == attribute) {
            candidate.value = keep(escaped(value));
            return;
        }
    }
    std::vector<ScannedAttribute> attributes(m_tree.attributes.begin() + element.firstAttribute,
                                             m_tree.attributes.begin() + element.firstAttribute +
                                                 element.attributes);
    attributes.push_back({attribute, keep(escaped(value))});
    element.firstAttribute = static_cast<std::uint32_t>(m_tree.attributes.size());
    element.attributes = static_cast<std::uint32_t>(attributes.size());
    m_tree.attributes.insert(m_tree.attributes.end(), attributes.begin(), attributes.end());
}

void XmlSalvage::setReference(int object, std::string_view field, ObjectId id) {
    const int reference = child(object, field);
    if (reference < 0)
        addReference(object, field, id);
    else
        set(reference, "value", std::to_string(id));
}

// What mendTimelines() asks and changes

std::vector<RecoveredClip> XmlSalvage::mentionedClips() const {
    std::vector<RecoveredClip> clips = m_damagedClips;
    const auto mention = [&](ObjectId id) {
        if (id != 0)
            clips.push_back({id, {}});
    };
    for (int node = 0; node < static_cast<int>(m_tree.nodes.size()); ++node) {
        if (at(node).isText || at(node).isCut)
            continue;
        if (at(node).tag == "Item" && typeOf(std::max(child(node, "Value"), 0)) == timingClassName)
            mention(refIn(node, "Key"));
        if (typeOf(node) == recordClass) {
            const int name = child(node, "typeName");
            if (name >= 0 && m_tree.attribute(name, "value") == clipClassName)
                mention(refIn(node, "oid"));
        }
    }
    return clips;
}

std::vector<SalvagedClip> XmlSalvage::clips() const {
    std::vector<SalvagedClip> result;
    for (const int object : m_rootObjects) {
        if (at(object).isDead || typeOf(object) != clipClassName || idOf(object) == 0)
            continue;
        const int name = child(object, "name");
        result.push_back({idOf(object), name < 0 ? std::string() : unescaped(m_tree.attribute(name, "value")),
                          numberIn(object, "type"), refIn(object, "timeline"),
                          refIn(object, "nestedTimeline"), clampedTime(numberIn(object, "sourceDuration")),
                          !at(object).isCut});
    }
    return result;
}

std::vector<SalvagedTimeline> XmlSalvage::timelines() const {
    std::vector<SalvagedTimeline> result;
    for (const int object : m_rootObjects) {
        if (at(object).isDead || typeOf(object) != timelineClassName)
            continue;
        SalvagedTimeline timeline{idOf(object), m_changed.count(object) == 0, {}, {}, {}};
        if (const int name = child(object, "name"); name >= 0)
            timeline.name = unescaped(m_tree.attribute(name, "value"));
        const int clips = child(object, "clips");
        for (const int item : clips < 0 ? std::vector<int>() : children(clips, "Item")) {
            const int timing = child(item, "Value");
            if (timing < 0)
                continue;
            timeline.entries.push_back(
                {refIn(item, "Key"),
                 {refIn(timing, "track"), numberIn(timing, "trackLevel"),
                  clampedTime(numberIn(timing, "timestamp")), clampedTime(numberIn(timing, "duration"))}});
        }
        const int tracks = child(object, "tracks");
        for (const int item : tracks < 0 ? std::vector<int>() : children(tracks, "Item"))
            timeline.tracks.push_back(refIn(item, "Data"));
        result.push_back(std::move(timeline));
    }
    return result;
}

std::vector<SalvagedTrack> XmlSalvage::tracks() const {
    std::vector<SalvagedTrack> result;
    for (const int object : m_rootObjects) {
        if (!at(object).isDead && typeOf(object) == trackClassName)
            result.push_back({idOf(object), numberIn(object, "type"), refIn(object, "timeline")});
    }
    return result;
}

ObjectId XmlSalvage::mainTimeline() const {
    const ObjectId root =
        m_rootRef < 0 ? 0 : toNumber<ObjectId>(m_tree.attribute(m_rootRef, "value")).value_or(0);
    const int object = objectAt(root);
    if (object < 0)
        return m_version < contentVersion ? root : 0;
    const std::string_view className = typeOf(object);
    if (className == timelineClassName)
        return root;
    if (className == contentClassName)
        return refIn(object, "timeline");
    return className == persistentClassName ? refIn(child(object, "content"), "timeline") : 0;
}

ObjectId XmlSalvage::makeTimeline(ObjectId id) {
    const int timeline = makeObject(timelineClassName, id);
    complete(timeline, timelineFields);
    return idOf(timeline);
}

ObjectId XmlSalvage::makeTrack(ObjectId id, long long type, ObjectId timeline) {
    const int track = makeObject(trackClassName, id);
    complete(track, trackFields);
    set(child(track, "type"), "value", std::to_string(type));
    setReference(track, "timeline", timeline);
    return idOf(track);
}

ObjectId XmlSalvage::makeScene(ObjectId nested, ObjectId timeline, const std::string& name) {
    const int clip = makeObject(clipClassName, 0);
    at(clip).isCut = true; // it is no model for others
    addField(clip, {"name", FieldKind::Text}, name);
    addReference(clip, "nestedTimeline", nested);
    completeScene(idOf(clip), timeline);
    return idOf(clip);
}

/// The fields are those of another clip, but for references and entries.
void XmlSalvage::completeScene(ObjectId id, ObjectId timeline) {
    const int clip = objectAt(id);
    const auto model = std::find_if(m_rootObjects.begin(), m_rootObjects.end(), [&](int object) {
        return !at(object).isDead && !at(object).isCut && typeOf(object) == clipClassName;
    });
    for (const int field : model == m_rootObjects.end() ? std::vector<int>() : children(*model)) {
        if (child(clip, at(field).tag) >= 0)
            continue;
        const int copy = m_tree.add(at(field).tag, clip);
        at(copy).firstAttribute = static_cast<std::uint32_t>(m_tree.attributes.size());
        at(copy).attributes = at(field).attributes;
        for (std::uint32_t number = 0; number < at(field).attributes; ++number)
            m_tree.attributes.push_back(
                ScannedAttribute(m_tree.attributes[at(field).firstAttribute + number]));
        if (typeOf(copy) == referenceType)
            set(copy, "value", "0");
        else if (at(copy).tag == "type")
            set(copy, "value", std::to_string(sceneClip));
    }
    if (refIn(clip, "timeline") == 0)
        setReference(clip, "timeline", timeline);
}

void XmlSalvage::listTrack(ObjectId timeline, ObjectId track) {
    const int item = addItem(listIn(objectAt(timeline), "tracks"));
    addReference(item, "Data", track);
    m_changed.insert(objectAt(timeline));
}

void XmlSalvage::listClip(ObjectId timeline, ObjectId clip, const ClipPlace& place) {
    const int item = addItem(listIn(objectAt(timeline), "clips"));
    addReference(item, "Key", clip);
    const int timing = embed(item, "Value", timingClassName, newId());
    complete(timing, timingFields);
    const auto setNumber = [&](std::string_view field, long long number) {
        if (const int value = child(timing, field); value >= 0)
            set(value, "value", std::to_string(number));
    };
    setNumber("track", static_cast<long long>(place.track));
    setNumber("trackLevel", place.level);
    setNumber("timestamp", place.timestamp);
    setNumber("sourceDuration", place.duration);
    setNumber("duration", place.duration);
    m_changed.insert(objectAt(timeline));
}

void XmlSalvage::moveClip(ObjectId timeline, ObjectId clip, ObjectId track) {
    if (m_timings.empty()) {
        for (const int object : m_rootObjects) {
            const int clips = typeOf(object) == timelineClassName ? child(object, "clips") : -1;
            for (const int item : clips < 0 ? std::vector<int>() : children(clips, "Item"))
                m_timings.emplace(refIn(item, "Key"), child(item, "Value"));
        }
    }
    if (const auto timing = m_timings.find(clip); timing != m_timings.end() && timing->second >= 0)
        setReference(timing->second, "track", track);
    m_changed.insert(objectAt(timeline));
}

void XmlSalvage::setMainTimeline(ObjectId timeline) {
    const auto firstOf = [&](std::string_view className) {
        const auto found = std::find_if(m_rootObjects.begin(), m_rootObjects.end(), [&](int object) {
            return !at(object).isDead && typeOf(object) == className;
        });
        return found == m_rootObjects.end() ? -1 : *found;
    };
    if (m_rootRef >= 0 && mainTimeline() == timeline)
        return;
    int root = -1;
    if (m_version < contentVersion) {
        root = objectAt(timeline);
    } else {
        const bool isPersistent = m_version >= persistentVersion;
        root = firstOf(isPersistent ? persistentClassName : contentClassName);
        if (root < 0)
            root = makeObject(isPersistent ? persistentClassName : contentClassName, 0);
        m_changed.insert(root);
        int content = root;
        if (isPersistent) {
            content = child(root, "content");
            if (content < 0)
                content = embed(root, "content", contentClassName, newId());
            if (child(root, "resourceTable") < 0)
                complete(embed(root, "resourceTable", tableClassName, newId()), tableFields);
        }
        complete(content, contentFields);
        setReference(content, "timeline", timeline);
        const int collection = firstOf(collectionClassName);
        if (refIn(content, "userCollection") == 0 && collection >= 0)
            setReference(content, "userCollection", idOf(collection));
    }
    if (m_rootRef < 0)
        m_rootRef = addReference(0, "RootRef", idOf(root));
    else
        set(m_rootRef, "value", std::to_string(idOf(root)));
}

// References, counts and predeclarations

void XmlSalvage::mendReferences() {
    clearReferences();
    renumberCopies();
    mendPredeclarations();
    mendCounts();
}

/// A field that refers to a lost object refers to nothing. An entry of a list that does so is removed.
void XmlSalvage::clearReferences() {
    walkProject([this](int node, int) {
        if (typeOf(node) != referenceType)
            return;
        const std::string_view value = m_tree.attribute(node, "value");
        const auto id = toNumber<ObjectId>(value);
        if (id && (*id == 0 || objectAt(*id) >= 0))
            return;
        int item = -1; // the outermost entry in the same object
        for (int part = at(node).parent; part > 0 && m_tree.attribute(part, "objectId").empty();
             part = at(part).parent) {
            if (at(part).tag == "Item")
                item = part;
        }
        if (item < 0) {
            set(node, "value", "0");
            ++m_report.referencesCleared;
        } else if (!at(item).isDead) {
            at(item).isDead = true;
            ++m_report.entriesDropped;
        }
    });
}

/// An object inside of another one gets a new id where its own is used already. No reference names it.
void XmlSalvage::renumberCopies() {
    std::unordered_set<ObjectId> seen;
    ObjectId copiedId = 0; // of the last object that got a new id
    ObjectId newIdOfCopy = 0;
    walkProject([&](int node, int rootObject) {
        const ObjectId id = idOf(node);
        if (id == 0)
            return;
        if (at(node).tag == "BaseOfObject") {
            if (id == copiedId)
                set(node, "objectId", std::to_string(newIdOfCopy));
        } else if (node != rootObject && (m_objectsById.count(id) > 0 || !seen.insert(id).second)) {
            copiedId = id;
            newIdOfCopy = newId();
            set(node, "objectId", std::to_string(newIdOfCopy));
        } else {
            copiedId = 0;
        }
    });
}

void XmlSalvage::mendCounts() {
    const auto mend = [this](int list) {
        if (typeOf(list) != "Array")
            return;
        const auto setNumber = [this](int node, std::string_view attribute, std::size_t number) {
            if (toNumber<std::size_t>(m_tree.attribute(node, attribute)) != number) {
                set(node, attribute, std::to_string(number));
                ++m_report.countsMended;
            }
        };
        std::size_t count = 0;
        for (int item = at(list).firstChild; item >= 0; item = at(item).next) {
            if (!at(item).isDead && !at(item).isText && at(item).tag == "Item")
                setNumber(item, "index", ++count);
        }
        setNumber(list, "size", count);
    };
    for (const int object : m_rootObjects)
        walk(object, mend);
}

/// The objects that an object's own fields refer to or hold, each once.
std::vector<ObjectId> XmlSalvage::referencesOf(int object) const {
    std::vector<ObjectId> ids;
    std::unordered_set<ObjectId> seen;
    const auto note = [&](ObjectId id) {
        if (id != 0 && seen.insert(id).second)
            ids.push_back(id);
    };
    int node = at(object).firstChild;
    while (node >= 0) {
        const bool isObject =
            at(node).tag != "BaseOfObject" && !at(node).isText && !m_tree.attribute(node, "objectId").empty();
        if (!at(node).isDead && !at(node).isText) {
            if (isObject)
                note(idOf(node));
            else if (typeOf(node) == referenceType)
                note(toNumber<ObjectId>(m_tree.attribute(node, "value")).value_or(0));
        }
        if (!at(node).isDead && !isObject && at(node).firstChild >= 0) {
            node = at(node).firstChild;
            continue;
        }
        while (node != object && at(node).next < 0)
            node = at(node).parent;
        node = node == object ? -1 : at(node).next;
    }
    return ids;
}

void XmlSalvage::addRecord(int list, int object, ObjectId parent) {
    const int data = embed(addItem(list), "Data", recordClass, newId());
    addField(data, {"typeName", FieldKind::Text}, std::string(unescaped(typeOf(object))));
    set(child(data, "typeName"), "type", "String");
    if (const int name = child(data, "typeName"); at(name).attributes == 3)
        at(name).attributes = 2; // a plain string at all versions
    addReference(data, "oid", idOf(object));
    addReference(data, "poid", parent);
    const int refs = listIn(data, "refs");
    for (const ObjectId id : referencesOf(object))
        addReference(addItem(refs), "Data", id);
    ++m_report.predeclarationsMended;
}

/// Removes references to lost objects from a record, and adds those that its object got. Returns whether something
/// changed.
bool XmlSalvage::mendRecord(const Record& record, int object, int rootObject) {
    bool isMended = false;
    std::unordered_set<ObjectId> listed;
    const auto isThere = [&](ObjectId id) { return m_embedded.count(id) > 0 || objectAt(id) >= 0; };
    const int refs = listIn(record.data, "refs");
    for (const int item : children(refs, "Item")) {
        const ObjectId id = refIn(item, "Data");
        listed.insert(id);
        if (!isThere(id)) {
            at(item).isDead = true;
            isMended = true;
        }
    }
    if (m_changed.count(rootObject)) {
        for (const ObjectId id : referencesOf(object)) {
            if (listed.insert(id).second) {
                addReference(addItem(refs), "Data", id);
                isMended = true;
            }
        }
    }
    if (const ObjectId parent = refIn(record.data, "poid"); parent != 0 && !isThere(parent)) {
        setReference(record.data, "poid", object == rootObject ? 0 : idOf(rootObject));
        isMended = true;
    }
    return isMended;
}

void XmlSalvage::mendPredeclarations() {
    struct Declared {
        int node;
        int rootObject;
    };
    std::vector<Declared> objects;
    std::unordered_map<ObjectId, std::size_t> places;
    walkProject([&](int node, int rootObject) {
        const ObjectId id = at(node).tag == "BaseOfObject" ? 0 : idOf(node);
        if (id != 0 && places.emplace(id, objects.size()).second) {
            objects.push_back({node, rootObject});
            m_embedded.insert(id);
        }
    });
    int predeclarator = -1;
    for (const int object : m_rootObjects) {
        if (!at(object).isDead && typeOf(object) == predeclaratorClass)
            predeclarator = object;
    }
    if (predeclarator < 0) {
        predeclarator = makeObject(predeclaratorClass, newId());
        m_objectsById.erase(idOf(predeclarator));
        --m_report.objectsMade;
    }
    const int list = listIn(predeclarator, "predeclarations");
    std::vector<bool> hasRecord(objects.size(), false);
    std::unordered_set<ObjectId> recordIds;
    for (const int item : children(list, "Item")) {
        const Record record{item, child(item, "Data")};
        const bool isRecord = record.data >= 0 && typeOf(record.data) == recordClass;
        const auto place = places.find(isRecord ? refIn(record.data, "oid") : 0);
        const bool isWhole = isRecord && child(record.data, "typeName") >= 0;
        if (place == places.end() || !isWhole) {
            at(item).isDead = true;
            ++m_report.predeclarationsMended;
            continue;
        }
        if (!recordIds.insert(idOf(record.data)).second || places.count(idOf(record.data)))
            set(record.data, "objectId", std::to_string(newId()));
        hasRecord[place->second] = true;
        const Declared& object = objects[place->second];
        m_report.predeclarationsMended += mendRecord(record, object.node, object.rootObject) ? 1 : 0;
    }
    for (std::size_t place = 0; place < objects.size(); ++place) {
        const auto& [node, rootObject] = objects[place];
        if (!hasRecord[place])
            addRecord(list, node, node == rootObject ? 0 : idOf(rootObject));
    }
}

QByteArray XmlSalvage::write() const {
    QByteArray text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    const auto append = [&text](std::string_view part) {
        text.append(part.data(), static_cast<int>(part.size()));
    };
    int node = 0;
    while (node >= 0) {
        const ScannedNode& element = at(node);
        if (!element.isDead && element.isText) {
            append(element.tag);
        } else if (!element.isDead) {
            text += '<';
            append(element.tag);
            for (std::uint32_t number = 0; number < element.attributes; ++number) {
                const auto& [name, value] = m_tree.attributes[element.firstAttribute + number];
                if (node == 0 && name == "schemaVersion")
                    continue;
                const char quote = value.find('"') == std::string_view::npos ? '"' : '\'';
                text += ' ';
                append(name);
                text += '=';
                text += quote;
                append(value);
                text += quote;
            }
            if (node == 0)
                text += " schemaVersion=\"" + QByteArray::number(m_version) + '"';
            if (element.firstChild >= 0) {
                text += ">\n";
                node = element.firstChild;
                continue;
            }
            text += "/>\n";
        }
        while (node >= 0 && at(node).next < 0) {
            node = at(node).parent;
            if (node >= 0) {
                text += "</";
                append(at(node).tag);
                text += ">\n";
            }
        }
        node = node < 0 ? -1 : at(node).next;
    }
    return text;
}

} // namespace Reader
