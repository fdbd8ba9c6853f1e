#include "TimelineSvg.h"

#include "Phrases.h"
#include "TimelineLanes.h"

#include <QString>

#include <algorithm>

using Reader::Timeline;
using Reader::TimelineClip;
using TimelineLanes::Lane;
using TimelineLanes::Mark;
using TimelineLanes::Scale;

namespace TimelineSvg {
namespace {

constexpr double labelWidth = 96;
constexpr double margin = 12;
constexpr double headingHeight = 34;
constexpr double rulerHeight = 24;
constexpr double laneHeight = 30;
constexpr double barHeight = 26;
constexpr std::size_t longestName = 200;

/// Without variables, which many programs for SVG don't know.
constexpr const char* style = R"(
text { font: 12px system-ui, sans-serif; }
.heading { font-size: 15px; font-weight: 600; }
.back { fill: #ffffff; }
.heading { fill: #1d2430; }
.facts, .time, .label { fill: #5c6675; }
.tick { stroke: #d3d9e2; }
.lane { fill: #f2f4f8; }
.clip rect { stroke: #7c8798; stroke-width: 0.5; }
.clip text, .effects { fill: #10151d; }
.video rect { fill: #8ab4f0; }
.image rect { fill: #8fd3b6; }
.audio rect { fill: #f0c674; }
.title rect { fill: #d7a8e8; }
.intro rect, .outro rect { fill: #b9a7ea; }
.quiz rect { fill: #f29c9c; }
.timeline rect { fill: #9ad5e0; }
.unknown rect { fill: #c3c9d2; }
.off { opacity: 0.45; }
.transition { fill: #1d2430; stroke: #ffffff; }
@media (prefers-color-scheme: dark) {
.back { fill: #14181f; }
.heading { fill: #e6eaf0; }
.facts, .time, .label { fill: #98a2b3; }
.tick { stroke: #2b323d; }
.lane { fill: #1b2029; }
.transition { fill: #f4f6f9; stroke: #14181f; }
}
)";

/// A text without control characters inside of XML.
std::string inXml(const std::string& text) {
    QString result = QString::fromStdString(text).toHtmlEscaped();
    for (const char16_t forbidden : {u'\ufffe', u'\uffff'}) // XML can't have these
        result.replace(QChar(forbidden), QChar(QChar::ReplacementCharacter));
    return result.toStdString();
}

/// A text of a document inside of XML, on one line.
std::string escaped(std::string_view text) {
    return inXml(Phrases::shortText(text, longestName));
}

std::string number(double value) {
    return QString::number(value, 'f', 1).toStdString();
}

std::string attribute(const char* name, double value) {
    return ' ' + std::string(name) + "=\"" + number(value) + '"';
}

std::string rectangle(double x, double y, double width, double height, const char* more = "") {
    return "<rect" + attribute("x", x) + attribute("y", y) + attribute("width", width) +
           attribute("height", height) + more + "/>";
}

std::string words(const char* kind, double x, double y, const std::string& escapedText) {
    return "<text class=\"" + std::string(kind) + '"' + attribute("x", x) + attribute("y", y) + '>' +
           escapedText + "</text>\n";
}

/// "Beach, video, 0:00:04.000, 0:00:07.000 long, media/beach.mp4, 2 effects"
std::string descriptionOf(const TimelineClip& clip) {
    std::string text = clip.name.empty() ? "clip without a name" : escaped(clip.name);
    text += ", " + std::string(nameOf(clip.kind)) + ", " + Phrases::timeText(clip.start) + ", " +
            Phrases::timeText(clip.duration) + " long";
    if (!clip.media.empty())
        text += ", " + escaped(clip.media);
    for (const Reader::ClipEffect& effect : clip.effects)
        text += ", effect " + inXml(Phrases::effectText(effect.className, effect.name));
    return text + (clip.isEnabled ? "" : ", switched off");
}

/// A picture of one timeline, from a height of the whole picture on.
class TimelinePicture {
public:
    TimelinePicture(const Timeline& timeline, double width)
        : m_timeline(timeline), m_width(width - labelWidth - 2 * margin), m_scale(timeline, m_width),
          m_lanes(TimelineLanes::lanesOf(timeline)) {}

    double height() const {
        return headingHeight + rulerHeight + laneHeight * static_cast<double>(m_lanes.size()) + margin;
    }

    std::string draw(double top) const {
        const double firstLane = top + headingHeight + rulerHeight;
        std::string text = heading(top) + lanes(firstLane) + ruler(firstLane);
        const auto marks = TimelineLanes::marksOf(m_timeline, m_lanes);
        for (std::size_t lane = 0; lane < m_lanes.size(); ++lane) {
            const double y = firstLane + laneHeight * static_cast<double>(lane);
            for (const TimelineClip* clip : m_lanes[lane].clips)
                text += drawClip(*clip, y);
            for (const Mark& mark : marks[lane])
                text += drawTransition(mark, y);
        }
        return text;
    }

private:
    static constexpr double left = margin + labelWidth;

    std::string heading(double top) const {
        const std::string name =
            m_timeline.name.empty() ? "timeline without a name" : escaped(m_timeline.name);
        return "<text" + attribute("x", margin) + attribute("y", top + 20) + "><tspan class=\"heading\">" +
               name + "</tspan><tspan class=\"facts\" dx=\"10\">" + Phrases::timeText(m_timeline.duration()) +
               ", " + Phrases::plural(m_timeline.clips.size(), "clip") + "</tspan></text>\n";
    }

    std::string lanes(double top) const {
        std::string text;
        for (std::size_t lane = 0; lane < m_lanes.size(); ++lane) {
            const double y = top + laneHeight * static_cast<double>(lane);
            text += rectangle(left, y, m_width, laneHeight - 2, " class=\"lane\"") + '\n' +
                    words("label", margin, y + 18, m_lanes[lane].label);
        }
        return text;
    }

    std::string ruler(double top) const {
        constexpr double spaceBetweenMarks = 90;
        const double bottom = top + laneHeight * static_cast<double>(m_lanes.size());
        const double step = m_scale.stepFor(spaceBetweenMarks);
        std::string text;
        for (const double time : m_scale.marks(step)) {
            const double x = left + m_scale.placeOf(static_cast<long long>(time));
            text += "<line class=\"tick\"" + attribute("x1", x) + attribute("x2", x) +
                    attribute("y1", top - 6) + attribute("y2", bottom) + "/>" +
                    words("time", x + 3, top - 8, TimelineLanes::markText(time, step));
        }
        return text;
    }

    std::string drawClip(const TimelineClip& clip, double y) const {
        constexpr double leastWidth = 1.5;
        constexpr double leastWidthForName = 24;
        const double x = m_scale.placeOf(clip.start);
        const double width = std::max(m_scale.placeOf(clip.end()) - x, leastWidth);
        const std::string description = descriptionOf(clip);
        std::string text = "<g class=\"clip " + std::string(nameOf(clip.kind)) +
                           (clip.isEnabled ? "" : " off") + "\" role=\"img\" aria-label=\"" + description +
                           "\"><title>" + description + "</title>" +
                           rectangle(left + x, y + 1, width, barHeight, " rx=\"3\"");
        if (width >= leastWidthForName)
            text += "<svg" + attribute("x", left + x) + attribute("y", y + 1) +
                    attribute("width", width - 4) + attribute("height", barHeight) +
                    "><text x=\"6\" y=\"15\">" + escaped(clip.name) + "</text></svg>";
        if (!clip.effects.empty() && width >= 8)
            text += "<circle class=\"effects\"" + attribute("cx", left + x + width - 5) +
                    attribute("cy", y + 6) + " r=\"2.5\"/>";
        return text + "</g>\n";
    }

    /// Two triangles that meet where the clips do, below their names and as wide as the transition is long.
    std::string drawTransition(const Mark& mark, double y) const {
        constexpr double leastHalf = 4;
        const double length = static_cast<double>(std::max(mark.transition->duration, 0LL));
        const double start = m_scale.placeOf(mark.time);
        const double end =
            m_scale.placeOf(static_cast<long long>(std::min(static_cast<double>(mark.time) + length, 9e18)));
        const double half = std::max((end - start) / 2, leastHalf);
        const double x = left + start;
        constexpr double halfHeight = 4;
        const double middle = y + 1 + barHeight - halfHeight - 1;
        const std::string name =
            inXml(Phrases::effectText(mark.transition->className, mark.transition->name));
        const auto point = [](double px, double py) { return number(px) + ',' + number(py) + ' '; };
        return "<g role=\"img\" aria-label=\"transition " + name + "\"><title>transition " + name +
               "</title><polygon class=\"transition\" points=\"" + point(x - half, middle - halfHeight) +
               point(x + half, middle + halfHeight) + point(x + half, middle - halfHeight) +
               point(x - half, middle + halfHeight) + "\"/></g>\n";
    }

    const Timeline& m_timeline;
    double m_width;
    Scale m_scale;
    std::vector<Lane> m_lanes;
};

} // namespace

std::string timelineSvg(const std::vector<Timeline>& timelines, const Options& options) {
    const double width = std::max(options.width, 300);
    std::string content;
    double top = margin;
    for (const Timeline& timeline : timelines) {
        if (timeline.role == Timeline::Role::Unused && !options.withUnusedTimelines)
            continue;
        const TimelinePicture picture(timeline, width);
        content += picture.draw(top);
        top += picture.height();
    }
    const std::string title = options.title.empty() ? "Timelines" : escaped(options.title);
    return "<svg xmlns=\"http://www.w3.org/2000/svg\"" + attribute("width", width) +
           attribute("height", top) + " viewBox=\"0 0 " + number(width) + ' ' + number(top) +
           "\" role=\"group\" aria-label=\"" + title + "\">\n<title>" + title + "</title>\n<style>" + style +
           "</style>\n" + rectangle(0, 0, width, top, " class=\"back\"") + '\n' + content + "</svg>\n";
}

} // namespace TimelineSvg
