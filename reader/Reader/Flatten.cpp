#include "Reader/Flatten.h"

#include "Archive/Internal/FlatObjects.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <optional>
#include <stdexcept>
#include <unordered_map>
#include <utility>

using nlohmann::json;
using Serialize::Json::MetaDetails;

namespace Reader {
namespace {

/// A position in a walk through nested values: a container and the next member to visit.
struct Place {
    json* container;
    json::iterator next;
};

json makeLink(unsigned long long id) {
    json link = json::object();
    link[MetaDetails::s_meta_reference] = id;
    return link;
}

void setId(json& object, unsigned long long id) {
    object[MetaDetails::s_meta][MetaDetails::s_object_id] = id;
}

/// Calls `visit` for a value and all values in it, depth-first, except those under "@meta". Not recursive.
template <class Visit>
void walk(json& root, Visit visit) {
    std::vector<Place> places;
    const auto enter = [&](json& value) {
        visit(value);
        if (value.is_structured())
            places.push_back({&value, value.begin()});
    };
    enter(root);
    while (!places.empty()) {
        Place& place = places.back();
        if (place.next == place.container->end()) {
            places.pop_back();
            continue;
        }
        const json::iterator member = place.next++;
        if (!place.container->is_object() || member.key() != MetaDetails::s_meta)
            enter(*member);
    }
}

class Flattener {
public:
    Flattener(json root, FlattenNotes& notes) : m_root(std::move(root)), m_notes(notes) {}

    FlatDocument run();

private:
    struct Level {
        Place place;
        unsigned long long id;                     ///< of a class object, otherwise 0
        std::optional<WideNumbers::Place> parts{}; ///< where a number in it is wide

        /// The member that the walk is in.
        WideNumbers::Name member() const;
    };

    unsigned long long greatestId();
    void enter(json& value, const std::string* key);
    unsigned long long takeId(json& object, const std::string* key);
    unsigned long long freshId();
    void leave();
    void addLink(json& link, unsigned long long target);
    void keepDigits(json& number);

