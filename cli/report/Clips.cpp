#include "report/Clips.h"

#include "Phrases.h"
#include "report/Html.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace ReportPage {

using Reader::Timeline;
using Reader::TimelineClip;

namespace {

constexpr std::size_t longestName = 200;

std::string trackText(const TimelineClip& clip, const Timeline& timeline) {
    return std::string(clip.track < timeline.tracks.size() ? nameOf(timeline.tracks[clip.track].kind)
                                                           : nameOf(Reader::TrackKind::Unknown));
}

/// What is different for people.
std::vector<std::string> changesOf(const TimelineClip& before, const TimelineClip& after) {
    std::vector<std::string> changes;
    if (before.name != after.name)
        changes.push_back("now named " + (after.name.empty() ? "nothing" : Phrases::inQuotes(after.name)));
    if (before.kind != after.kind)
        changes.push_back("now " + std::string(nameOf(after.kind)));
    if (before.start != after.start)
        changes.push_back("now at " + timeText(after.start));
    if (before.duration != after.duration)
        changes.push_back("now " + timeText(after.duration) + " long");
    if (before.isEnabled != after.isEnabled)
        changes.push_back(after.isEnabled ? "now switched on" : "now switched off");
    return changes;
}

} // namespace

std::string_view nameOf(Fate fate) {
    constexpr std::array<std::string_view, 6> names = {"kept", "changed",  "removed",
                                                       "lost", "left out", "added"};
    return names[static_cast<std::size_t>(fate)];
}

bool Clip::hasErrors() const {
    return fate == Fate::Lost ||
           std::any_of(lines.begin(), lines.end(),
                       [](const Reader::LogLine* line) { return line->isError(); }) ||
           std::any_of(lostParts.begin(), lostParts.end(),
                       [](const Reader::Loss* loss) { return !loss->isIntended && loss->wasUsed; });
}

Clips::Clips(const Facts& facts) : m_facts(facts) {
    if (facts.states.empty())
        return;
    const Timelines* last = nullptr;
    for (const State& state : facts.states) {
        if (state.timelines.get() == last)
            continue;
        last = state.timelines.get();
        auto& [name, ids] = m_idsOfStates.emplace_back();
        name = state.name;
        for (const Timeline& timeline : *last) {
            for (const TimelineClip& clip : timeline.clips)
                ++ids[clip.id];
        }
    }
    for (const Reader::Loss& loss : facts.report.losses) {
        if (loss.part.kind == Reader::PartKind::Clip)
            m_lostClips.emplace(loss.part.id, &loss);
    }
    addBefore();
    addAfter();
    for (Clip& clip : m_clips)
        decide(clip);
    addReports();
}

std::size_t Clips::count(Fate fate) const {
    return static_cast<std::size_t>(std::count_if(m_clips.begin(), m_clips.end(),
                                                  [fate](const Clip& clip) { return clip.fate == fate; }));
}

std::optional<std::size_t> Clips::placeOf(const TimelineClip* clip) const {
    const auto place = m_places.find(clip);
    return place == m_places.end() ? std::nullopt : std::optional(place->second);
}

bool Clips::isInResult(const Timeline& timeline) const {
    return timeline.role != Timeline::Role::Unused || m_usedTimelines.count(timeline.id) == 0;
}

unsigned long long Clips::idAfter(unsigned long long idBefore) const {
    const auto other = m_facts.redirected.find(idBefore);
    return m_facts.report.formBefore == Bundle::Backend::Xml && other != m_facts.redirected.end()
               ? other->second
               : idBefore;
}

void Clips::addBefore() {
    for (const Timeline& timeline : *m_facts.states.front().timelines) {
        if (timeline.role != Timeline::Role::Unused)
            m_usedTimelines.insert(idAfter(timeline.id));
        for (const TimelineClip& clip : timeline.clips) {
            m_places.emplace(&clip, m_clips.size());
            m_clips.emplace_back().before = {&timeline, &clip};
        }
    }
}

/// Of several entries with one clip, the first before belongs to the first after, and so on.
void Clips::addAfter() {
    std::unordered_map<unsigned long long, std::vector<std::size_t>> places;
    for (std::size_t place = m_clips.size(); place-- > 0;)
        places[idAfter(m_clips[place].before.clip->id)].push_back(place);
    std::unordered_set<unsigned long long> lost;
    for (const auto& [id, loss] : m_lostClips)
        lost.insert(idAfter(id));
    for (const Timeline& timeline : *m_facts.states.back().timelines) {
        if (!isInResult(timeline))
            continue;
        for (const TimelineClip& clip : timeline.clips) {
            if (lost.count(clip.id) > 0)
                continue;
            auto& same = places[clip.id];
            if (same.empty()) {
                same.push_back(m_clips.size());
                m_clips.emplace_back();
            }
            m_clips[same.back()].after = {&timeline, &clip};
            m_places.emplace(&clip, same.back());
            same.pop_back();
        }
    }
}

