#include "report/Films.h"

#include "Phrases.h"
#include "TimelineLanes.h"
#include "report/Html.h"

#include <QString>

#include <algorithm>
#include <unordered_map>

using Reader::Timeline;
using Reader::TimelineClip;
using TimelineLanes::Lane;
using TimelineLanes::Mark;
using TimelineLanes::Scale;

namespace ReportPage {
namespace {

// In pixels; page.css has the same.
constexpr int rulerHeight = 26;
constexpr int laneHeight = 40;

constexpr std::size_t longestLabel = 60;
// In percent; scripts know better once they run.
constexpr double leastWidthForName = 1.5;
constexpr double leastWidthForEdge = 0.3;

/// A number without trailing zeros.
std::string number(double value) {
    std::string text = QString::number(value, 'f', 5).toStdString();
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.'))
        text.pop_back();
    return text;
}

std::string attribute(const char* name, const std::string& value) {
    return ' ' + std::string(name) + "=\"" + value + '"';
}

void stretch(Film& film, const Timeline& timeline) {
    for (const TimelineClip& clip : timeline.clips) {
        film.first = std::min(film.first, static_cast<double>(clip.start));
        film.last = std::max(film.last, static_cast<double>(clip.end()));
    }
}

/// Such as "2 effects" and "reversed", with dots between them.
std::string marksOf(const TimelineClip& clip) {
    std::string text = clip.effects.empty() ? "" : Phrases::plural(clip.effects.size(), "effect");
    const auto add = [&text](const std::string& mark) { text += (text.empty() ? "" : " \u00b7 ") + mark; };
    if (clip.isReversed)
        add("reversed");
    if (!clip.isEnabled)
        add("off");
    return text;
}

/// "3 errors, 1 effect lost"
std::string problemsOf(const Clip& clip) {
    std::size_t errors = 0;
    std::size_t warnings = 0;
    for (const Reader::LogLine* line : clip.lines)
        ++(line->isError() ? errors : warnings);
    std::string text;
    const auto add = [&text](std::size_t count, const std::string& noun, const char* more) {
        if (count > 0)
            text += (text.empty() ? "" : ", ") + Phrases::plural(count, noun) + more;
    };
    add(errors, "error", "");
    add(errors > 0 ? 0 : warnings, "warning", "");
    for (const Reader::PartKind kind : {Reader::PartKind::Effect, Reader::PartKind::Title}) {
        const auto isLost = [kind](const Reader::Loss* loss) {
            return loss->part.kind == kind && !loss->isIntended;
        };
        const auto lost = std::count_if(clip.lostParts.begin(), clip.lostParts.end(), isLost);
        add(static_cast<std::size_t>(lost), std::string(Reader::nameOf(kind)), " lost");
    }
    return text;
}

constexpr std::string_view signOf(Fate fate) {
    switch (fate) {
    case Fate::Removed:
    case Fate::Lost:
    case Fate::LeftOut:
        return "\u00d7 ";
    case Fate::Added:
        return "+ ";
    case Fate::Changed:
        return "\u2260 ";
    case Fate::Kept:
        break;
    }
    return "";
}

constexpr std::string_view styleOf(Fate fate) {
    switch (fate) {
    case Fate::Removed:
    case Fate::LeftOut:
        return " gone";
    case Fate::Lost:
        return " gone lost";
    case Fate::Added:
        return " added";
    case Fate::Changed:
        return " changed";
    case Fate::Kept:
        break;
    }
    return "";
}

class Picture {
public:
    Picture(const Film& film, Moment moment, const Clips& clips)
        : m_film(film), m_timeline(moment == Moment::Before ? *film.before : *film.after), m_clips(clips),
          m_scale(film.first, film.last, 100), m_lanes(TimelineLanes::lanesOf(m_timeline)) {
        for (const TimelineClip& clip : m_timeline.clips)
            m_names.emplace(clip.id, &clip);
    }

    std::string draw(const std::string& name) const {
        const int height = rulerHeight + laneHeight * static_cast<int>(m_lanes.size());
        return "<div class=\"strip\"><div class=\"labels\" aria-hidden=\"true\"><span "
               "class=\"corner\"></span>" +
               labels() + "</div><div class=\"scroll\" tabindex=\"0\" role=\"group\" aria-label=\"" + name +
               "; can be scrolled\">\n<svg class=\"picture\" width=\"100%\"" +
               attribute("height", std::to_string(height)) + attribute("data-first", number(m_film.first)) +
               attribute("data-last", number(m_film.last)) + " role=\"group\" aria-label=\"" + name +
               "\">\n" + ruler(height) + lanes() + "</svg></div></div>\n";
    }

private:
    std::string labels() const {
        std::string text;
        for (const Lane& lane : m_lanes) {
            const Reader::Track& track = m_timeline.tracks[lane.track];
            text += "<span>" + Html::escaped(lane.label) +
                    (!lane.label.empty() && track.isMuted ? "<small>muted</small>" : "") +
                    (!lane.label.empty() && track.isHidden ? "<small>hidden</small>" : "") + "</span>";
        }
        return text;
    }

