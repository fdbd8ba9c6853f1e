#include "report/StepData.h"

#include "Phrases.h"
#include "TimelineLanes.h"
#include "report/Html.h"

#include <array>
#include <map>
#include <set>
#include <string>
#include <unordered_map>

using Json = nlohmann::ordered_json;
using Reader::Timeline;
using Reader::TimelineClip;

namespace ReportPage {
namespace {

constexpr std::size_t longestName = 60;
constexpr std::size_t mostEntries = 300000;

/// Texts, each once, and their numbers.
class Texts {
public:
    std::size_t numberOf(const std::string& text) {
        const auto [place, isNew] = m_numbers.emplace(text, m_list.size());
        if (isNew)
            m_list.push_back(text);
        return place->second;
    }
    Json take() { return std::move(m_list); }

private:
    std::unordered_map<std::string, std::size_t> m_numbers;
    Json m_list = Json::array();
};

/// Lanes keep their numbers from state to state: the second lane "overlay" is always the same.
class LaneNumbers {
public:
    std::vector<std::size_t> numbersOf(const std::vector<TimelineLanes::Lane>& lanes) {
        std::map<std::string, std::size_t> seen;
        std::vector<std::size_t> numbers;
        std::string last;
        for (const TimelineLanes::Lane& lane : lanes) {
            last = lane.label.empty() ? last : lane.label;
            const std::string key = last + (lane.label.empty() ? "+" : "#");
            const auto [place, isNew] = m_numbers.emplace(std::pair(key, seen[key]++), m_labels.size());
            if (isNew)
                m_labels.push_back(lane.label);
            numbers.push_back(place->second);
        }
        return numbers;
    }
    Json take() { return std::move(m_labels); }

private:
    std::map<std::pair<std::string, std::size_t>, std::size_t> m_numbers;
    Json m_labels = Json::array();
};

using ClipEntry = std::array<long long, 8>;

/// A film as the state before had it.
class FilmStates {
public:
    FilmStates(const Clips& clips, Texts& texts, LaneNumbers& lanes)
        : m_clips(clips), m_texts(texts), m_lanes(lanes) {}

    /// What is different now; null for nothing.
    Json changesTo(const Timeline* timeline) {
        static const Timeline none;
        const Timeline& now = timeline ? *timeline : none;
        const std::vector<TimelineLanes::Lane> lanes = TimelineLanes::lanesOf(now);
        const std::vector<std::size_t> numbers = m_lanes.numbersOf(lanes);
        Json changes;
        if (numbers != m_lastLanes)
            changes["lanes"] = numbers;
        m_lastLanes = numbers;
        putClips(lanes, numbers, changes);
        putTransitions(now, lanes, numbers, changes);
        return changes;
    }

    std::size_t entries() const { return m_entries; }
    Json takeRows() { return std::move(m_rows); }

private:
    void putClips(const std::vector<TimelineLanes::Lane>& lanes, const std::vector<std::size_t>& numbers,
                  Json& changes) {
        std::map<unsigned long long, std::size_t> seen;
        std::unordered_map<std::size_t, ClipEntry> entries;
        for (std::size_t lane = 0; lane < lanes.size(); ++lane) {
            for (const TimelineClip* clip : lanes[lane].clips) {
                const unsigned long long id = m_clips.idAfter(clip->id);
                const std::size_t number = numberOf({id, seen[id]++}, clip);
                const ClipEntry entry = {
                    static_cast<long long>(number),
                    static_cast<long long>(m_texts.numberOf(Html::visible(clip->name, longestName))),
                    static_cast<long long>(clip->kind),
                    static_cast<long long>(numbers[lane]),
                    clip->start,
                    clip->end() - clip->start,
                    static_cast<long long>(clip->effects.size()),
                    (clip->isEnabled ? 0 : 1) + (clip->isReversed ? 2 : 0)};
                const auto before = m_last.find(number);
                if (before == m_last.end() || before->second != entry) {
                    changes["put"].push_back(entry);
                    ++m_entries;
                }
                entries.emplace(number, entry);
            }
        }
        std::set<std::size_t> gone; // in order, so that a page is the same on every run
        for (const auto& [number, entry] : m_last) {
            if (entries.count(number) == 0)
                gone.insert(number);
        }
        if (!gone.empty())
            changes["del"] = gone;
        m_last = std::move(entries);
    }

