#include "Adaptors/Project/V77_TitlesTrackAdaptor.h"

#include "Archive/Internal/FlatEditor.h"
#include "Archive/Internal/JsonFields.h"
#include "Archive/Internal/JsonValues.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <unordered_set>
#include <vector>

using namespace Archive::Internal;
using nlohmann::json;
using Serialize::Json::FlatObject;
using Serialize::Json::getAnyObjectId;

namespace Project {
namespace {

constexpr long long primaryTrack = 1;
constexpr long long titlesTrack = 16;
constexpr long long titleClip = 4;

[[noreturn]] void fail(const std::string& what) {
    throw std::logic_error("incorrect json flat map object: " + what);
}

unsigned long long idOf(const json& value, const char* complaint) {
    const auto id = getAnyObjectId(value);
    if (!id)
        fail(complaint);
    return *id;
}

/// Moves the titles of one timeline from its primary track to a titles track.
class TitlesMove {
public:
    TitlesMove(FlatObject& document, const SelectedObject& timeline)
        : m_document(document), m_timeline(timeline) {}

    void run() {
        m_titles = trackAt(placeOf(titlesTrack));
        collectTitles();
        if (m_timings.empty())
            return;
        const SelectedObject primary = allowGaps();
        if (!m_titles)
            m_titles = makeTitlesTrack();
        (*m_titles->object)["hidden"] = memberOf(*primary.object, "hidden").get<bool>();
        moveTimings();
        endTransitions();
    }

private:
    /// Quirk: an id that the document lacks gets an empty entry, without fields.
    json& entry(unsigned long long id) { return m_document.objects[id]; }

    long long typeOf(unsigned long long id) { return toInteger(memberOf(entry(id), "type")); }

    static unsigned long long trackOf(const json& value) {
        return idOf(value, "track id missed in flat map");
    }

    const json::array_t& tracks() const { return entriesOf(*m_timeline.object, "tracks"); }

    /// The position in `tracks` of the first track of that type; the length of `tracks` if there is none.
    std::size_t placeOf(long long type) {
        std::size_t place = 0;
        while (place < tracks().size() && typeOf(trackOf(tracks()[place])) != type)
            ++place;
        return place;
    }

    std::optional<SelectedObject> trackAt(std::size_t place) {
        if (place == tracks().size())
            return std::nullopt;
        const auto id = trackOf(tracks()[place]);
        return SelectedObject{id, &entry(id)};
    }

    void collectTitles() {
        for (const json& clip : entriesOf(*m_timeline.object, "clips"))
            collectTitle(clip);
    }

    void collectTitle(const json& clip) {
        const auto clipId =
            idOf(memberOf(clip, "clip"), "clip present in clips, but clip id missed in flat map");
        if (typeOf(clipId) != titleClip)
            return;
        json& timing = entry(idOf(memberOf(clip, "timing"), "timing id missed in flat map"));
        const auto track = trackOf(memberOf(timing, "track"));
        // Quirk: a titles track that already has a title is not used for the others.
        if (m_titles && areEqual(*m_titles->object, entry(track)))
            m_titles.reset();
        if (typeOf(track) == primaryTrack) {
            m_timings.push_back(&timing);
            m_clips.insert(clipId);
        }
    }

    /// The titles leave gaps on the primary track.
    SelectedObject allowGaps() {
        const auto primary = trackAt(placeOf(primaryTrack));
        if (!primary)
            fail("primary track missed in tracks");
        (*primary->object)["gapless"] = false;
        return *primary;
    }

    /// Quirk: the track gets no `used`. The caller sets `hidden`.
    SelectedObject makeTitlesTrack() {
        json& track = *m_document.createObject("Timeline::Track");
        track["gapless"] = false;
        track["linked"] = true;
        track["muted"] = false;
        track["timeline"] = m_document.createRef(m_timeline.id);
        track["type"] = titlesTrack;
        const auto place = static_cast<std::ptrdiff_t>(placeOf(titlesTrack));
        auto* list = listOf(*m_timeline.object, "tracks");
        list->insert(list->begin() + place, m_document.createRef(track));
        return {Serialize::Json::getObjectId(track).value(), &track};
    }

    void moveTimings() {
        for (json* timing : m_timings) {
            (*timing)["track"] = m_document.createRef(m_titles->id);
            (*timing)["transitionIn"] = 0;
            (*timing)["transitionOut"] = 0;
        }
    }

    // Quirk: the transitions stay in the list, and so does the half in the timing of the clip at the other
    // end.
    void endTransitions() {
        auto* transitions = listOf(*m_timeline.object, "transitions");
        if (!transitions)
            return;
        for (json& transition : *transitions) {
            endAt(transition, "clipFrom");
            endAt(transition, "clipTo");
        }
    }

    void endAt(json& transition, const char* end) {
        const json& clip = memberOf(transition, end);
        if (!clip.is_null() && m_clips.count(getAnyObjectId(clip).value()) > 0)
            transition[end] = nullptr;
    }

    FlatObject& m_document;
    SelectedObject m_timeline;
    std::optional<SelectedObject> m_titles;
    std::vector<json*> m_timings;
    std::unordered_set<unsigned long long> m_clips;
};

} // namespace

void V77_TitlesTrackAdaptor::convert(FlatEditor& editor) {
    for (const auto& timeline : editor.objects("Timeline::Object"))
        TitlesMove(editor.document(), timeline).run();
}

} // namespace Project