void Clips::decide(Clip& clip) const {
    if (!clip.before.clip) {
        clip.fate = Fate::Added;
        clip.step = stepThatAdded(clip.after.clip->id);
        return;
    }
    if (clip.after.clip) {
        clip.changes = changesOf(*clip.before.clip, *clip.after.clip);
        clip.fate = clip.changes.empty() ? Fate::Kept : Fate::Changed;
        return;
    }
    const auto found = m_lostClips.find(clip.before.clip->id);
    const Reader::Loss* loss = found == m_lostClips.end() ? nullptr : found->second;
    clip.fate = !loss || loss->isIntended ? Fate::Removed : loss->wasUsed ? Fate::Lost : Fate::LeftOut;
    if (loss) {
        clip.step = loss->step;
        clip.reason = loss->reason;
    } else {
        clip.reason = clip.before.clip->className.empty() ? "the project has no such object"
                                                          : "it is on no timeline any more";
    }
    if (clip.step.empty() && clip.fate != Fate::LeftOut)
        clip.step = stepThatRemoved(clip.before.clip->id);
}

std::string Clips::stepThatRemoved(unsigned long long id) const {
    for (const auto& [name, ids] : m_idsOfStates) {
        if (ids.count(id) == 0 && ids.count(idAfter(id)) == 0)
            return name;
    }
    return {};
}

std::string Clips::stepThatAdded(unsigned long long id) const {
    for (const auto& [name, ids] : m_idsOfStates) {
        if (ids.count(id) > 0)
            return name;
    }
    return {};
}

void Clips::addReports() {
    std::unordered_map<unsigned long long, Clip*> clips;
    for (Clip& clip : m_clips) {
        if (clip.before.clip)
            clips.emplace(clip.before.clip->id, &clip);
        if (clip.after.clip)
            clips.emplace(clip.after.clip->id, &clip);
    }
    for (const Reader::Loss& loss : m_facts.report.losses) {
        const auto clip = clips.find(loss.part.clip);
        if (clip != clips.end() && loss.part.kind != Reader::PartKind::Clip)
            clip->second->lostParts.push_back(&loss);
    }
    for (const Reader::LogLine& line : m_facts.report.log) {
        const auto clip = line.object && line.object->clip ? clips.find(line.object->clip->id) : clips.end();
        if (clip != clips.end())
            clip->second->lines.push_back(&line);
    }
}

std::string timeText(long long milliseconds) {
    const auto bits = static_cast<unsigned long long>(milliseconds);
    const unsigned long long size = milliseconds < 0 ? 0 - bits : bits;
    const unsigned long long hours = size / 3600000;
    std::array<char, 64> text = {};
    if (hours > 0)
        std::snprintf(text.data(), text.size(), "%llu:%02llu:%02llu", hours, size / 60000 % 60,
                      size / 1000 % 60);
    else
        std::snprintf(text.data(), text.size(), "%llu:%02llu", size / 60000, size / 1000 % 60);
    std::string result = (milliseconds < 0 ? "-" : "") + std::string(text.data());
    if (size % 1000 != 0) {
        std::snprintf(text.data(), text.size(), ".%03llu", size % 1000);
        result += text.data();
    }
    return result;
}

std::string rangeText(const TimelineClip& clip) {
    return timeText(clip.start) + "\u2013" + timeText(clip.end());
}

std::string nameFor(const TimelineClip& clip, const Timeline& timeline) {
    const std::string name = Html::visible(clip.name, longestName);
    return "Clip " + (name.empty() ? "without a name" : name) + ", track " + trackText(clip, timeline) +
           ", " + rangeText(clip) + ", " + std::string(nameOf(clip.kind));
}

std::string fateText(const Clip& clip) {
    std::string text(nameOf(clip.fate));
    if (!clip.step.empty())
        text += " by " + shortStep(clip.step);
    if (!clip.reason.empty())
        text += ": " + clip.reason;
    for (std::size_t place = 0; place < clip.changes.size(); ++place)
        text += (place == 0 ? ": " : ", ") + clip.changes[place];
    return text;
}

std::string shortStep(const std::string& step) {
    const auto underscore = step.find('_');
    return underscore != std::string::npos && step.starts_with('V') ? step.substr(0, underscore) : step;
}

} // namespace ReportPage