    std::size_t numberOf(const std::pair<unsigned long long, std::size_t>& occurrence,
                         const TimelineClip* clip) {
        const auto [place, isNew] = m_numbers.emplace(occurrence, m_rows.size());
        if (isNew)
            m_rows.push_back(-1);
        if (const auto row = m_clips.placeOf(clip))
            m_rows[place->second] = *row;
        return place->second;
    }

    void putTransitions(const Timeline& timeline, const std::vector<TimelineLanes::Lane>& lanes,
                        const std::vector<std::size_t>& numbers, Json& changes) {
        Json transitions = Json::array();
        const auto marks = TimelineLanes::marksOf(timeline, lanes);
        for (std::size_t lane = 0; lane < lanes.size(); ++lane) {
            for (const TimelineLanes::Mark& mark : marks[lane]) {
                const Reader::TimelineTransition& transition = *mark.transition;
                const std::string name = Phrases::effectText(transition.className, transition.name);
                transitions.push_back(
                    {numbers[lane], m_texts.numberOf(name), mark.time, transition.duration});
            }
        }
        if (transitions != m_lastTransitions) {
            m_entries += transitions.size();
            changes["transitions"] = transitions;
        }
        m_lastTransitions = std::move(transitions);
    }

    const Clips& m_clips;
    Texts& m_texts;
    LaneNumbers& m_lanes;
    std::map<std::pair<unsigned long long, std::size_t>, std::size_t>
        m_numbers; ///< of clips, by id and occurrence
    std::vector<std::size_t> m_lastLanes;
    std::unordered_map<std::size_t, ClipEntry> m_last; ///< clips of the last state by number
    Json m_lastTransitions = Json::array();
    Json m_rows = Json::array();
    std::size_t m_entries = 0;
};

} // namespace

std::optional<Json> stepData(const Facts& facts, const std::vector<Film>& films, const Clips& clips) {
    Texts texts;
    LaneNumbers lanes;
    std::vector<FilmStates> tracked(films.size(), FilmStates(clips, texts, lanes));
    Json states = Json::array();
    const Timelines* last = nullptr;
    for (const State& state : facts.states) {
        Json changes = Json::object();
        for (std::size_t place = 0; place < films.size() && state.timelines.get() != last; ++place) {
            Json ofFilm = tracked[place].changesTo(timelineIn(state, films[place], clips));
            if (!ofFilm.is_null())
                changes[std::to_string(place)] = std::move(ofFilm);
        }
        last = state.timelines.get();
        states.push_back({{"name", state.name}, {"films", std::move(changes)}});
        std::size_t entries = 0;
        for (const FilmStates& film : tracked)
            entries += film.entries();
        if (entries > mostEntries)
            return std::nullopt;
    }
    Json rows = Json::array();
    Json facts_ = Json::array();
    for (std::size_t place = 0; place < films.size(); ++place) {
        rows.push_back(tracked[place].takeRows());
        facts_.push_back(
            {{"name", films[place].name()}, {"first", films[place].first}, {"last", films[place].last}});
    }
    Json kinds = Json::array();
    for (int kind = 0; kind <= static_cast<int>(Reader::ClipKind::Unknown); ++kind)
        kinds.push_back(nameOf(static_cast<Reader::ClipKind>(kind)));
    return Json{{"names", texts.take()},      {"kinds", std::move(kinds)}, {"lanes", lanes.take()},
                {"films", std::move(facts_)}, {"rows", std::move(rows)},   {"states", std::move(states)}};
}

} // namespace ReportPage
