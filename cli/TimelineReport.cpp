#include "TimelineReport.h"

#include "Phrases.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <sstream>

using Phrases::inQuotes;
using Phrases::plural;
using Phrases::timeText;
using Reader::MediaFile;
using Reader::Presence;
using Reader::Timeline;
using Reader::TimelineClip;

namespace TimelineReport {
namespace {

constexpr std::size_t mostFilesShown = 50;
constexpr std::size_t longestPath = 200;

std::string presenceText(Presence presence) {
    constexpr std::array names = {"present", "missing", "unknown"};
    return names[static_cast<std::size_t>(presence)];
}

/// "1920 x 1080, 25 frames per second"; empty where the document says nothing of it
std::string pictureText(const Timeline& timeline) {
    std::ostringstream out;
    if (timeline.width && timeline.height)
        out << *timeline.width << " x " << *timeline.height;
    if (timeline.frameRate)
        out << (out.str().empty() ? "" : ", ") << *timeline.frameRate << " frames per second";
    return out.str();
}

std::string headingOf(const Timeline& timeline) {
    const std::string picture = pictureText(timeline);
    return (timeline.name.empty() ? "timeline without a name" : inQuotes(timeline.name)) + ", " +
           std::string(nameOf(timeline.role)) + ": " + timeText(timeline.duration()) + ", " +
           plural(timeline.tracks.size(), "track") + ", " + plural(timeline.clips.size(), "clip") + ", " +
           plural(timeline.transitions.size(), "transition") + (picture.empty() ? "" : ", " + picture);
}

/// The heading of a picture, in less than 60 characters.
std::string shortHeadingOf(const Timeline& timeline) {
    constexpr std::size_t longestName = 20;
    return (timeline.name.empty() ? "timeline without a name" : inQuotes(timeline.name, longestName)) + ", " +
           std::string(nameOf(timeline.role)) + ", " + timeText(timeline.duration());
}

/// "12 video, 3 title"
std::string kindsOf(const Timeline& timeline, std::size_t track) {
    std::map<Reader::ClipKind, std::size_t> counts;
    for (const TimelineClip& clip : timeline.clips) {
        if (clip.track == track)
            ++counts[clip.kind];
    }
    std::string text;
    for (const auto& [kind, count] : counts)
        text += (text.empty() ? "" : ", ") + std::to_string(count) + ' ' + std::string(nameOf(kind));
    return text.empty() ? "no clips" : text;
}

std::string tracksText(const Timeline& timeline) {
    std::string text;
    for (std::size_t track = 0; track < timeline.tracks.size(); ++track) {
        const Reader::Track& facts = timeline.tracks[track];
        std::string name(nameOf(facts.kind));
        name.resize(std::max<std::size_t>(name.size(), 8), ' ');
        text += "          " + name + "  " + kindsOf(timeline, track) + (facts.isMuted ? ", muted" : "") +
                (facts.isHidden ? ", hidden" : "") + '\n';
    }
    return text;
}

std::string mediaText(const Project& project) {
    const std::vector<MediaFile> files = Reader::mediaOf(project.timelines);
    std::ostringstream list;
    std::map<Presence, std::size_t> counts;
    std::size_t shown = 0;
    for (const MediaFile& file : files) {
        const Presence presence = Reader::presenceOf(file.path, project.folder);
        ++counts[presence];
        if (++shown <= mostFilesShown)
            list << "          " << presenceText(presence) << "  "
                 << Phrases::shortText(file.path, longestPath) << '\n';
    }
    if (files.size() > mostFilesShown)
        list << "          and " << plural(files.size() - mostFilesShown, "file")
             << " more; --json lists all\n";
    std::string text = "  media:   " + plural(files.size(), "file");
    if (counts[Presence::Missing] > 0)
        text += ", " + std::to_string(counts[Presence::Missing]) + " missing";
    return text + '\n' + list.str();
}

} // namespace

std::string text(const Project& project, const std::optional<TimelineDrawing::Style>& drawing) {
    std::string out = "  timelines: " + std::to_string(project.timelines.size()) + '\n';
    for (const Timeline& timeline : project.timelines)
        out += "        " + headingOf(timeline) + '\n' + tracksText(timeline);
    out += mediaText(project);
    if (!drawing)
        return out;
    for (const Timeline& timeline : project.timelines)
        out += '\n' + shortHeadingOf(timeline) + '\n' + TimelineDrawing::draw(timeline, *drawing);
    return out + '\n' + TimelineDrawing::legend(*drawing);
}

} // namespace TimelineReport
