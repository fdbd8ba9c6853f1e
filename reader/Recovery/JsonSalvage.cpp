#include "Recovery/JsonSalvage.h"

#include "Reader/Flatten.h"
#include "Reader/JsonText.h"

#include <algorithm>
#include <utility>

using nlohmann::json;
using Serialize::Json::MetaDetails;

namespace Reader {
namespace {

json linkTo(ObjectId id) {
    return id == 0 ? json() : json{{MetaDetails::s_meta_reference, id}};
}

std::string classOf(const json& value) {
    const std::string* name = Serialize::Json::classNameOf(value);
    return name ? *name : std::string();
}

const json& member(const json& object, const std::string& key) {
    static const json none;
    if (!object.is_object())
        return none;
    const auto found = object.find(key);
    return found == object.end() ? none : *found;
}

long long numberIn(const json& object, const std::string& key) {
    const json& value = member(object, key);
    return value.is_number_integer() ? value.get<long long>() : 0;
}

std::string textIn(const json& object, const std::string& key) {
    const json& value = member(object, key);
    return value.is_string() ? value.get<std::string>() : std::string();
}

ObjectId refIn(const json& object, const std::string& key) {
    return linkTarget(member(object, key));
}

json valueOf(const FieldRow& row) {
    switch (row.kind) {
    case FieldKind::Bool:
        return row.value != 0;
    case FieldKind::Double:
        return static_cast<double>(row.value);
    case FieldKind::Text:
        return "";
    case FieldKind::Reference:
        return nullptr;
    case FieldKind::List:
        return json::array();
    default:
        return row.value;
    }
}

bool isOfKind(const json& value, FieldKind kind) {
    switch (kind) {
    case FieldKind::Bool:
        return value.is_boolean();
    case FieldKind::Int32:
    case FieldKind::Int64:
        return value.is_number_integer();
    case FieldKind::Double:
        return value.is_number();
    case FieldKind::Text:
        return value.is_string();
    case FieldKind::Reference:
        return value.is_null() || linkTarget(value) != 0;
    case FieldKind::List:
        return value.is_array();
    }
    return false;
}

/// The list of a timeline that an entry belongs to, and its member that names a clip.
std::pair<const char*, const char*> placeOf(const json& entry) {
    if (entry.contains("clip"))
        return {"clips", "clip"};
    if (entry.contains("slave"))
        return {"links", "slave"};
    return {"transitions", refIn(entry, "clipFrom") != 0 ? "clipFrom" : "clipTo"};
}

} // namespace

JsonSalvage::JsonSalvage(ScannedJson document, RecoveryReport& report)
    : m_document(std::move(document)), m_report(report) {
    if (!m_document.objects.empty())
        m_greatestId = m_document.objects.rbegin()->first;
    // Ids of lost objects are not given to others.
    for (const auto& [id, object] : m_document.objects) {
        for (const char* key : {"timeline", "nestedTimeline", "track"})
            m_greatestId = std::max(m_greatestId, refIn(object, key));
    }
}

json JsonSalvage::statedVersion() const {
    return member(m_document.envelope, "schemaVersion");
}

const json* JsonSalvage::find(ObjectId id) const {
    const auto found = m_document.objects.find(id);
    return found == m_document.objects.end() ? nullptr : &found->second;
}

ObjectId JsonSalvage::rootId() const {
    return refIn(m_document.envelope, "data");
}

ObjectId JsonSalvage::firstOf(std::string_view className) const {
    const auto found = std::find_if(m_document.objects.begin(), m_document.objects.end(),
                                    [&](const auto& object) { return classOf(object.second) == className; });
    return found == m_document.objects.end() ? 0 : found->first;
}

/// Makes an object without fields.
ObjectId JsonSalvage::make(std::string_view className, ObjectId id) {
    id = id == 0 ? m_greatestId + 1 : id;
    m_greatestId = std::max(m_greatestId, id);
    m_document.objects[id] = {
        {MetaDetails::s_meta,
         {{MetaDetails::s_class_name, std::string(className)}, {MetaDetails::s_object_id, id}}}};
    m_document.closed.insert(id);
    ++m_report.objectsMade;
    return id;
}

/// Adds the fields that are missing.
void JsonSalvage::complete(json& object, std::span<const FieldRow> fields) const {
    for (const FieldRow& row : fields) {
        const std::string name(row.name);
        if (!row.isAt(m_version))
            continue;
        if (!object.contains(name) || !isOfKind(object[name], row.kind))
            object[name] = valueOf(row);
    }
}

json& JsonSalvage::listIn(ObjectId id, const char* field) {
    json& list = at(id)[field];
    if (!list.is_array())
        list = json::array();
    return list;
}

/// Takes clips for damaged that lack what each clip has: two pieces that happen to fit. Completes tracks and removes
/// the entries of timelines whose timing says no time. In a healthy project there is nothing to do.
void JsonSalvage::checkParts() {
    auto& objects = m_document.objects;
    for (auto object = objects.begin(); object != objects.end();) {
        const bool isClip =
            classOf(object->second) == clipClassName && !m_document.closed.count(object->first);
        if (isClip && lacksFields(object->second, clipFields)) {
            m_document.damagedClips.push_back({object->first, textIn(object->second, "name")});
            ++m_document.droppedObjects;
            object = objects.erase(object);
        } else {
            ++object;
        }
    }
    for (auto& [id, object] : objects) {
        if (classOf(object) == trackClassName && lacksFields(object, trackFields)) {
            complete(object, trackFields);
            m_document.closed.insert(id);
        }
        if (classOf(object) == timelineClassName)
            checkEntries(id);
    }
}

/// Removes the entries of a timeline whose timing says no time.
void JsonSalvage::checkEntries(ObjectId timeline) {
    json& object = at(timeline);
    if (!member(object, "clips").is_array())
        return;
    const std::size_t dropped =
        std::erase_if(object["clips"].get_ref<json::array_t&>(), [this](const json& entry) {
            const json* timing = find(refIn(entry, "timing"));
            return !timing || lacksFields(*timing, placeFields);
        });
    m_report.entriesDropped += dropped;
    if (dropped > 0)
        m_document.closed.insert(timeline);
}

bool JsonSalvage::lacksFields(const json& object, std::span<const FieldRow> fields) const {
    return std::any_of(fields.begin(), fields.end(), [&](const FieldRow& row) {
        return row.isAt(m_version) && !isOfKind(member(object, std::string(row.name)), row.kind);
    });
}

void JsonSalvage::closeDamaged() {
    checkParts();
    m_report.objectsWhole = m_document.wholeObjects;
    m_report.objectsDropped = m_document.droppedObjects;
    m_report.objectsClosed = m_document.closed.size();
    placeLooseMembers();
    for (const ObjectId id : m_document.closed) {
        json& object = at(id);
        const std::string className = classOf(object);
        complete(object, className == timingClassName ? std::span<const FieldRow>(timingFields)
                                                      : fieldsOf(className));
    }
    placeLooseEntries();
}

/// Gives members to an object of their class that lacks them, or to one that is made.
void JsonSalvage::placeLooseMembers() {
    for (const auto& [className, members] : m_document.looseMembers) {
        ObjectId id = 0;
        if (className == timelineClassName) {
            // The tracks in its list name it.
            for (const json& track : member(members, "tracks")) {
                const json* object = find(linkTarget(track));
                id = id == 0 && object ? refIn(*object, "timeline") : id;
            }
            const json* timeline = id == 0 ? nullptr : find(id);
            if (!timeline)
                id = make(className, id);
            else if (classOf(*timeline) != timelineClassName)
                continue;
        } else if (id = firstOf(className); id == 0) {
            id = make(className, 0);
        }
        json& object = at(id);
        for (const auto& field : members.items()) {
            if (!object.contains(field.key()))
                object[field.key()] = field.value();
        }
        if (className == timelineClassName)
            checkEntries(id);
    }
}

/// Clips, transitions and links belong to the timeline that their clip names.
void JsonSalvage::placeLooseEntries() {
    for (json& entry : m_document.looseEntries) {
        const auto [list, key] = placeOf(entry);
        const json* clip = find(refIn(entry, key));
        const ObjectId timelineId = clip ? refIn(*clip, "timeline") : 0;
        const json* timeline = timelineId == 0 ? nullptr : find(timelineId);
        if (clip && timelineId != 0 && !timeline) {
            complete(at(make(timelineClassName, timelineId)), timelineFields);
            timeline = find(timelineId);
        }
        const json* timing = entry.contains("clip") ? find(refIn(entry, "timing")) : nullptr;
        const bool isPlaced = !entry.contains("clip") || (timing && !lacksFields(*timing, placeFields));
        if (isPlaced && timeline && classOf(*timeline) == timelineClassName &&
            classOf(*clip) == clipClassName)
            listIn(timelineId, list).push_back(std::move(entry));
        else
            ++m_report.entriesDropped;
    }
    const ObjectId collection = m_document.looseItems.empty() ? 0 : firstOf(collectionClassName);
    for (json& item : m_document.looseItems) {
        if (collection != 0)
            listIn(collection, "items").push_back(std::move(item));
        else
            ++m_report.entriesDropped;
    }
}

std::vector<RecoveredClip> JsonSalvage::mentionedClips() const {
    std::vector<RecoveredClip> clips = m_document.damagedClips;
    const auto mention = [&](const json& value) {
        if (const ObjectId id = linkTarget(value); id != 0)
            clips.push_back({id, {}});
    };
    for (const auto& [id, object] : m_document.objects) {
        if (classOf(object) == clipClassName)
            clips.push_back({id, textIn(object, "name")});
        if (classOf(object) != timelineClassName)
            continue;
        for (const json& entry : member(object, "clips"))
            mention(member(entry, "clip"));
        for (const json& entry : member(object, "links"))
            mention(member(entry, "slave"));
        for (const json& entry : member(object, "transitions")) {
            mention(member(entry, "clipFrom"));
            mention(member(entry, "clipTo"));
        }
    }
    return clips;
}

std::vector<SalvagedClip> JsonSalvage::clips() const {
    std::vector<SalvagedClip> result;
    for (const auto& [id, object] : m_document.objects) {
        if (classOf(object) == clipClassName)
            result.push_back({id, textIn(object, "name"), numberIn(object, "type"), refIn(object, "timeline"),
                              refIn(object, "nestedTimeline"),
                              clampedTime(numberIn(object, "sourceDuration")),
                              m_document.closed.count(id) == 0});
    }
    return result;
}

std::vector<SalvagedTimeline> JsonSalvage::timelines() const {
    std::vector<SalvagedTimeline> result;
    for (const auto& [id, object] : m_document.objects) {
        if (classOf(object) != timelineClassName)
            continue;
        SalvagedTimeline timeline{id, m_document.closed.count(id) == 0, textIn(object, "name"), {}, {}};
        for (const json& entry : member(object, "clips")) {
            const json* timing = find(refIn(entry, "timing"));
            if (timing)
                timeline.entries.push_back({refIn(entry, "clip"),
                                            {refIn(*timing, "track"), numberIn(*timing, "trackLevel"),
                                             clampedTime(numberIn(*timing, "timestamp")),
                                             clampedTime(numberIn(*timing, "duration"))}});
        }
        for (const json& track : member(object, "tracks"))
            timeline.tracks.push_back(linkTarget(track));
        result.push_back(std::move(timeline));
    }
    return result;
}

std::vector<SalvagedTrack> JsonSalvage::tracks() const {
    std::vector<SalvagedTrack> result;
    for (const auto& [id, object] : m_document.objects) {
        if (classOf(object) == trackClassName)
            result.push_back({id, numberIn(object, "type"), refIn(object, "timeline")});
    }
    return result;
}

ObjectId JsonSalvage::mainTimeline() const {
    const json* root = find(rootId());
    const json* content = root ? find(refIn(*root, "content")) : nullptr;
    return content ? refIn(*content, "timeline") : 0;
}

ObjectId JsonSalvage::makeTimeline(ObjectId id) {
    const ObjectId made = make(timelineClassName, id);
    complete(at(made), timelineFields);
    return made;
}

ObjectId JsonSalvage::makeTrack(ObjectId id, long long type, ObjectId timeline) {
    const ObjectId made = make(trackClassName, id);
    json& track = at(made);
    complete(track, trackFields);
    track["type"] = type;
    track["timeline"] = linkTo(timeline);
    return made;
}

ObjectId JsonSalvage::makeScene(ObjectId nested, ObjectId timeline, const std::string& name) {
    const ObjectId id = make(clipClassName, 0);
    at(id)["name"] = name;
    at(id)["nestedTimeline"] = linkTo(nested);
    completeScene(id, timeline);
    return id;
}

/// The fields are those of another clip, but for references and entries.
void JsonSalvage::completeScene(ObjectId id, ObjectId timeline) {
    const auto model =
        std::find_if(m_document.objects.begin(), m_document.objects.end(), [&](const auto& object) {
            return classOf(object.second) == clipClassName && m_document.closed.count(object.first) == 0;
        });
    json fields = model == m_document.objects.end() ? json::object() : model->second;
    fields["type"] = sceneClip;
    fields["timeline"] = linkTo(timeline);
    for (const auto& field : at(id).items())
        fields.erase(field.key());
    for (auto& field : fields.items()) {
        json& value = field.value();
        const json* target = find(linkTarget(value));
        if (target && classOf(*target) == itemInfoClassName) {
            json copy = *target;
            copy.erase(MetaDetails::s_meta);
            const ObjectId info = make(itemInfoClassName, 0);
            --m_report.objectsMade; // it is a part of the clip
            at(info).update(copy);
            value = linkTo(info);
        } else if (value.is_structured() && field.key() != "timeline") {
            value = value.is_array() ? json::array() : json();
        }
    }
    at(id).update(fields);
}

void JsonSalvage::listTrack(ObjectId timeline, ObjectId track) {
    listIn(timeline, "tracks").push_back(linkTo(track));
}

void JsonSalvage::listClip(ObjectId timeline, ObjectId clip, const ClipPlace& place) {
    const ObjectId id = make(timingClassName, 0);
    --m_report.objectsMade; // it is a part of the entry
    json& timing = at(id);
    complete(timing, timingFields);
    timing["track"] = linkTo(place.track);
    if (timing.contains("trackLevel"))
        timing["trackLevel"] = place.level;
    timing["timestamp"] = place.timestamp;
    timing["sourceDuration"] = place.duration;
    timing["duration"] = place.duration;
    listIn(timeline, "clips").push_back({{"clip", linkTo(clip)}, {"timing", linkTo(id)}});
}

void JsonSalvage::moveClip(ObjectId, ObjectId clip, ObjectId track) {
    if (m_timings.empty()) {
        for (const auto& [id, object] : m_document.objects) {
            if (classOf(object) != timelineClassName)
                continue;
            for (const json& entry : member(object, "clips"))
                m_timings.emplace(refIn(entry, "clip"), refIn(entry, "timing"));
        }
    }
    const auto timing = m_timings.find(clip);
    if (timing != m_timings.end() && find(timing->second))
        at(timing->second)["track"] = linkTo(track);
}

void JsonSalvage::setMainTimeline(ObjectId timeline) {
    const json* root = find(rootId());
    ObjectId rootObject =
        root && classOf(*root) == persistentClassName ? rootId() : firstOf(persistentClassName);
    if (rootObject == 0)
        rootObject = make(persistentClassName, 0);
    m_document.envelope["data"] = linkTo(rootObject);
    ObjectId content = refIn(at(rootObject), "content");
    if (content == 0 || !find(content)) {
        content = firstOf(contentClassName);
        content = content == 0 ? make(contentClassName, 0) : content;
        at(rootObject)["content"] = linkTo(content);
    }
    const ObjectId table = refIn(at(rootObject), "resourceTable");
    if (table == 0 || !find(table)) {
        const ObjectId other = firstOf(tableClassName);
        const ObjectId made = other == 0 ? make(tableClassName, 0) : other;
        complete(at(made), tableFields);
        at(rootObject)["resourceTable"] = linkTo(made);
    }
    complete(at(content), contentFields);
    at(content)["timeline"] = linkTo(timeline);
    const ObjectId collection = refIn(at(content), "userCollection");
    if (collection == 0 || !find(collection))
        at(content)["userCollection"] = linkTo(firstOf(collectionClassName));
}

void JsonSalvage::mendReferences() {
    for (auto& [id, object] : m_document.objects)
        clearIn(object);
}

bool JsonSalvage::hasLostReference(const json& value) const {
    std::vector<const json*> open = {&value};
    while (!open.empty()) {
        const json& part = *open.back();
        open.pop_back();
        if (const ObjectId id = linkTarget(part); id != 0) {
            if (!find(id))
                return true;
        } else if (part.is_structured()) {
            for (const json& inner : part)
                open.push_back(&inner);
        }
    }
    return false;
}

/// A field that refers to a lost object becomes null. An entry of a list that does so is removed.
void JsonSalvage::clearIn(json& object) {
    std::vector<json*> open = {&object};
    while (!open.empty()) {
        json& value = *open.back();
        open.pop_back();
        if (value.is_array()) {
            auto& list = value.get_ref<json::array_t&>();
            m_report.entriesDropped +=
                std::erase_if(list, [this](const json& entry) { return hasLostReference(entry); });
            continue;
        }
        for (json& part : value) {
            const ObjectId id = linkTarget(part);
            if (id != 0 && !find(id)) {
                part = nullptr;
                ++m_report.referencesCleared;
            } else if (id == 0 && part.is_structured()) {
                open.push_back(&part);
            }
        }
    }
}

QByteArray JsonSalvage::write() {
    FlatDocument flat;
    flat.root = rootId();
    flat.flat.objects = std::move(m_document.objects);
    json envelope = std::move(m_document.envelope);
    std::size_t leftOut = 0;
    envelope["data"] = nest(std::move(flat), leftOut);
    envelope["schemaVersion"] = m_version;
    envelope["version"] = "1.0";
    return writeJson(envelope) + '\n';
}

} // namespace Reader
