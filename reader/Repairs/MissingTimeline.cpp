#include "Archive/Internal/Reading.h"
#include "Repairs/Internal/ArchiveObjects.h"
#include "Repairs/Makers.h"

#include <algorithm>

using namespace Archive::Internal;

namespace Repairs {
namespace {

constexpr int primaryNumber = 16; ///< of the main track, and its type
constexpr long long unknownDuration = 5000;

// The versions from which a timeline or a timing has a field.
constexpr int sinceHalves = 22;
constexpr int sinceTracks = 27;
constexpr int sinceModes = 29;
constexpr int sincePairs = 46;
constexpr int sinceSpeed = 52;
constexpr int sinceTrackings = 53;

/// The number of the main track in documents up to version 3.
constexpr int oldPrimaryNumber = 1;
constexpr int sinceNumbers = 4;

/// Makes a timeline for an archive that has none, in the shape of its version: the clips follow each other on the main
/// track. Their times were in the timeline that is missing.
class MissingTimeline : public ArchiveRepair {
public:
    bool find(ArchiveEditor& archive, const Place& place) override {
        m_version = place.version;
        const auto objects = projectObjects(archive);
        const bool hasTimeline = std::any_of(objects.begin(), objects.end(), [](const auto& object) {
            return object.type == QLatin1String("Timeline::Object");
        });
        return !hasTimeline && !objects.empty();
    }

    void repair(ArchiveEditor& archive, Changes& changes) override {
        const Elements clips = archive.rootObjects("Timeline::Clip");
        m_timeline = archive.declare("Timeline::Object");
        const QDomElement timeline = archive.appendRootObject("Timeline::Object", m_timeline);
        archive.fields(timeline)
            .string("name", "")
            .number("frameRate", 25.0)
            .int32("width", 1920)
            .int32("height", 1080)
            .array("clips")
            .array("links");
        if (m_version >= sinceTracks)
            addTrack(archive, timeline);
        if (m_version >= sincePairs)
            archive.fields(timeline).array("transitions");
        if (m_version >= sinceTrackings)
            archive.fields(timeline).array("trackingLinks");
        changes.note(timeline);
        for (const QDomElement& clip : clips)
            addClip(archive, timeline, clip, changes);
        referToTimeline(archive);
        changes.describe("a new timeline holds the " + counted(clips.size(), "clip") +
                         ", one after the other on its main track; their times were lost with the old one");
    }

private:
    void addTrack(ArchiveEditor& archive, const QDomElement& timeline) {
        m_track = archive.declare("Timeline::Track");
        const QDomElement track = archive.appendRootObject("Timeline::Track", m_track);
        archive.fields(track)
            .int32("type", primaryNumber)
            .boolean("used", true)
            .boolean("muted", false)
            .boolean("hidden", false)
            .boolean("linked", false)
            .reference("timeline", m_timeline);
        if (m_version >= sincePairs)
            archive.fields(track).boolean("gapless", true);
        archive.fields(timeline).array("tracks");
        archive.appendReference(timeline.firstChildElement("tracks"), m_track);
    }

    void addClip(ArchiveEditor& archive, const QDomElement& timeline, const QDomElement& clip,
                 Changes& changes) {
        const long long own = int64In(clip, "sourceDuration");
        const long long duration = own > 0 ? own : unknownDuration;
        const long long timingId = archive.declare("Timeline::ClipTiming", m_timeline);
        const QDomElement item = archive.appendItem(timeline.firstChildElement("clips"));
        archive.fields(item).reference(Words::Key, wrappedIdOf(clip));
        Fields fields =
            archive.fields(archive.appendObject(item, Words::Value, "Timeline::ClipTiming", timingId));
        if (m_version >= sinceTracks)
            fields.reference("track", m_track);
        else
            fields.int32("track", m_version < sinceNumbers ? oldPrimaryNumber : primaryNumber);
        fields.int32("trackLevel", 0)
            .int64("timestamp", m_end)
            .int64("sourceDuration", duration)
            .int64("sourcePosition", 0)
            .int64("duration", duration);
        if (m_version >= sincePairs)
            fields.int64("transitionIn", 0).int64("transitionOut", 0);
        else
            fields.int64(m_version >= sinceHalves ? "transitionHalf" : "transitionDuration", 0);
        fields.int64("fadeInDuraion", 0).int64("fadeOutDuraion", 0).boolean("reversed", false);
        if (m_version >= sinceModes)
            fields.int32("timingMode", 0);
        if (m_version >= sinceSpeed)
            fields.boolean("speedCompensated", false);
        m_end += duration;
        archive.setField(clip, "timeline", m_timeline);
        changes.note(clip);
    }

    /// The project's content referred to the timeline that is missing.
    void referToTimeline(ArchiveEditor& archive) const {
        for (const auto& [object, type] : projectObjects(archive)) {
            if (type == QLatin1String("Project::Content"))
                archive.setField(object, "timeline", m_timeline);
            else if (type == QLatin1String("Project::PersistentObject"))
                archive.setField(object.firstChildElement("content"), "timeline", m_timeline);
        }
    }

    int m_version = 0;
    long long m_timeline = 0;
    long long m_track = 0;
    long long m_end = 0;
};

} // namespace

std::unique_ptr<ArchiveRepair> makeMissingTimeline() {
    return std::make_unique<MissingTimeline>();
}

} // namespace Repairs
