#include "Exchange/Internal/Lanes.h"

#include <algorithm>
#include <functional>
#include <queue>
#include <set>
#include <tuple>
#include <unordered_map>

namespace Reader::Exchange {
namespace {

class Joiner {
public:
    Joiner(const Timeline& timeline, const std::vector<bool>& isPlaced)
        : m_timeline(timeline), m_isPlaced(isPlaced), m_used(timeline.clips.size(), 0) {
        for (std::size_t place = 0; place < timeline.clips.size(); ++place)
            m_places.emplace(timeline.clips[place].id, place);
    }

    JoinedClips join() {
        for (std::size_t number = 0; number < m_timeline.transitions.size(); ++number)
            join(number);
        return std::move(m_result);
    }

private:
    /// The clip of that id; none for 0.
    std::optional<std::size_t> placeOf(unsigned long long id) const {
        const auto place = m_places.find(id);
        return id == 0 || place == m_places.end() ? std::nullopt : std::optional(place->second);
    }

    /// Whether one clip ends where the other begins, on the same level.
    bool follow(std::size_t from, std::size_t to) const {
        const TimelineClip& first = m_timeline.clips[from];
        const TimelineClip& second = m_timeline.clips[to];
        return from != to && first.track == second.track && first.level == second.level &&
               first.end() == second.start && first.duration > 0 && second.duration > 0;
    }

    bool isFree(std::optional<std::size_t> clip, std::optional<std::size_t> ClipTransitions::*end) const {
        if (!clip)
            return true;
        const auto ends = m_result.ends.find(*clip);
        return m_isPlaced[*clip] && (ends == m_result.ends.end() || !(ends->second.*end));
    }

    /// Whether that part of a clip is free of other transitions.
    bool hasSpace(std::optional<std::size_t> clip, long long time) const {
        if (time < 0)
            return false;
        return clip ? time <= m_timeline.clips[*clip].duration - m_used[*clip] : time == 0;
    }

    void join(std::size_t number) {
        const TimelineTransition& transition = m_timeline.transitions[number];
        const auto from = placeOf(transition.from);
        const auto to = placeOf(transition.to);
        const bool isDangling = (transition.from != 0 && !from) || (transition.to != 0 && !to);
        if (isDangling || (!from && !to) || (from && to && !follow(*from, *to)) ||
            !isFree(from, &ClipTransitions::out) || !isFree(to, &ClipTransitions::in)) {
            m_result.misplaced.push_back(number);
            return;
        }
        if (!hasSpace(from, transition.before) || !hasSpace(to, transition.after)) {
            m_result.tooLong.push_back(number);
            return;
        }
        if (from) {
            m_result.ends[*from].out = number;
            m_used[*from] += transition.before;
        }
        if (to) {
            m_result.ends[*to].in = number;
            m_used[*to] += transition.after;
        }
        if (from && to)
            m_result.next[*from] = *to;
    }

    const Timeline& m_timeline;
    const std::vector<bool>& m_isPlaced;
    std::vector<long long> m_used; ///< how much of each clip lies in transitions
    std::unordered_map<unsigned long long, std::size_t> m_places;
    JoinedClips m_result;
};

} // namespace

JoinedClips joinClips(const Timeline& timeline, const std::vector<bool>& isPlaced) {
    return Joiner(timeline, isPlaced).join();
}

std::vector<Lane> lanesOf(const Timeline& timeline, std::vector<std::size_t> clips,
                          const JoinedClips& joined) {
    // Of clips that start together those without a length come last: they would stand between joined clips.
    std::sort(clips.begin(), clips.end(), [&](std::size_t a, std::size_t b) {
        const TimelineClip& one = timeline.clips[a];
        const TimelineClip& other = timeline.clips[b];
        return std::tuple(one.start, one.duration <= 0, a) < std::tuple(other.start, other.duration <= 0, b);
    });
    using Busy = std::pair<long long, std::size_t>; // until when, and which lane
    std::priority_queue<Busy, std::vector<Busy>, std::greater<>> busy;
    std::set<std::size_t> free;
    std::map<std::size_t, std::size_t> kept; // lanes by the clip that they are kept for
    std::vector<Lane> lanes;
    for (const std::size_t clip : clips) {
        const TimelineClip& facts = timeline.clips[clip];
        for (; !busy.empty() && busy.top().first <= facts.start; busy.pop()) {
            const std::size_t lane = busy.top().second;
            const auto next = joined.next.find(lanes[lane].back());
            if (next == joined.next.end())
                free.insert(lane);
            else
                kept.emplace(next->second, lane);
        }
        std::size_t lane = lanes.size();
        if (const auto own = kept.find(clip); own != kept.end()) {
            lane = own->second;
            kept.erase(own);
        } else if (!free.empty()) {
            lane = *free.begin();
            free.erase(free.begin());
        } else {
            lanes.emplace_back();
        }
        lanes[lane].push_back(clip);
        busy.emplace(facts.end(), lane);
    }
    return lanes;
}

} // namespace Reader::Exchange
