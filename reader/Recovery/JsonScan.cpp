#include "Recovery/JsonScan.h"

#include "Reader/Flatten.h"
#include "Reader/WideNumbers.h"
#include "Recovery/Fields.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>
#include <string_view>
#include <utility>

using nlohmann::json;
using Serialize::Json::MetaDetails;

namespace Reader {
namespace {

constexpr std::string_view whiteSpace = " \t\r\n";
constexpr std::string_view scalarEnd(" \t\r\n,:{}[]\"\0", 12); // with the NUL

/// The key of a member whose own key is lost.
const std::string lostKey = "\x01";

/// Ids of objects whose own ids are used already, or may be, begin here; they are replaced in the end.
constexpr ObjectId firstTemporaryId = ObjectId(1) << 62;

/// How far the text behind a loss is looked at to find out whether a string is open there.
constexpr std::size_t lookAhead = 256;
constexpr int mostTokens = 12;

json linkTo(ObjectId id) {
    return {{MetaDetails::s_meta_reference, id}};
}

std::string classOf(const json& value) {
    const std::string* name = isClassObject(value) ? Serialize::Json::classNameOf(value) : nullptr;
    return name ? *name : std::string();
}

bool hasKeysOf(const json& members, std::initializer_list<std::string_view> keys) {
    return !members.empty() &&
           std::all_of(members.items().begin(), members.items().end(), [&](const auto& member) {
               return std::find(keys.begin(), keys.end(), member.key()) != keys.end();
           });
}

/// Whether objects of the class are closed where they are damaged.
bool leadsToClips(std::string_view className) {
    return !fieldsOf(className).empty() || className == persistentClassName;
}

/// The class of an object that has lost its start, by the members behind it; empty for any that is not closed.
std::string classByMembers(const json& members) {
    constexpr std::array<const char*, 5> lists = {"clips", "links", "tracks", "transitions", "trackingLinks"};
    const bool hasList =
        std::any_of(lists.begin(), lists.end(), [&](const char* key) { return members.contains(key); });
    if (hasList && hasKeysOf(members, {"clips", "links", "tracks", "transitions", "trackingLinks", "name",
                                       "frameRate", "width", "height"}))
        return std::string(timelineClassName);
    if (hasKeysOf(members, {"timeline", "userCollection", "portable"}) &&
        (members.contains("timeline") || members.contains("userCollection")))
        return std::string(contentClassName);
    if (hasKeysOf(members, {"content", "resourceTable"}))
        return std::string(persistentClassName);
    if (hasKeysOf(members, {"items"}))
        return std::string(collectionClassName);
    return {};
}

bool isEnvelope(const json& members) {
    return hasKeysOf(members, {"data", "schemaVersion", "version"}) &&
           (members.contains("version") || members.contains("schemaVersion"));
}

/// Values are copied and written with a stack frame for each level. No project is nested that deeply. No value reaches
/// across a loss, so the levels are those behind the last one.
constexpr std::size_t mostLevels = 1000;

class JsonScan {
public:
    JsonScan(DamagedText& source, RecoveryReport& report)
        : m_source(source), m_text(source.text()), m_report(report) {}

    ScannedJson run();

private:
    enum class Kind { Object, Array, Rest }; ///< a rest is what is left of either, behind a loss
    struct Frame {
        Kind kind;
        json value{};    ///< members or entries; of a rest its members
        json entries{};  ///< of a rest
        std::string key; ///< of the member that is being read; empty for none
        bool needsComma = false;
        std::size_t levels = 0; ///< of values, with this one; a rest is none
    };

    void readNext();
    void readString();
    void readScalar();
    void open(Kind kind);
    void close(Kind kind);
    void closeRest(Kind kind);
    void add(json value);
    json flattened(json value, bool isCut);
    void beginDocument();

    void lose(Damage damage, std::size_t position, std::size_t length);
    std::size_t resume(std::size_t position) const;
    bool isStructure(std::size_t position) const;
    std::size_t stringEnd(std::size_t start, std::size_t limit) const;