    json m_root;
    FlattenNotes& m_notes;
    std::optional<unsigned long long> m_greatest; ///< of all ids, once an object needs a new one
    std::vector<Level> m_levels;
    std::unordered_map<unsigned long long, bool> m_isBasePart; ///< by the ids found so far
    std::vector<json*>
        m_openLinks; ///< to ids without an own object so far; pointers stay valid when containers are moved
    FlatDocument m_result;
};

/// The greatest id of the objects and links that the document came with.
unsigned long long Flattener::greatestId() {
    unsigned long long greatest = 0;
    const auto look = [&](const json& value) {
        if (isClassObject(value))
            greatest = std::max(greatest, Serialize::Json::getObjectId(value).value_or(0));
        else
            greatest = std::max(greatest, linkTarget(value));
    };
    walk(m_root, look);
    for (auto& [id, object] : m_result.flat.objects)
        walk(object, look);
    return greatest;
}

FlatDocument Flattener::run() {
    enter(m_root, nullptr);
    m_result.root = m_levels.front().id;
    while (!m_levels.empty()) {
        Place& place = m_levels.back().place;
        if (place.next == place.container->end()) {
            leave();
            continue;
        }
        const json::iterator member = place.next++;
        if (!place.container->is_object())
            enter(*member, nullptr);
        else if (member.key() != MetaDetails::s_meta)
            enter(*member, &member.key());
    }
    for (json* link : std::exchange(m_openLinks, {}))
        addLink(*link, linkTarget(*link));
    std::sort(m_notes.duplicateIds.begin(), m_notes.duplicateIds.end());
    const auto last = std::unique(m_notes.duplicateIds.begin(), m_notes.duplicateIds.end());
    m_notes.duplicateIds.erase(last, m_notes.duplicateIds.end());
    return std::move(m_result);
}

WideNumbers::Name Flattener::Level::member() const {
    const auto member = std::prev(place.next);
    if (place.container->is_object())
        return member.key();
    return static_cast<std::size_t>(member - place.container->begin());
}

void Flattener::enter(json& value, const std::string* key) {
    if (digitsOf(value))
        return keepDigits(value);
    if (!value.is_structured())
        return;
    if (const unsigned long long target = linkTarget(value)) {
        addLink(value, target);
        return;
    }
    const unsigned long long id = isClassObject(value) ? takeId(value, key) : 0;
    m_levels.push_back({{&value, value.begin()}, id});
}

unsigned long long Flattener::takeId(json& object, const std::string* key) {
    const unsigned long long own = Serialize::Json::getObjectId(object).value_or(0);
    if (own == 0) {
        ++m_notes.missingIds;
        const unsigned long long id = freshId();
        setId(object, id);
        return id;
    }
    const std::string* className = Serialize::Json::classNameOf(object);
    const bool isBasePart = key && className && *key == *className;
    const auto [first, isFirst] = m_isBasePart.emplace(own, isBasePart);
    if (isFirst)
        return own;
    m_notes.duplicateIds.push_back(own);
    const unsigned long long id = freshId();
    setId(object, id);
    // A link refers to an object of its own rather than to a base class part.
    if (first->second && !isBasePart) {
        first->second = false;
        m_notes.redirected[own] = id;
    }
    return id;
}

unsigned long long Flattener::freshId() {
    if (!m_greatest)
        m_greatest = greatestId();
    if (*m_greatest == std::numeric_limits<unsigned long long>::max())
        throw std::length_error("no object id is left");
    return ++*m_greatest;
}

void Flattener::leave() {
    const Level level = m_levels.back();
    m_levels.pop_back();
    if (level.id == 0)
        return;
    json& value = *level.place.container;
    m_result.flat.objects.emplace(level.id, std::move(value));
    value = makeLink(level.id);
}

void Flattener::addLink(json& link, unsigned long long target) {
    if (const auto it = m_notes.redirected.find(target); it != m_notes.redirected.end()) {
        link = makeLink(it->second);
        return;
    }
    const auto owner = m_isBasePart.find(target);
    if (owner == m_isBasePart.end() || owner->second)
        m_openLinks.push_back(&link);
}

/// Places are added once for all numbers in them.
void Flattener::keepDigits(json& number) {
    WideNumbers& numbers = m_notes.wideNumbers;
    std::size_t first = m_levels.size() - 1;
    while (!m_levels[first].parts && m_levels[first].id == 0)
        --first; // the root is a class object
    if (!m_levels[first].parts)
        m_levels[first].parts = numbers.add(m_levels[first].id);
    for (std::size_t level = first + 1; level < m_levels.size(); ++level)
        m_levels[level].parts = numbers.add(*m_levels[level - 1].parts, m_levels[level - 1].member());
    numbers.keepDigits(numbers.add(*m_levels.back().parts, m_levels.back().member()), number);
}

/// Whether an entry of the flat document can be written as a class object.
bool isWritable(const json& entry) {
    const json* meta = Archive::Internal::metaOf(entry);
    return entry.is_object() && (!meta || meta->is_object());
}

} // namespace

json Nester::start() const {
    return makeLink(m_document.root);
}

void Nester::visit(json& value) {
    const unsigned long long target = linkTarget(value);
    const bool isEmbedded = target == 0 && isClassObject(value);
    if (target == 0 && !isEmbedded)
        return;
    const unsigned long long id = isEmbedded ? Serialize::Json::getObjectId(value).value_or(0) : target;
    const auto it = m_document.flat.objects.find(id);
    if (it == m_document.flat.objects.end())
        return; // a dangling link, or an embedded object without an entry
    if (m_written.count(id))
        value = makeLink(id);
    else if (isWritable(it->second))
        writeInFull(value, it->second, id);
    // Otherwise the entry is no object, and the link or the embedded object stays.
}

void Nester::writeInFull(json& place, json& entry, unsigned long long id) {
    m_written.insert(id);
    place = std::exchange(entry, json());
    setId(place, id); // links refer to the key in the flat document
}

bool isClassObject(const json& value) {
    const json* meta = Archive::Internal::metaOf(value);
    return meta && meta->is_object();
}

unsigned long long linkTarget(const json& value) {
    return value.is_object() && value.size() == 1 ? Serialize::Json::getReferenceObjectId(value).value_or(0)
                                                  : 0;
}

FlatDocument flatten(json root, FlattenNotes& notes) {
    return Flattener(std::move(root), notes).run();
}

json nest(FlatDocument document, std::size_t& leftOut) {
    Nester nester(std::move(document));
    json result = nester.start();
    walk(result, [&](json& value) { nester.visit(value); });
    leftOut = nester.leftOut();
    return result;
}

} // namespace Reader
