#include "Archive/Internal/FlatObjects.h"
#include "Repairs/FlatTimelines.h"
#include "Repairs/Makers.h"

using Archive::Internal::memberOf;
using nlohmann::json;

namespace Repairs {
namespace {

constexpr long long quizTrack = 96;

/// Moves clips that are no quizzes from the track that version 69 removes with the quizzes.
class QuizTracks : public JsonRepair {
public:
    bool find(Reader::JsonDocument& document, const Place&) override {
        for (const unsigned long long id : timelinesWithQuizzes(document)) {
            const json& timeline = document.flat.objects.at(id);
            const std::set<unsigned long long> tracks = quizTracks(document, timeline);
            if (tracks.empty())
                continue;
            for (const TimelineClip& clip : clipsOf(document, timeline)) {
                const auto track =
                    clip.timing ? Serialize::Json::getAnyObjectId(memberOf(*clip.timing, "track")).value_or(0)
                                : 0;
                const bool isQuiz = clip.clip && numberIn(*clip.clip, "type") == quizClip;
                if (tracks.count(track) > 0 && !isQuiz)
                    m_clips.push_back({id, clip});
            }
        }
        return !m_clips.empty();
    }

    void repair(Reader::JsonDocument& document, Changes& changes) override {
        for (const auto& [timelineId, clip] : m_clips) {
            const long long type = numberedTracks.forClip(clip.clip);
            (*clip.timing)["track"] =
                document.flat.createRef(trackFor(document, timelineId, type, numberedTracks));
            changes.note(clip.id, clip.clip ? *clip.clip : json());
        }
        changes.describe(counted(m_clips.size(), "clip") +
                         " moved from the track of the quizzes to the one for its type");
    }

private:
    struct Stray {
        unsigned long long timeline;
        TimelineClip clip;
    };

    static std::set<unsigned long long> quizTracks(Reader::JsonDocument& document, const json& timeline) {
        std::set<unsigned long long> ids;
        for (const unsigned long long id : tracksOf(timeline)) {
            const auto track = document.flat.objects.find(id);
            if (track != document.flat.objects.end() && numberIn(track->second, "type") == quizTrack)
                ids.insert(id);
        }
        return ids;
    }

    std::vector<Stray> m_clips;
};

} // namespace

std::unique_ptr<JsonRepair> makeQuizTracks() {
    return std::make_unique<QuizTracks>();
}

} // namespace Repairs