    void forgetContainers();
    void attach(const json& members);
    void attachEntries(json& entries);
    void closeCut(Frame frame);
    void closeCutClip(json value);
    void noteFacts(const json& object, bool isWhole);
    void finishDocument();
    std::string placeNow() const;

    DamagedText& m_source;
    std::string_view m_text;
    RecoveryReport& m_report;
    std::size_t m_position = 0;
    ScannedJson m_document;
    ScannedJson m_best;
    std::size_t m_documents = 0;
    std::vector<Frame> m_frames;
    /// The places of the frames that are closed where they are damaged, and whose ends were not seen.
    std::vector<std::size_t> m_containers;
    bool m_isEnded = false;
    bool m_isTooDeep = false;
    ObjectId m_temporaryId = firstTemporaryId;
    std::map<ObjectId, ObjectId> m_wantedIds; ///< by temporary id, those that base class parts had
    std::unordered_set<ObjectId> m_ids;
};

ScannedJson JsonScan::run() {
    while (!m_isTooDeep) {
        m_position = std::min(m_text.find_first_not_of(whiteSpace, m_position), m_text.size());
        if (m_position == m_text.size())
            break;
        if (m_text[m_position] == '\0') {
            const std::size_t start = m_position;
            m_position = std::min(m_text.find_first_not_of('\0', start), m_text.size());
            const std::size_t length = m_position - start;
            lose(Damage::LostBytes, start, length);
        } else {
            readNext();
        }
    }
    if (m_isTooDeep)
        return {};
    if (!m_frames.empty() && (m_frames.back().kind != Kind::Rest || !m_frames.back().value.empty() ||
                              !m_frames.back().entries.empty()))
        lose(Damage::CutOff, m_text.size(), 0);
    finishDocument();
    if (m_documents > 1)
        m_source.report(m_report, Damage::SeveralDocuments, 0,
                        "The file has " + std::to_string(m_documents) +
                            " copies of a project; the one with the most whole clips was taken.");
    return std::move(m_best);
}

void JsonScan::readNext() {
    const char c = m_text[m_position];
    if (m_isEnded && m_frames.empty() && c != '{') {
        // Behind the document.
        m_position = std::min(m_text.find_first_of(std::string_view("{\0", 2), m_position), m_text.size());
        return;
    }
    switch (c) {
    case '{':
        open(Kind::Object);
        return;
    case '[':
        open(Kind::Array);
        return;
    case '}':
        close(Kind::Object);
        return;
    case ']':
        close(Kind::Array);
        return;
    case ',':
        if (m_frames.empty() || (!m_frames.back().needsComma && m_frames.back().kind != Kind::Rest))
            return lose(Damage::BrokenMarkup, m_position, 1);
        m_frames.back().needsComma = false;
        ++m_position;
        return;
    case ':':
        // Only behind a key that is lost.
        if (m_frames.empty() || m_frames.back().kind != Kind::Rest || !m_frames.back().key.empty())
            return lose(Damage::BrokenMarkup, m_position, 1);
        m_frames.back().key = lostKey;
        m_frames.back().needsComma = false;
        ++m_position;
        return;
    case '"':
        readString();
        return;
    default:
        readScalar();
    }
}

/// The position of the quote that ends the string, from behind the one that starts it. No position where the string is
/// not whole.
std::size_t JsonScan::stringEnd(std::size_t start, std::size_t limit) const {
    std::size_t position = start;
    while (true) {
        position = m_text.find_first_of(std::string_view("\"\\\0", 3), position);
        if (position == std::string_view::npos || position >= limit || m_text[position] == '\0')
            return std::string_view::npos;
        if (m_text[position] == '"')
            return position;
        position += 2;
    }
}

void JsonScan::readString() {
    const std::size_t start = m_position;
    const std::size_t end = stringEnd(start + 1, m_text.size());
    if (end == std::string_view::npos) {
        const std::size_t stop = std::min(m_text.find('\0', start), m_text.size());
        if (stop == m_text.size()) {
            m_position = stop; // the text was cut off
            return;
        }
        m_position = std::min(m_text.find_first_not_of('\0', stop), m_text.size());
        return lose(Damage::LostBytes, stop, m_position - stop);
    }
    std::string token(m_text.substr(start, end + 1 - start));
    for (const auto& [raw, escape] :
         {std::pair("\t", "\\t"), std::pair("\n", "\\n"), std::pair("\r", "\\r")}) {
        for (std::size_t place = token.find(raw); place != std::string::npos;
             place = token.find(raw, place + 2))
            token.replace(place, 1, escape);
    }
    json text = json::parse(token, nullptr, false);
    if (!text.is_string())
        return lose(Damage::BrokenMarkup, start, end + 1 - start);
    const std::size_t next = std::min(m_text.find_first_not_of(whiteSpace, end + 1), m_text.size());
    const bool isKey = next < m_text.size() && m_text[next] == ':';
    if (!isKey) {
        m_position = end + 1;
        return add(std::move(text));
    }
    const bool fits = !m_frames.empty() && m_frames.back().kind != Kind::Array &&
                      m_frames.back().key.empty() && !m_frames.back().needsComma;
    if (!fits)
        return lose(Damage::BrokenMarkup, start, next + 1 - start);
    m_frames.back().key = std::move(text.get_ref<std::string&>());
    if (m_frames.back().key.empty())
        m_frames.back().key = lostKey;
    m_position = next + 1;
}

void JsonScan::readScalar() {
    const std::size_t start = m_position;
    const std::size_t end = std::min(m_text.find_first_of(scalarEnd, start), m_text.size());
    m_position = end;
    if (end == m_text.size() || m_text[end] == '\0')
        return; // a part of it is lost, as will be seen
    const std::string token(m_text.substr(start, end - start));
    const json value = json::parse(token, nullptr, false);
    if (value.is_discarded())
        return lose(Damage::BrokenMarkup, start, end - start);
    const bool isWhole = value.is_number_float() && token.find_first_of(".eE") == std::string::npos;
    add(isWhole ? wideNumber(token) : value);
}

void JsonScan::open(Kind kind) {
    if (m_frames.empty() && m_isEnded)
        finishDocument();
    if (!m_frames.empty()) {
        const Frame& frame = m_frames.back();
        const bool isOutOfPlace = frame.needsComma || (frame.kind == Kind::Object && frame.key.empty());
        if (isOutOfPlace) {
            lose(Damage::BrokenMarkup, m_position, 0);
            return;
        }
    }
    const std::size_t levels = m_frames.empty() ? 0 : m_frames.back().levels;
    if (levels == mostLevels) {
        m_isTooDeep = true;
        m_position = m_text.size();
        return;
    }
    m_frames.push_back(
        {kind, kind == Kind::Array ? json::array() : json::object(), {}, {}, false, levels + 1});
    ++m_position;
}

void JsonScan::close(Kind kind) {
    if (m_frames.empty())
        return lose(Damage::BrokenMarkup, m_position, 1);
    if (m_frames.back().kind == Kind::Rest)
        return closeRest(kind);
    if (m_frames.back().kind != kind || !m_frames.back().key.empty())
        return lose(Damage::BrokenMarkup, m_position, 1);
    Frame frame = std::move(m_frames.back());
    m_frames.pop_back();
    forgetContainers();
    ++m_position;
    if (m_frames.empty()) {
        if (frame.value.is_object())
            m_document.envelope = std::move(frame.value);
        m_isEnded = true;
        return;
    }
    add(kind == Kind::Object ? flattened(std::move(frame.value), false) : std::move(frame.value));
}

/// The end of an object or a list that has lost its start. What follows is what is left of its parent.
void JsonScan::closeRest(Kind kind) {
    Frame frame = std::move(m_frames.back());
    m_frames.pop_back();
    ++m_position;
    if (kind == Kind::Array)
        attachEntries(frame.entries);
    else
        attach(frame.value);
    if (kind == Kind::Object && isEnvelope(frame.value)) {
        finishDocument();
        m_isEnded = true;
        return;
    }
    m_frames.push_back({Kind::Rest, json::object(), json::array(), {}, true});
}

/// Adds a value to the innermost frame.
void JsonScan::add(json value) {
    if (m_frames.empty())
        return lose(Damage::BrokenMarkup, m_position, 0);
    Frame& frame = m_frames.back();
    if (frame.needsComma || (frame.kind == Kind::Object && frame.key.empty()))
        return lose(Damage::BrokenMarkup, m_position, 0);
    frame.needsComma = true;
    if (frame.kind == Kind::Array)
        frame.value.push_back(std::move(value));
    else if (frame.kind == Kind::Rest && frame.key.empty())
        frame.entries.push_back(std::move(value));
    else if (frame.key != lostKey)
        frame.value[frame.key] = std::move(value);
    const bool isMeta = frame.key == MetaDetails::s_meta;
    frame.key.clear();
    if (isMeta && classOf(frame.value) == persistentClassName && m_frames.size() > 1)
        beginDocument();
    if (isMeta && leadsToClips(classOf(m_frames.back().value)))
        m_containers.push_back(m_frames.size() - 1);
}

/// The innermost frame is the root object of a project. Where it is not in an envelope, another document begins.
void JsonScan::beginDocument() {
    const Frame& parent = m_frames[m_frames.size() - 2];
    const bool isInEnvelope = parent.kind == Kind::Object && parent.key == "data" && parent.value.empty();
    if (m_frames.size() == 2 && isInEnvelope)
        return;
    Frame root = std::move(m_frames.back());
    m_frames.pop_back();
    if (isInEnvelope)
        m_frames.pop_back();
    if (m_document.hasObjects)
        m_source.report(m_report, Damage::CutOff, m_position,
                        "Another project begins here, " + placeNow() + '.');
    m_document.isDamaged = true;
    finishDocument();
    m_document.isDamaged = !isInEnvelope;
    m_frames.push_back({Kind::Object, json::object(), {}, "data", false, 1});
    root.levels = 2;
    m_frames.push_back(std::move(root));
}

void JsonScan::forgetContainers() {
    while (!m_containers.empty() && m_containers.back() >= m_frames.size())
        m_containers.pop_back();
}

/// Puts a class object into the flat document and gives the link to it; other values stay.
json JsonScan::flattened(json value, bool isCut) {
    if (!isClassObject(value))
        return value;
    m_document.hasObjects = true;
    const std::string className = classOf(value);
    noteFacts(value, !isCut);
    const bool isBasePart = !m_frames.empty() && m_frames.back().key == className && !className.empty();
    const ObjectId own = Serialize::Json::getObjectId(value).value_or(0);
    const bool isTaken = own == 0 || own >= firstTemporaryId || isBasePart || !m_ids.insert(own).second;
    const ObjectId id = isTaken ? m_temporaryId++ : own;
    if (isTaken)
        value[MetaDetails::s_meta][MetaDetails::s_object_id] = id;
    if (isBasePart && own < firstTemporaryId)
        m_wantedIds.emplace(id, own);
    if (!isCut) {
        ++m_document.wholeObjects;
        m_document.wholeClips += className == clipClassName ? 1 : 0;
    } else {
        m_document.closed.insert(id);
    }
    m_document.objects.emplace(id, std::move(value));
    return linkTo(id);
}

void JsonScan::noteFacts(const json& object, bool isWhole) {
    const std::string className = classOf(object);
    if (!VersionFacts::knows(className))
        return;
    m_document.facts.addObject(className, isWhole);
    for (const auto& member : object.items())
        m_document.facts.addField(className, member.key());
    const auto type = object.find("type");
    if (className == trackClassName && type != object.end() && type->is_number_integer())
        m_document.facts.addTrackType(type->get<long long>());
}

// Losses

/// Something is lost here: all that is open has lost it. The position moves to where the text goes on.
void JsonScan::lose(Damage damage, std::size_t position, std::size_t length) {
    if (damage == Damage::CutOff)
        m_source.report(m_report, damage, position, "The file ends " + placeNow() + ": it was cut off.");
    else if (damage == Damage::LostBytes)
        m_source.report(m_report, damage, position,
                        std::to_string(length) + " bytes are lost " + placeNow() + '.');
    else
        m_source.report(m_report, damage, position, "Here is something that is no JSON, " + placeNow() + '.');
    if (m_frames.empty() && m_isEnded) {
        m_position = std::max(m_position, position + length);
        return;
    }
    m_document.isDamaged = true;
    m_frames.push_back({Kind::Rest, json::object(), json::array(), {}});
    m_position = resume(std::max(m_position, position + length));
    m_frames.back().needsComma = false;
}

/// The position from `position` on where no string is open and no part of a value is left.
std::size_t JsonScan::resume(std::size_t position) const {
    while (position < m_text.size() && m_text[position] != '\0' && !isStructure(position)) {
        // In a string: behind its end. A NUL is the next loss.
        const std::size_t end = m_text.find_first_of(std::string_view("\"\0", 2), position);
        if (end == std::string_view::npos)
            return m_text.size();
        if (m_text[end] == '\0')
            return end;
        position = end + 1;
    }
    if (position < m_text.size() && scalarEnd.find(m_text[position]) == std::string_view::npos)
        position = std::min(m_text.find_first_of(scalarEnd, position), m_text.size());
    return position;
}

/// Whether the text from a position on can be structure, rather than the inside of a string.
bool JsonScan::isStructure(std::size_t position) const {
    const std::size_t limit = std::min(position + lookAhead, m_text.size());
    const std::size_t first = position;
    bool isAfterValue = true; // a comma or an end may come first
    bool isFirst = true;
    for (int tokens = 0; tokens < mostTokens; ++tokens) {
        position = std::min(m_text.find_first_not_of(whiteSpace, position), m_text.size());
        if (position >= limit || m_text[position] == '\0')
            return true;
        const char c = m_text[position];
        if (c == '"') {
            if (isAfterValue && !isFirst)
                return false;
            const std::size_t end = stringEnd(position + 1, limit);
            if (end == std::string_view::npos)
                return true;
            position = end + 1;
            isAfterValue = true;
        } else if (c == ',' || c == ':') {
            if (!isAfterValue)
                return false;
            isAfterValue = false;
            ++position;
        } else if (c == '{' || c == '[') {
            if (isAfterValue && !isFirst)
                return false;
            isAfterValue = false;
            ++position;
            const std::size_t next = std::min(m_text.find_first_not_of(whiteSpace, position), m_text.size());
            if (next < m_text.size() && (m_text[next] == '}' || m_text[next] == ']')) {
                isAfterValue = true;
                position = next + 1;
            }
        } else if (c == '}' || c == ']') {
            if (!isAfterValue)
                return false;
            ++position;
        } else {
            const std::size_t end = std::min(m_text.find_first_of(scalarEnd, position), limit);
            const std::string token(m_text.substr(position, end - position));
            const bool isRest = position == first; // the rest of a value
            const bool isNumberRest = token.find_first_not_of("0123456789+-.eE") == std::string::npos;
            const auto endsWord = [&](std::string_view word) { return word.ends_with(token); };
            const bool isWordRest = endsWord("true") || endsWord("false") || endsWord("null");
            const bool isWhole = end == limit || !json::parse(token, nullptr, false).is_discarded();
            if ((isAfterValue && !isFirst) || !(isRest ? isNumberRest || isWordRest : isWhole))
                return false;
            position = end;
            isAfterValue = true;
        }
        isFirst = false;
    }
    return true;
}

std::string JsonScan::placeNow() const {
    if (m_report.findings.size() >= RecoveryReport::mostFindings)
        return {}; // it is not listed
    if (m_frames.empty())
        return m_isEnded ? "behind the project" : "before the project";
    for (auto frame = m_frames.rbegin(); frame != m_frames.rend(); ++frame) {
        const std::string className = classOf(frame->value);
        if (className.empty() || frame->kind == Kind::Rest)
            continue;
        const auto id = Serialize::Json::getObjectId(frame->value);
        return "inside of the " + className + (id ? ' ' + std::to_string(*id) : "");
    }
    return "inside of the document";
}

/// Gives members that have lost their object to it.
void JsonScan::attach(const json& members) {
    if (isEnvelope(members)) {
        m_document.envelope.update(members);
        return;
    }
    const std::string className = classByMembers(members);
    if (className.empty())
        return;
    forgetContainers();
    constexpr std::size_t mostTried = 16;
    const auto last =
        m_containers.rbegin() + static_cast<std::ptrdiff_t>(std::min(mostTried, m_containers.size()));
    const auto place = std::find_if(m_containers.rbegin(), last, [&](std::size_t candidate) {
        return classOf(m_frames[candidate].value) == className;
    });
    Frame* frame = place == last ? nullptr : &m_frames[*place];
    json& target = frame ? frame->value : m_document.looseMembers[className];
    for (const auto& member : members.items()) {
        if (!target.contains(member.key()) && (!frame || frame->key != member.key()))
            target[member.key()] = member.value();
    }
    if (frame) // it ends here, and all inside of it has ended before
        m_containers.erase(std::prev(place.base()), m_containers.end());
}

/// Keeps the entries of a list that has lost its start, where they say themselves what they are.
void JsonScan::attachEntries(json& entries) {
    for (json& entry : entries) {
        const bool isClip = entry.is_object() && entry.contains("clip") && entry.contains("timing");
        const bool isTransition = entry.is_object() && entry.contains("transition");
        const bool isLink = entry.is_object() && entry.contains("slave");
        const auto object = m_document.objects.find(linkTarget(entry));
        if (isClip || isTransition || isLink)
            m_document.looseEntries.push_back(std::move(entry));
        else if (object != m_document.objects.end() && classOf(object->second) == "Collection::Item")
            m_document.looseItems.push_back(std::move(entry));
    }
}

/// Keeps or drops what is left of an object or a list that is not whole.
void JsonScan::closeCut(Frame frame) {
    if (frame.kind == Kind::Rest) {
        attach(frame.value);
        attachEntries(frame.entries);
        return;
    }
    const auto give = [this](json value) {
        Frame& parent = m_frames.back();
        if (parent.kind == Kind::Array)
            parent.value.push_back(std::move(value));
        else if (parent.kind == Kind::Rest && parent.key.empty())
            parent.entries.push_back(std::move(value));
        else if (!parent.key.empty() && parent.key != lostKey)
            parent.value[parent.key] = std::move(value);
        parent.key.clear();
    };
    if (m_frames.empty()) {
        if (frame.kind == Kind::Object)
            m_document.envelope.update(frame.value);
        return;
    }
    if (frame.kind == Kind::Array)
        return give(std::move(frame.value));
    const std::string className = classOf(frame.value);
    const auto has = [&](const char* key) { return frame.value.contains(key); };
    if (leadsToClips(className) && Serialize::Json::getObjectId(frame.value).value_or(0) != 0)
        return give(flattened(std::move(frame.value), true));
    if (className == clipClassName)
        return closeCutClip(std::move(frame.value));
    if (className == timingClassName && has("timestamp") && has("duration") && has("track"))
        return give(flattened(std::move(frame.value), true));
    if (className.empty() && has("clip") && has("timing"))
        return give(std::move(frame.value));
    if (!className.empty()) {
        noteFacts(frame.value, false);
        ++m_document.droppedObjects;
    }
}

/// A damaged clip is kept where it shows a timeline.
void JsonScan::closeCutClip(json value) {
    const auto name = value.find("name");
    m_document.damagedClips.push_back(
        {Serialize::Json::getObjectId(value).value_or(0),
         name != value.end() && name->is_string() ? name->get<std::string>() : std::string()});
    const auto nested = value.find("nestedTimeline");
    if (nested != value.end() && linkTarget(*nested) != 0 &&
        Serialize::Json::getObjectId(value).value_or(0) != 0 && !m_frames.empty() &&
        !m_frames.back().key.empty()) {
        const json link = flattened(std::move(value), true);
        m_frames.back().value[m_frames.back().key] = link;
        m_frames.back().key.clear();
        return;
    }
    noteFacts(value, false);
    ++m_document.droppedObjects;
}

/// Gives temporary ids their final values.
class Renumbering {
public:
    Renumbering(ScannedJson& document, const std::map<ObjectId, ObjectId>& wanted)
        : m_document(document), m_wanted(wanted) {}

