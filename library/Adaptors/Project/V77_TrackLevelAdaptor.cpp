#include "Adaptors/Project/V77_TrackLevelAdaptor.h"

#include "Archive/Internal/FlatEditor.h"
#include "Archive/Internal/JsonFields.h"
#include "Archive/Internal/JsonValues.h"
#include "Archive/Json.h"

#include <map>
#include <stdexcept>
#include <unordered_map>
#include <unordered_set>
#include <utility>

using namespace Archive::Internal;
using nlohmann::json;
using Serialize::Json::FlatObject;
using Serialize::Json::getAnyObjectId;

namespace Project {
namespace {

using Id = unsigned long long;

constexpr long long levelledTrack = 4; // Quirk: clips stay on this track and lose their levels

/// Creates a clone of a track for each of its levels.
class LevelTracks {
public:
    explicit LevelTracks(FlatEditor& editor) : m_editor(editor), m_document(editor.document()) {}

    /// Moves each timing with a level to the clone for that level.
    void moveTimings() {
        for (const auto& timing : m_editor.objects("Timeline::ClipTiming"))
            moveTiming(*timing.object);
    }

    /// Adds the clones to `tracks` of their timelines.
    void listClones() {
        if (m_timelines.empty())
            return;
        for (const auto& timeline : m_editor.objects("Timeline::Object")) {
            const auto id = getAnyObjectId(*timeline.object);
            if (id && m_timelines.count(*id) > 0) {
                m_rewritten.insert(timeline.id);
                listClones(*timeline.object);
            }
        }
    }

private:
    void moveTiming(json& timing) {
        const auto key = timing.find("trackLevel");
        if (key == timing.end())
            return;
        const int level = toInt32(*key);
        timing.erase(key);
        if (level == 0)
            return;
        const auto track = getAnyObjectId(memberOf(timing, "track"));
        // Quirk: an id that the document lacks gets an empty entry. Its type is no number, which throws.
        if (!track || toInteger(memberOf(m_document.objects[*track], "type")) == levelledTrack)
            return;
        timing["track"] = m_document.createRef(cloneFor(*track, level));
    }

    Id cloneFor(Id track, int level) {
        const auto [clone, isNew] = m_clones[track].try_emplace(level);
        if (isNew)
            clone->second = makeClone(track);
        return clone->second;
    }

    Id makeClone(Id track) {
        const json* clone = Archive::cloneObject(m_document, track);
        if (!clone)
            throw std::logic_error(
                "incorrect json flat map object: track present in ClipTiming, but track id "
                "missed in flat map");
        const auto timeline = getAnyObjectId(memberOf(*clone, "timeline"));
        if (!timeline)
            throw std::invalid_argument("Corrupted input content data");
        m_timelines.insert(*timeline);
        return Serialize::Json::getObjectId(*clone).value();
    }

    void listClones(json& timeline) {
        auto* tracks = listOf(timeline, "tracks");
        if (!tracks)
            return;
        for (json& track : std::exchange(*tracks, {})) {
            const auto id = getAnyObjectId(track);
            tracks->push_back(std::move(track));
            if (id)
                appendClones(*tracks, *id);
        }
    }

    // By ascending level: negative levels come first. Quirk: a clone is listed in full, not as a reference.
    void appendClones(json::array_t& tracks, Id track) {
        const auto clones = m_clones.find(track);
        if (clones == m_clones.end())
            return;
        for (const auto& [level, id] : clones->second) {
            const auto clone = m_document.objects.find(id);
            if (clone == m_document.objects.end())
                throw std::logic_error("V77_TrackLevelAdaptor logic error. Content data can be corrupted.");
            // A copy that contains copies would double in size with each.
            if (m_rewritten.count(id) > 0)
                throw std::logic_error(
                    "incorrect json flat map object: timeline with clones of tracks is a track itself");
            tracks.push_back(copied(clone->second));
        }
    }

    FlatEditor& m_editor;
    FlatObject& m_document;
    std::unordered_map<Id, std::map<int, Id>> m_clones; ///< by track and level
    std::unordered_set<Id> m_timelines;                 ///< timelines with a clone
    std::unordered_set<Id> m_rewritten;                 ///< timelines whose `tracks` contain clones
};

} // namespace

void V77_TrackLevelAdaptor::convert(FlatEditor& editor) {
    LevelTracks levels(editor);
    levels.moveTimings();
    levels.listClones();
}

} // namespace Project