    std::string ruler(int height) const {
        constexpr double leastSpace = 9; // percent
        const double step = m_scale.stepFor(leastSpace);
        std::string text = "<g class=\"ruler\" aria-hidden=\"true\">";
        bool isOdd = false;
        for (const double time : m_scale.marks(step)) {
            const std::string place = number(m_scale.placeOf(static_cast<long long>(time))) + '%';
            const std::string style = isOdd ? " class=\"odd\"" : "";
            text += "<line" + style;
            text += attribute("x1", place) + attribute("x2", place) + " y1=\"18\"" +
                    attribute("y2", std::to_string(height)) + "/><text";
            text += style;
            text += attribute("x", place) + " dx=\"4\" y=\"16\">" + TimelineLanes::markText(time, step) +
                    "</text>";
            isOdd = !isOdd;
        }
        return text + "</g>\n";
    }

    std::string lanes() const {
        const auto marks = TimelineLanes::marksOf(m_timeline, m_lanes);
        std::string text;
        for (std::size_t place = 0; place < m_lanes.size(); ++place) {
            const int y = rulerHeight + laneHeight * static_cast<int>(place);
            text += "<svg class=\"lane\"" + attribute("y", std::to_string(y)) +
                    attribute("height", std::to_string(laneHeight)) + "><rect class=\"ground\"/>\n";
            for (const TimelineClip* clip : m_lanes[place].clips)
                text += clipBar(*clip);
            for (const Mark& mark : marks[place])
                text += transition(mark);
            text += "</svg>\n";
        }
        return text;
    }

    std::string clipBar(const TimelineClip& clip) const {
        const double start = m_scale.placeOf(clip.start);
        const double width = std::max(m_scale.placeOf(clip.end()) - start, 0.0001);
        const auto place = m_clips.placeOf(&clip);
        const Clip* fate = place ? &m_clips.all()[*place] : nullptr;
        const bool isBad = fate && fate->hasErrors();
        const std::string problems = fate ? problemsOf(*fate) : "";
        const std::string marks = marksOf(clip);
        std::string second = std::string(nameOf(clip.kind)) + (marks.empty() ? "" : " \u00b7 " + marks);
        std::string title = nameFor(clip, m_timeline) + (marks.empty() ? "" : ", " + marks);
        if (fate) {
            const std::string became = fateText(*fate);
            title += ", " + became + (problems.empty() ? "" : ", " + problems);
            if (fate->fate != Fate::Kept)
                second = became + " \u00b7 " + second;
            if (!problems.empty())
                second = problems + " \u00b7 " + second;
        }
        const std::string name = Html::shortened(clip.name, longestLabel);
        return "<svg class=\"clip " + std::string(nameOf(clip.kind)) +
               (fate ? std::string(styleOf(fate->fate)) : "") + (isBad ? " bad" : "") +
               (clip.isEnabled ? "" : " off") + (width < leastWidthForName ? " narrow" : "") +
               (width < leastWidthForEdge ? " thin" : "") + '"' +
               (place ? attribute("data-row", std::to_string(*place)) : "") +
               attribute("x", number(start) + '%') + attribute("width", number(width) + '%') +
               " role=\"img\"><title>" + Html::shortened(title, 400) + "</title><rect/>" +
               (fate && fate->isGone() ? "<rect class=\"hatch\"/>" : "") + "<text x=\"8\" y=\"16\">" +
               (isBad  ? "! "
                : fate ? std::string(signOf(fate->fate))
                       : "") +
               name + "</text><text class=\"more\" x=\"8\" y=\"30\">" + Html::shortened(second, 120) +
               "</text></svg>\n";
    }

    std::string transition(const Mark& mark) const {
        const Reader::TimelineTransition& facts = *mark.transition;
        const auto nameOfClip = [&](unsigned long long id) {
            const auto clip = m_names.find(id);
            return clip == m_names.end() ? std::string() : Html::visible(clip->second->name, longestLabel);
        };
        std::string title = "Transition " + Phrases::effectText(facts.className, facts.name) + ", " +
                            timeText(facts.duration) + " long";
        const std::string from = nameOfClip(facts.from);
        const std::string to = nameOfClip(facts.to);
        title += (from.empty() ? "" : ", from " + from) + (to.empty() ? "" : ", to " + to);
        return "<svg class=\"transition\"" + attribute("x", number(m_scale.placeOf(mark.time)) + '%') +
               " width=\"1\" role=\"img\"><title>" + Html::escaped(title) +
               "</title><path d=\"M-7 24 7 36V24L-7 36Z\"/></svg>\n";
    }

