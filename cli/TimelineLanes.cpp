#include "TimelineLanes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <unordered_map>
#include <utility>

using Reader::Timeline;
using Reader::TimelineClip;
using Reader::TimelineTransition;

namespace TimelineLanes {
namespace {

constexpr std::size_t mostLanesOfOneLevel = 32;

/// Ends of clips at which the next one may begin earlier, because a transition leads to it.
using Overlaps = std::unordered_map<unsigned long long, double>;

bool isFree(const Lane& lane, const TimelineClip& clip, const Overlaps& overlaps) {
    if (lane.clips.empty())
        return true;
    const TimelineClip& last = *lane.clips.back();
    const auto overlap = overlaps.find(last.id);
    return static_cast<double>(clip.start) >=
           static_cast<double>(last.end()) - (overlap == overlaps.end() ? 0 : overlap->second);
}

} // namespace

std::vector<Lane> lanesOf(const Timeline& timeline) {
    std::map<std::pair<std::size_t, long long>, std::vector<const TimelineClip*>> places;
    for (std::size_t track = 0; track < timeline.tracks.size(); ++track)
        places[{track, 0}];
    for (const TimelineClip& clip : timeline.clips)
        places[{clip.track, clip.level}].push_back(&clip);
    Overlaps overlaps;
    for (const TimelineTransition& transition : timeline.transitions)
        overlaps[transition.from] = static_cast<double>(transition.duration);
    std::vector<Lane> lanes;
    for (auto& [place, clips] : places) {
        const auto& [track, level] = place;
        std::stable_sort(clips.begin(), clips.end(),
                         [](const TimelineClip* a, const TimelineClip* b) { return a->start < b->start; });
        const std::size_t first = lanes.size();
        lanes.push_back({std::string(nameOf(timeline.tracks[track].kind)) +
                             (level == 0 ? "" : ' ' + std::to_string(level)),
                         {},
                         track});
        for (const TimelineClip* clip : clips) {
            std::size_t lane = first;
            while (lane < lanes.size() && !isFree(lanes[lane], *clip, overlaps))
                ++lane;
            if (lane == first + mostLanesOfOneLevel)
                --lane;
            if (lane == lanes.size())
                lanes.push_back({{}, {}, track});
            lanes[lane].clips.push_back(clip);
        }
    }
    return lanes;
}

std::vector<std::vector<Mark>> marksOf(const Timeline& timeline, const std::vector<Lane>& lanes) {
    std::unordered_map<unsigned long long, const TimelineClip*> clips;
    std::unordered_map<unsigned long long, std::size_t> lanesOfClips;
    for (std::size_t lane = 0; lane < lanes.size(); ++lane) {
        for (const TimelineClip* clip : lanes[lane].clips) {
            clips.emplace(clip->id, clip);
            lanesOfClips.emplace(clip->id, lane);
        }
    }
    std::vector<std::vector<Mark>> marks(lanes.size());
    for (const TimelineTransition& transition : timeline.transitions) {
        const auto from = clips.find(transition.from);
        const auto to = clips.find(transition.to);
        if (from != clips.end())
            marks[lanesOfClips[transition.from]].push_back(
                {&transition, to == clips.end() ? from->second->end() : to->second->start});
    }
    return marks;
}

Scale::Scale(const Timeline& timeline, double width) : m_width(width) {
    for (const TimelineClip& clip : timeline.clips)
        m_first = std::min(m_first, static_cast<double>(clip.start));
    m_length = std::max(static_cast<double>(timeline.duration()) - m_first, 1.0);
}

Scale::Scale(double first, double last, double width)
    : m_width(width), m_first(first), m_length(std::max(last - first, 1.0)) {}

double Scale::placeOf(long long time) const {
    return std::clamp((static_cast<double>(time) - m_first) * m_width / m_length, 0.0, m_width);
}

double Scale::stepFor(double space) const {
    constexpr double second = 1000;
    constexpr double day = 86400 * second;
    constexpr std::array steps = {0.01,  0.02,   0.05,   0.1,    0.2,     0.5,     1.0,    2.0,
                                  5.0,   10.0,   15.0,   30.0,   60.0,    120.0,   300.0,  600.0,
                                  900.0, 1800.0, 3600.0, 7200.0, 14400.0, 21600.0, 43200.0};
    const double least = m_length * space / m_width;
    for (const double step : steps) {
        if (step * second >= least)
            return step * second;
    }
    double step = day;
    while (step < least)
        step *= 2;
    return step;
}

std::vector<double> Scale::marks(double step) const {
    std::vector<double> times;
    for (int number = 0; number * step < m_first + m_length; ++number)
        times.push_back(number * step);
    return times;
}

std::string markText(double time, double step) {
    const auto milliseconds = static_cast<unsigned long long>(std::llround(time));
    const auto two = [](unsigned long long n) { return (n < 10 ? "0" : "") + std::to_string(n); };
    const unsigned long long hours = milliseconds / 3600000;
    const unsigned long long minutes = milliseconds / 60000 % 60;
    std::string text = hours > 0 ? std::to_string(hours) + ':' + two(minutes) : std::to_string(minutes);
    text += ':' + two(milliseconds / 1000 % 60);
    if (step < 1000)
        text += '.' + two(milliseconds / 10 % 100);
    return text;
}

} // namespace TimelineLanes
