#include "Adaptors/Project/V69_RemoveQuizzesAdaptor.h"

#include "Adaptors/Project/Internal/QuizFiller.h"
#include "Archive/Internal/EntryFilter.h"
#include "Archive/Internal/FlatEditor.h"
#include "MTime/MTime.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <deque>
#include <stdexcept>
#include <unordered_set>
#include <utility>

using namespace Archive::Internal;
using nlohmann::json;
using Serialize::Json::FlatObject;
using Serialize::Json::getAnyObjectId;

namespace Project {
namespace {

constexpr int quizClipType = 32;
constexpr int quizTrackType = 96;
constexpr int fillerTrackType = 16;

unsigned long long targetOf(const json& reference) {
    const auto id = getAnyObjectId(reference);
    if (!id)
        throw std::out_of_range("invalid map<K, T> key");
    return *id;
}

std::int64_t timeOf(const json& timing, const char* key) {
    const json& value = memberOf(timing, key);
    const bool isBeyondTime = value.is_number_float() && !(std::abs(value.get<double>()) < 0x1p63);
    return isBeyondTime ? 0 : value.get<std::int64_t>();
}

/// A timeline in work: the entries of its clips are being read.
struct Level {
    Level(unsigned long long timelineId, json& timelineObject)
        : id(timelineId), timeline(timelineObject), clips(timelineObject, "clips") {}

    unsigned long long id;
    json& timeline;
    EntryFilter clips;
    MTime normalEnd;
    MTime quizEnd;
    std::unordered_set<unsigned long long> removedClips;
};

/// Removes the quizzes of a timeline and of those nested in it.
class QuizRemoval {
public:
    explicit QuizRemoval(FlatObject& document) : m_document(document) {}

    void removeFrom(unsigned long long timelineId);

private:
    bool enter(unsigned long long timelineId);
    void handleEntry(Level& level);
    MTime endOf(const json& entry);
    void leave(Level& level);
    bool isOfType(const json& reference, int type);

    void fill(Level& level);
    json trackForFiller(const json& timeline);

    FlatObject& m_document;
    std::unordered_set<unsigned long long> m_entered;
    std::deque<Level> m_levels; // in place of recursion: timelines may be nested deeply
};

void QuizRemoval::removeFrom(unsigned long long timelineId) {
    enter(timelineId);
    while (!m_levels.empty()) {
        Level& level = m_levels.back();
        if (level.clips.atEnd()) {
            leave(level);
            m_levels.pop_back();
        } else {
            handleEntry(level);
        }
    }
}

/// Returns false if the timeline was entered before, for example because it is nested in itself.
bool QuizRemoval::enter(unsigned long long timelineId) {
    json& timeline = objectAt(m_document, timelineId);
    if (!m_entered.insert(timelineId).second)
        return false;
    const json& clips = memberOf(timeline, "clips");
    if (clips.is_primitive() && !clips.is_null())
        json(clips).push_back(nullptr); // throws the type error
    m_levels.emplace_back(timelineId, timeline);
    return true;
}

void QuizRemoval::handleEntry(Level& level) {
    const json& entry = level.clips.entry();
    const unsigned long long clipId = targetOf(memberOf(entry, "clip"));
    const json& clip = objectAt(m_document, clipId);
    const json& nested = memberOf(clip, "nestedTimeline");
    if (!nested.is_null() && enter(targetOf(nested)))
        return; // the same entry is read again after the nested timeline
    const MTime end = endOf(entry);
    if (memberOf(clip, "type") == quizClipType) {
        level.quizEnd = std::max(level.quizEnd, end);
        level.removedClips.insert(clipId);
        level.clips.drop();
    } else {
        level.normalEnd = std::max(level.normalEnd, end);
        level.clips.keep();
    }
}

MTime QuizRemoval::endOf(const json& entry) {
    const json& reference = memberOf(entry, "timing");
    const json& timing = reference.is_object() ? objectAt(m_document, targetOf(reference)) : reference;
    if (!timing.is_object())
        static_cast<void>(timing["timestamp"]); // throws the type error
    return MTime::fromMs(timeOf(timing, "timestamp")) + MTime::fromMs(timeOf(timing, "duration"));
}

void QuizRemoval::leave(Level& level) {
    level.clips.close();
    if (level.quizEnd > level.normalEnd)
        fill(level);
    dropEntries(level.timeline, "links", [&](const json& link) {
        const auto slave = getAnyObjectId(memberOf(link, "slave"));
        return slave && level.removedClips.count(*slave) > 0;
    });
    dropEntries(level.timeline, "tracks", [&](const json& track) { return isOfType(track, quizTrackType); });
}

bool QuizRemoval::isOfType(const json& reference, int type) {
    return memberOf(objectAt(m_document, targetOf(reference)), "type") == type;
}

/// Adds a title clip at the end, so that the timeline keeps the length that the removed clips gave it.
void QuizRemoval::fill(Level& level) {
    const MTime gap = level.quizEnd - level.normalEnd;
    const json* clip = Internal::createFillerClip(m_document, level.id, gap);
    json* timing = Internal::createFillerTiming(m_document, level.normalEnd, gap);
    json track = trackForFiller(level.timeline);
    if (!track.is_null())
        (*timing)["track"] = std::move(track);
    json entry = json::object();
    entry["clip"] = m_document.createRef(clip);
    entry["timing"] = m_document.createRef(timing);
    level.timeline["clips"].push_back(entry); // throws the type error for an object
}

/// A reference to the first track for titles; null if there is none.
json QuizRemoval::trackForFiller(const json& timeline) {
    const json& tracks = memberOf(timeline, "tracks");
    if (!tracks.is_structured())
        return nullptr;
    for (const json& track : tracks) {
        if (isOfType(track, fillerTrackType))
            return m_document.createRef(targetOf(track));
    }
    return nullptr;
}

} // namespace

void V69_RemoveQuizzesAdaptor::convert(FlatEditor& editor) {
    const auto timelines = editor.objects("Timeline::Object");
    if (!timelines.empty())
        QuizRemoval(editor.document()).removeFrom(timelines.front().id);
}

} // namespace Project