    void run();

private:
    void renumber(json& value);

    ScannedJson& m_document;
    const std::map<ObjectId, ObjectId>& m_wanted;
    std::unordered_map<ObjectId, ObjectId> m_ids;
};

void Renumbering::run() {
    auto& objects = m_document.objects;
    ObjectId greatest = 0;
    for (const auto& [id, object] : objects)
        greatest = id < firstTemporaryId ? std::max(greatest, id) : greatest;
    for (const auto& [temporary, id] : m_wanted)
        greatest = std::max(greatest, id);
    std::unordered_set<ObjectId> taken;
    for (auto object = objects.lower_bound(firstTemporaryId); object != objects.end(); ++object) {
        const auto wanted = m_wanted.find(object->first);
        const bool isFree = wanted != m_wanted.end() && wanted->second != 0 &&
                            !objects.count(wanted->second) && taken.insert(wanted->second).second;
        m_ids.emplace(object->first, isFree ? wanted->second : ++greatest);
    }
    if (m_ids.empty())
        return;
    std::map<ObjectId, json> renumbered;
    for (auto& [id, object] : objects) {
        const auto other = m_ids.find(id);
        const ObjectId now = other == m_ids.end() ? id : other->second;
        object[MetaDetails::s_meta][MetaDetails::s_object_id] = now;
        renumber(object);
        renumbered.emplace(now, std::move(object));
    }
    objects = std::move(renumbered);
    std::unordered_set<ObjectId> closed;
    for (const ObjectId id : m_document.closed)
        closed.insert(m_ids.count(id) ? m_ids.at(id) : id);
    m_document.closed = std::move(closed);
    for (std::vector<json>* list : {&m_document.looseEntries, &m_document.looseItems}) {
        for (json& entry : *list)
            renumber(entry);
    }
    for (auto& [className, members] : m_document.looseMembers)
        renumber(members);
    renumber(m_document.envelope);
}

void Renumbering::renumber(json& top) {
    std::vector<json*> open = {&top};
    while (!open.empty()) {
        json& value = *open.back();
        open.pop_back();
        if (const auto other = m_ids.find(linkTarget(value)); other != m_ids.end()) {
            value = linkTo(other->second);
            continue;
        }
        if (value.is_structured()) {
            for (json& member : value)
                open.push_back(&member);
        }
    }
}

/// Keeps the document if it is the best so far, and begins another.
void JsonScan::finishDocument() {
    while (!m_frames.empty()) {
        Frame frame = std::move(m_frames.back());
        m_frames.pop_back();
        closeCut(std::move(frame));
    }
    const bool isEmpty = !m_document.hasObjects && m_document.envelope.empty();
    if (!isEmpty) {
        ++m_documents;
        Renumbering(m_document, m_wantedIds).run();
        const auto worth = [](const ScannedJson& document) {
            return std::tuple(document.wholeClips, document.wholeObjects, document.hasObjects);
        };
        if (m_documents == 1 || worth(m_document) >= worth(m_best))
            m_best = std::move(m_document);
    }
    m_document = {};
    m_wantedIds.clear();
    m_ids.clear();
    m_temporaryId = firstTemporaryId;
    m_containers.clear();
    m_isEnded = false;
}

} // namespace

ScannedJson scanJson(DamagedText& text, RecoveryReport& report) {
    return JsonScan(text, report).run();
}

} // namespace Reader
