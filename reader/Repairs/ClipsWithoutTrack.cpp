#include "Archive/Internal/FlatObjects.h"
#include "Repairs/FlatTimelines.h"
#include "Repairs/Makers.h"

#include <utility>

using Archive::Internal::memberOf;
using nlohmann::json;

namespace Repairs {
namespace {

/// Puts clips that lie on no track of their timeline on one for their type: titles on the titles track, sound on the
/// sound track, all others on the track above the primary one. A track that is there and not listed is listed.
class ClipsWithoutTrack : public JsonRepair {
public:
    bool find(Reader::JsonDocument& document, const Place&) override {
        for (const auto& timeline : Archive::Internal::selectObjects(document.flat, "Timeline::Object")) {
            const auto listed = tracksOf(*timeline.object);
            const std::set<unsigned long long> tracks(listed.begin(), listed.end());
            for (const TimelineClip& clip : clipsOf(document, *timeline.object)) {
                if (clip.timing && tracks.count(trackOf(document, *clip.timing)) == 0)
                    m_clips.push_back({timeline.id, clip});
            }
        }
        return !m_clips.empty();
    }

    void repair(Reader::JsonDocument& document, Changes& changes) override {
        for (const auto& [timelineId, clip] : m_clips) {
            const unsigned long long own = trackOf(document, *clip.timing);
            if (own != 0)
                list(document, timelineId, own);
            else
                (*clip.timing)["track"] = document.flat.createRef(
                    trackFor(document, timelineId, typedTracks.forClip(clip.clip), typedTracks));
            changes.note(clip.id, clip.clip ? *clip.clip : json());
        }
        changes.describe(counted(m_clips.size(), "clip") + " without a track of the timeline got one");
    }

private:
    struct Stray {
        unsigned long long timeline;
        TimelineClip clip;
    };

    /// The track of a timing; 0 if there is none.
    static unsigned long long trackOf(Reader::JsonDocument& document, const json& timing) {
        const auto id = Serialize::Json::getAnyObjectId(memberOf(timing, "track")).value_or(0);
        const auto track = document.flat.objects.find(id);
        const bool isTrack = track != document.flat.objects.end() &&
                             Serialize::Json::getClassName(track->second) == "Timeline::Track";
        return isTrack ? id : 0;
    }

    /// Adds a track that find() has not found in the list.
    void list(Reader::JsonDocument& document, unsigned long long timelineId, unsigned long long track) {
        json& tracks = document.flat.objects.at(timelineId)["tracks"];
        if (!m_listed.emplace(timelineId, track).second)
            return;
        if (!tracks.is_array())
            tracks = json::array();
        tracks.push_back(document.flat.createRef(track));
    }

    std::vector<Stray> m_clips;
    std::set<std::pair<unsigned long long, unsigned long long>> m_listed; ///< timeline and track
};

} // namespace

std::unique_ptr<JsonRepair> makeClipsWithoutTrack() {
    return std::make_unique<ClipsWithoutTrack>();
}

} // namespace Repairs