    const Film& m_film;
    const Timeline& m_timeline;
    const Clips& m_clips;
    Scale m_scale;
    std::vector<Lane> m_lanes;
    std::unordered_map<unsigned long long, const TimelineClip*> m_names; ///< clips by id
};

const Timeline* find(const Timelines& timelines, unsigned long long id, const Clips& clips) {
    const auto found = std::find_if(timelines.begin(), timelines.end(), [&](const Timeline& timeline) {
        return timeline.id == id || clips.idAfter(timeline.id) == id;
    });
    return found == timelines.end() ? nullptr : &*found;
}

} // namespace

std::string Film::name() const {
    const Timeline& timeline = after ? *after : *before;
    const std::string text =
        Html::visible(timeline.name.empty() ? shown().name : timeline.name, longestLabel);
    return text.empty() ? "Timeline without a name" : text;
}

std::vector<Film> filmsOf(const Facts& facts, const Clips& clips, std::size_t most) {
    std::vector<Film> films;
    if (facts.states.empty())
        return films;
    const Timelines& before = *facts.states.front().timelines;
    const Timelines& after = *facts.states.back().timelines;
    std::unordered_map<unsigned long long, std::size_t> places;
    for (const Timeline& timeline : before) {
        if (timeline.role == Timeline::Role::Unused && timeline.clips.empty())
            continue;
        if (places.emplace(clips.idAfter(timeline.id), films.size()).second)
            films.push_back({clips.idAfter(timeline.id), &timeline});
    }
    for (const Timeline& timeline : after) {
        auto place = places.find(timeline.id);
        // The project's own timeline is one, whatever its ids.
        if (place == places.end() && timeline.role == Timeline::Role::Main && !films.empty() &&
            films.front().before && films.front().before->role == Timeline::Role::Main) {
            films.front().id = timeline.id;
            place = places.emplace(timeline.id, 0).first;
        }
        const bool isSaved =
            clips.isInResult(timeline) &&
            (timeline.clips.empty() ||
             std::any_of(timeline.clips.begin(), timeline.clips.end(),
                         [&](const TimelineClip& clip) { return clips.placeOf(&clip).has_value(); }));
        if (!isSaved)
            continue;
        if (place != places.end())
            films[place->second].after = &timeline;
        else if (timeline.role != Timeline::Role::Unused || !timeline.clips.empty())
            films.push_back({timeline.id, nullptr, &timeline});
    }
    films.resize(std::min(films.size(), most), Film{0});
    std::unordered_map<unsigned long long, Film*> byId;
    for (Film& film : films)
        byId.emplace(film.id, &film);
    const Timelines* last = nullptr;
    for (const State& state : facts.states) {
        if (state.timelines.get() == last)
            continue;
        last = state.timelines.get();
        for (const Timeline& timeline : *last) {
            const auto film = byId.find(clips.idAfter(timeline.id));
            if (film != byId.end())
                stretch(*film->second, timeline);
        }
    }
    for (Film& film : films) {
        for (const Timeline* timeline : {film.before, film.after}) {
            if (timeline)
                stretch(film, *timeline);
        }
    }
    return films;
}

const Timeline* timelineIn(const State& state, const Film& film, const Clips& clips) {
    const Timeline* found = find(*state.timelines, film.id, clips);
    if (!found && film.before)
        found = find(*state.timelines, film.before->id, clips);
    const bool isDropped = found && found->role == Timeline::Role::Unused && film.before &&
                           film.before->role != Timeline::Role::Unused;
    return isDropped ? nullptr : found;
}

std::string picture(const Film& film, Moment moment, const Clips& clips, const std::string& name) {
    const bool isThere = moment == Moment::Before ? film.before != nullptr : film.after != nullptr;
    return isThere ? Picture(film, moment, clips).draw(name) : std::string();
}

std::string legend() {
    constexpr const char* kinds[] = {"video", "image", "audio", "title", "quiz", "timeline"};
    std::string text = "<ul class=\"legend\">";
    for (const char* kind : kinds)
        text += "<li><svg class=\"clip sample " + std::string(kind) +
                "\" aria-hidden=\"true\"><rect/></svg>" + kind + "</li>";
    text += "<li><svg class=\"clip sample gone\" aria-hidden=\"true\"><rect/><rect class=\"hatch\"/></svg>"
            "\u00d7 removed, left out or lost</li>"
            "<li><svg class=\"clip sample added\" aria-hidden=\"true\"><rect/></svg>+ added</li>"
            "<li><svg class=\"clip sample changed\" aria-hidden=\"true\"><rect/></svg>\u2260 changed</li>"
            "<li><svg class=\"clip sample bad\" aria-hidden=\"true\"><rect/></svg>! errors, or something of "
            "it is lost</li>"
            "<li><svg class=\"sample transition\" viewBox=\"-10 22 20 16\" aria-hidden=\"true\"><path "
            "d=\"M-7 24 7 36V24L-7 36Z\"/></svg>transition</li></ul>\n";
    return text;
}

} // namespace ReportPage
