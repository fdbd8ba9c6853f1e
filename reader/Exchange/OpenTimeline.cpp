#include "Exchange/OpenTimeline.h"

#include "Exchange/Internal/Lanes.h"
#include "Exchange/Internal/ObjectCopies.h"
#include "Exchange/Internal/Urls.h"
#include "Reader/Internal/ProjectView.h"
#include "Reader/Timeline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <set>
#include <stdexcept>
#include <tuple>
#include <unordered_map>
#include <unordered_set>

using nlohmann::json;
using Json = nlohmann::ordered_json;

namespace Reader {
namespace {

using Exchange::JoinedClips;
using Exchange::Lane;
using Exchange::ObjectCopies;
using Kind = Omission::Kind;

/// Times up to this number of milliseconds, 285 years, are exact in all that readers compute with them.
constexpr long long greatestTime = 9'007'199'254'740;
constexpr std::size_t mostNestedTimelines = 16;
/// How many tracks and clips of timelines that were written already are written again: so many, and so many for each
/// clip of the project.
constexpr std::size_t repeatedItems = 1'000;
constexpr std::size_t repeatedItemsOfClip = 10;

bool isExact(long long time) {
    return time >= -greatestTime && time <= greatestTime;
}

Json metadata(Json content) {
    return {{exportMetadataKey, std::move(content)}};
}

/// The frame rate of a timeline, for its times. Whole frames have it; all else is in milliseconds, which are always
/// exact.
class Times {
public:
    explicit Times(const std::optional<double>& frameRate) {
        constexpr double greatestRate = 1000;
        if (frameRate && *frameRate >= 1 && *frameRate <= greatestRate &&
            *frameRate == std::floor(*frameRate))
            m_rate = static_cast<long long>(*frameRate);
    }

    Json time(long long milliseconds) const {
        constexpr long long second = 1000;
        const long long parts = milliseconds * m_rate;
        const bool isWhole = parts % second == 0;
        return {{"OTIO_SCHEMA", "RationalTime.1"},
                {"rate", static_cast<double>(isWhole ? m_rate : second)},
                {"value", static_cast<double>(isWhole ? parts / second : milliseconds)}};
    }

    Json range(long long start, long long duration) const {
        return {{"OTIO_SCHEMA", "TimeRange.1"}, {"duration", time(duration)}, {"start_time", time(start)}};
    }

private:
    long long m_rate = 1000; ///< per second
};

/// What all items have. Readers write the fields in this order.
Json item(const char* schema, Json metadata, const std::string& name, Json sourceRange) {
    return {{"OTIO_SCHEMA", schema},
            {"metadata", std::move(metadata)},
            {"name", name},
            {"source_range", std::move(sourceRange)},
            {"effects", Json::array()},
            {"markers", Json::array()},
            {"enabled", true},
            {"color", nullptr}};
}

Json gap(const Times& times, long long duration) {
    return item("Gap.1", Json::object(), {}, times.range(0, duration));
}

Json effect(Json metadata, const std::string& name, const std::string& effectName, bool isEnabled = true) {
    return {{"OTIO_SCHEMA", "Effect.1"},
            {"metadata", std::move(metadata)},
            {"name", name},
            {"effect_name", effectName},
            {"enabled", isEnabled}};
}

/// How fast a clip plays its source; below 0 for a reversed one. Quirk: no field says so. The clip has the length of its
/// source, and its place has the length that the source has when it is played.
double speedOf(const TimelineClip& clip) {
    const bool hasSpeed =
        clip.kind == ClipKind::Video || clip.kind == ClipKind::Audio || clip.kind == ClipKind::Nested;
    double speed = 1;
    if (hasSpeed && !clip.isUnlimited && clip.ownDuration > 0 && clip.sourceDuration > 0)
        speed = Exchange::roundedForReaders(static_cast<double>(clip.ownDuration) /
                                            static_cast<double>(clip.sourceDuration));
    return clip.isReversed ? -speed : speed;
}

class Exporter {
public:
    explicit Exporter(const JsonDocument& document, std::vector<Timeline> timelines)
        : m_document(document), m_view(document), m_timelines(std::move(timelines)), m_copies(document) {
        for (std::size_t place = 0; place < m_timelines.size(); ++place)
            m_places.emplace(m_timelines[place].id, place);
        for (const FlatView::Value object : m_view.ofClass(QStringLiteral("Timeline::Object")))
            m_objects.emplace(FlatView::idOf(object), object);
        for (const Timeline& timeline : m_timelines) {
            reserveParts(timeline);
            m_repeatableItems += repeatedItemsOfClip * timeline.clips.size();
        }
    }

    TimelineExport write() {
        const Timeline empty;
        const bool hasMain = !m_timelines.empty() && m_timelines.front().role == Timeline::Role::Main;
        const Timeline& main = hasMain ? m_timelines.front() : empty;
        Json tracks = stack(main);
        for (const Timeline& timeline : m_timelines) {
            if (timeline.role == Timeline::Role::Unused)
                omit(Kind::UnusedTimeline, timeline.id, timeline.id, timeline.name);
        }
        Json root = m_copies.take(m_document.root);
        Json project = {{"objects", m_copies.rest()}, {"project", std::move(root)}};
        Json start = main.frameRate && *main.frameRate > 0 && std::isfinite(*main.frameRate)
                         ? Json{{"OTIO_SCHEMA", "RationalTime.1"},
                                {"rate", Exchange::roundedForReaders(*main.frameRate)},
                                {"value", 0.0}}
                         : Json();
        m_result.document = {{"OTIO_SCHEMA", "Timeline.1"},
                             {"metadata", metadata(std::move(project))},
                             {"name", m_copies.text(main.name)},
                             {"global_start_time", std::move(start)},
                             {"tracks", std::move(tracks)}};
        if (m_copies.hasChangedTexts())
            omit(Kind::Text, 0, 0, {});
        return std::move(m_result);
    }

private:
    /// A timeline may be written several times; what is left out of it is listed once.
    void omit(Kind kind, unsigned long long timeline, unsigned long long object, const std::string& name,
              const std::string& detail = {}) {
        if (m_omitted.emplace(kind, timeline, object, detail).second)
            m_result.omissions.push_back({kind, timeline, object, name, detail});
    }

    /// These objects have places of their own in the export.
    void reserveParts(const Timeline& timeline) {
        m_copies.reserve(timeline.id);
        for (const Track& track : timeline.tracks)
            m_copies.reserve(track.id);
        for (const TimelineClip& clip : timeline.clips)
            m_copies.reserve(clip.id);
        for (const TimelineTransition& transition : timeline.transitions)
            m_copies.reserve(transition.id);
    }

    // Timelines

    /// What the parts of one timeline need while they are written.
    struct Context {
        const Timeline& timeline;
        Times times;
        std::vector<bool> isPlaced; ///< whether each clip is on a track
        JoinedClips joined;
        bool isFirst; ///< whether the timeline was not written before
    };

    void omit(const Context& context, Kind kind, unsigned long long object, const std::string& name,
              const std::string& detail = {}) {
        omit(kind, context.timeline.id, object, name, detail);
    }

    void omit(const Context& context, Kind kind, const TimelineClip& clip, const std::string& detail = {}) {
        omit(context, kind, clip.id, clip.name, detail);
    }

    /// The tracks of a timeline, with nothing around them.
    Json stack(const Timeline& timeline) {
        Context context{
            timeline, Times(timeline.frameRate), {}, {}, m_writtenTimelines.insert(timeline.id).second};
        ++m_result.timelines;
        m_path.insert(timeline.id);
        for (const TimelineClip& clip : timeline.clips) {
            const bool isPlaced = clip.start >= 0 && isExact(clip.start) && isExact(clip.end());
            context.isPlaced.push_back(isPlaced);
            if (!isPlaced)
                omit(context, Kind::ClipPlace, clip);
        }
        context.joined = Exchange::joinClips(timeline, context.isPlaced);
        listTransitions(context);
        Json children = tracks(context);
        Json result = item("Stack.1", {}, "tracks", nullptr);
        result["children"] = std::move(children);
        result["metadata"] = metadata({{"timeline", timelineFields(context)}});
        m_path.erase(timeline.id);
        return result;
    }

    /// The fields of a timeline, with those clips and transitions that are on no track.
    Json timelineFields(const Context& context) {
        const Timeline& timeline = context.timeline;
        const auto object = m_objects.find(timeline.id);
        Json fields = m_copies.take(timeline.id, {"clips", "transitions"});
        if (!context.isFirst || object == m_objects.end() || !fields.is_object())
            return fields;
        const FlatView::Value entries = FlatView::field(object->second, m_clipsField);
        fields["clips"] = otherEntries(*entries, [&](std::size_t place) { return context.isPlaced[place]; });
        const std::unordered_set<std::size_t> left = leftTransitions(context);
        const FlatView::Value transitions = FlatView::field(object->second, m_transitionsField);
        fields["transitions"] =
            otherEntries(*transitions, [&](std::size_t place) { return !left.contains(place); });
        listLinks(context, object->second);
        return json(fields); // sorts them, as readers do
    }

    template <class IsWritten>
    Json otherEntries(const json& entries, const IsWritten& isWritten) {
        Json others = Json::array();
        std::size_t place = 0;
        if (entries.is_structured()) {
            for (const json& entry : entries) {
                if (!isWritten(place++))
                    others.push_back(m_copies.value(entry));
            }
        }
        return others;
    }

    static std::unordered_set<std::size_t> leftTransitions(const Context& context) {
        std::unordered_set<std::size_t> left(context.joined.misplaced.begin(),
                                             context.joined.misplaced.end());
        left.insert(context.joined.tooLong.begin(), context.joined.tooLong.end());
        return left;
    }

    void listTransitions(const Context& context) {
        const auto list = [&](Kind kind, const std::vector<std::size_t>& places) {
            for (const std::size_t place : places) {
                const TimelineTransition& transition = context.timeline.transitions[place];
                omit(context, kind, transition.id, transition.name);
            }
        };
        list(Kind::TransitionPlace, context.joined.misplaced);
        list(Kind::TransitionLength, context.joined.tooLong);
    }

    void listLinks(const Context& context, FlatView::Value timeline) {
        std::unordered_map<unsigned long long, std::string> names;
        for (const TimelineClip& clip : context.timeline.clips)
            names.emplace(clip.id, clip.name);
        for (const char* name : {"links", "trackingLinks"}) {
            for (const FlatView::Value link : FlatView::items(FlatView::field(timeline, FieldName(name)))) {
                const unsigned long long id = FlatView::targetId(FlatView::field(link, m_slaveField));
                omit(context, Kind::Link, id, names[id], name);
            }
        }
    }

    // Tracks

    /// The lowest first.
    Json tracks(const Context& context) {
        const Timeline& timeline = context.timeline;
        std::map<std::pair<std::size_t, long long>, std::vector<std::size_t>> levels;
        std::unordered_set<std::size_t> used;
        for (std::size_t clip = 0; clip < timeline.clips.size(); ++clip) {
            used.insert(timeline.clips[clip].track);
            if (context.isPlaced[clip])
                levels[{timeline.clips[clip].track, timeline.clips[clip].level}].push_back(clip);
        }
        for (std::size_t track = 0; track < timeline.tracks.size(); ++track) {
            if (levels.lower_bound({track, std::numeric_limits<long long>::min()}) ==
                levels.lower_bound({track + 1, std::numeric_limits<long long>::min()}))
                levels[{track, 0}]; // a track without clips
        }
        std::vector<Json> upperFirst;
        for (auto& [place, clips] : levels) {
            std::vector<Lane> lanes = Exchange::lanesOf(timeline, std::move(clips), context.joined);
            if (lanes.empty())
                lanes.emplace_back();
            for (std::size_t lane = 0; lane < lanes.size(); ++lane)
                upperFirst.push_back(track(context, lanes[lane], {place.first, place.second, lane}));
        }
        Json children = Json::array();
        for (auto track = upperFirst.rbegin(); track != upperFirst.rend(); ++track)
            children.push_back(std::move(*track));
        return children;
    }

    struct LanePlace {
        std::size_t track;
        long long level;
        std::size_t lane;
    };

    Json track(const Context& context, const Lane& lane, const LanePlace& place) {
        const Track& facts = context.timeline.tracks[place.track];
        const bool isAudio = facts.kind == TrackKind::Audio;
        const std::string kind(nameOf(facts.kind));
        Json result =
            item("Track.1", {}, kind + (place.level == 0 ? "" : ' ' + std::to_string(place.level)), nullptr);
        result["enabled"] = !(isAudio ? facts.isMuted : facts.isHidden);
        if (place.lane == 0 && (isAudio ? facts.isHidden : facts.isMuted))
            omit(context, isAudio ? Kind::TrackHidden : Kind::TrackMuted, facts.id, kind);
        result["children"] = laneItems(context, lane);
        result["kind"] = isAudio ? "Audio" : "Video";
        result["metadata"] = metadata({{"kind", kind},
                                       {"lane", place.lane},
                                       {"level", place.level},
                                       {"track", m_copies.take(facts.id)}});
        return result;
    }

    /// Clips with the gaps and transitions between them.
    Json laneItems(const Context& context, const Lane& lane) {
        Json items = Json::array();
        long long end = 0;
        bool isBehindGap = false;
        const auto addGap = [&](long long duration) {
            items.push_back(gap(context.times, duration));
            isBehindGap = true;
        };
        for (const std::size_t clip : lane) {
            const TimelineClip& facts = context.timeline.clips[clip];
            if (facts.start > end)
                addGap(facts.start - end);
            const Ends ends = endsOf(context, clip);
            if (ends.in && !ends.isJoinedIn) {
                if (!isBehindGap)
                    addGap(0); // a transition from nothing
                items.push_back(transition(context, *ends.in));
            }
            items.push_back(clipItem(context, facts));
            isBehindGap = false;
            end = facts.end();
            if (ends.out) {
                items.push_back(transition(context, *ends.out));
                if (!ends.isJoinedOut)
                    addGap(0); // a transition to nothing
            }
        }
        return items;
    }

    struct Ends : Exchange::ClipTransitions {
        bool isJoinedIn = false;
        bool isJoinedOut = false;
    };

    static Ends endsOf(const Context& context, std::size_t clip) {
        Ends ends;
        const auto found = context.joined.ends.find(clip);
        if (found == context.joined.ends.end())
            return ends;
        ends.in = found->second.in;
        ends.out = found->second.out;
        const auto& transitions = context.timeline.transitions;
        ends.isJoinedIn = ends.in && transitions[*ends.in].from != 0;
        ends.isJoinedOut = ends.out && transitions[*ends.out].to != 0;
        return ends;
    }

    Json transition(const Context& context, std::size_t place) {
        const TimelineTransition& facts = context.timeline.transitions[place];
        const bool isDissolve = facts.className == "Transition::Crossfade";
        return {{"OTIO_SCHEMA", "Transition.1"},
                {"metadata", metadata({{"transition", m_copies.take(facts.id)}})},
                {"name", m_copies.text(facts.name.empty() ? facts.className : facts.name)},
                {"in_offset", context.times.time(facts.before)},
                {"out_offset", context.times.time(facts.after)},
                {"transition_type", isDissolve ? "SMPTE_Dissolve" : "Custom_Transition"}};
    }

    // Clips

    Json clipItem(const Context& context, const TimelineClip& clip) {
        ++m_result.clips;
        if (clip.duration < 0)
            omit(context, Kind::ClipLength, clip);
        if (!isExact(clip.sourceStart))
            omit(context, Kind::SourceRange, clip);
        const long long start = isExact(clip.sourceStart) ? clip.sourceStart : 0;
        const Json range = context.times.range(start, clip.end() - clip.start);
        const bool isStack = (clip.kind == ClipKind::Nested || clip.nested != 0) && canWrite(context, clip);
        Json result = item(isStack ? "Stack.1" : "Clip.2", {}, m_copies.text(clip.name), range);
        result["effects"] = effects(clip);
        result["markers"] = markers(clip, range);
        result["enabled"] = clip.isEnabled;
        Json own;
        if (isStack) {
            Json nested = stack(m_timelines[m_places.at(clip.nested)]);
            own["timeline"] = std::move(nested["metadata"][exportMetadataKey]["timeline"]);
            result["children"] = std::move(nested["children"]);
        } else {
            result["media_references"] = {{"DEFAULT_MEDIA", mediaReference(context, clip)}};
            result["active_media_reference_key"] = "DEFAULT_MEDIA";
        }
        listFeatures(context, clip);
        Json fields = {{"clip", m_copies.take(clip.id)}};
        if (!clip.texts.empty()) {
            fields["texts"] = Json::array();
            for (const std::string& text : clip.texts)
                fields["texts"].push_back(m_copies.text(text));
        }
        if (!own.is_null())
            fields.update(own);
        fields["timing"] = m_copies.take(clip.timing);
        result["metadata"] = metadata(std::move(fields));
        return result;
    }

    /// Whether the timeline that the clip shows is written in its place.
    bool canWrite(const Context& context, const TimelineClip& clip) {
        const auto place = m_places.find(clip.nested);
        if (place == m_places.end()) {
            omit(context, Kind::NestedMissing, clip);
            return false;
        }
        if (m_path.contains(clip.nested)) {
            omit(context, Kind::NestedCircle, clip);
            return false;
        }
        if (m_path.size() > mostNestedTimelines) {
            omit(context, Kind::NestedDepth, clip);
            return false;
        }
        if (m_writtenTimelines.contains(clip.nested)) {
            const Timeline& nested = m_timelines[place->second];
            const std::size_t items = 1 + nested.tracks.size() + nested.clips.size();
            if (items > m_repeatableItems) {
                omit(context, Kind::NestedSize, clip);
                return false;
            }
            m_repeatableItems -= items;
        }
        return true;
    }

    Json effects(const TimelineClip& clip) {
        Json list = Json::array();
        const double speed = speedOf(clip);
        if (speed != 1) {
            Json warp = effect(Json::object(), clip.isReversed ? "Reversed" : "Speed", "LinearTimeWarp");
            warp["OTIO_SCHEMA"] = "LinearTimeWarp.1";
            warp["time_scalar"] = speed;
            list.push_back(std::move(warp));
        }
        if (clip.volume != 100)
            list.push_back(effect(metadata({{"percent", clip.volume}}), "Volume", "volume"));
        if (clip.fadeIn != 0)
            list.push_back(effect(metadata({{"milliseconds", clip.fadeIn}}), "Fade in", "fadeIn"));
        if (clip.fadeOut != 0)
            list.push_back(effect(metadata({{"milliseconds", clip.fadeOut}}), "Fade out", "fadeOut"));
        for (const ClipEffect& facts : clip.effects) {
            Json content = m_copies.take(facts.id);
            list.push_back(effect(metadata({{"effect", std::move(content)}}),
                                  m_copies.text(facts.name.empty() ? facts.className : facts.name),
                                  m_copies.text(facts.className), !facts.isBypassed));
        }
        return list;
    }

    /// A label is a text for the whole clip.
    Json markers(const TimelineClip& clip, const Json& range) {
        Json list = Json::array();
        for (const std::string& label : clip.labels)
            list.push_back({{"OTIO_SCHEMA", "Marker.2"},
                            {"metadata", Json::object()},
                            {"name", m_copies.text(label)},
                            {"color", "RED"},
                            {"marked_range", range},
                            {"comment", ""}});
        return list;
    }

    Json mediaReference(const Context& context, const TimelineClip& clip) {
        const bool isGenerated =
            clip.media.empty() && (clip.kind == ClipKind::Title || clip.kind == ClipKind::Intro ||
                                   clip.kind == ClipKind::Outro || !clip.texts.empty());
        const bool hasMarker = Exchange::hasFolderMarker(clip.media);
        if (hasMarker)
            omit(context, Kind::MediaFolder, clip, clip.media);
        const std::string_view schema = isGenerated                       ? "GeneratorReference.1"
                                        : hasMarker || clip.media.empty() ? "MissingReference.1"
                                                                          : "ExternalReference.1";
        const std::string name = m_copies.text(clip.media.substr(clip.media.find_last_of("/\\") + 1));
        Json reference = {{"OTIO_SCHEMA", schema},
                          {"metadata", Json::object()},
                          {"name", isGenerated ? std::string(nameOf(clip.kind)) : name},
                          {"available_range", availableRange(context, clip, isGenerated)},
                          {"available_image_bounds", nullptr}};
        if (clip.file != 0)
            reference["metadata"] = metadata({{"file", m_copies.take(clip.file)}});
        if (isGenerated) {
            std::string words;
            for (const std::string& text : clip.texts)
                words += (words.empty() ? "" : "\n") + text;
            reference["generator_kind"] = nameOf(clip.kind);
            reference["parameters"] = {{"text", m_copies.text(words)}};
        } else if (schema == "ExternalReference.1") {
            reference["target_url"] = Exchange::urlOf(clip.media);
        }
        return reference;
    }

    /// The whole file; null where its length is not known. A title has as much as it is asked for.
    Json availableRange(const Context& context, const TimelineClip& clip, bool isGenerated) {
        const long long length = clip.fileDuration > 0 ? clip.fileDuration : clip.ownDuration;
        if (length <= 0 || (isGenerated && clip.isUnlimited))
            return nullptr;
        if (isExact(length))
            return context.times.range(0, length);
        omit(context, Kind::MediaRange, clip);
        return nullptr;
    }

    void listFeatures(const Context& context, const TimelineClip& clip) {
        const auto object = m_document.flat.objects.find(clip.id);
        if (object == m_document.flat.objects.end())
            return;
        for (const FieldName& name : m_clipFeatures) {
            const json& value = *FlatView::field(&object->second, name);
            if (linkTarget(value) != 0 || (value.is_array() && !value.empty()))
                omit(context, Kind::ClipFeature, clip, name.json);
        }
        for (const FlatView::Value label : FlatView::items(FlatView::field(&object->second, m_labelsField))) {
            if (FlatView::text(label).empty())
                omit(context, Kind::Label, clip);
        }
    }

    /// Fields of a clip that other programs don't see: they are only in its metadata.
    const std::array<FieldName, 7> m_clipFeatures = {FieldName("cropEnvelope"),   FieldName("moveEnvelope"),
                                                     FieldName("volumeEnvelope"), FieldName("stabilization"),
                                                     FieldName("rhythm"),         FieldName("quiz"),
                                                     FieldName("motionTrackings")};
    const FieldName m_labelsField{"labels"};
    const FieldName m_slaveField{"slave"};
    const FieldName m_clipsField{"clips"};
    const FieldName m_transitionsField{"transitions"};
    const JsonDocument& m_document;
    const FlatView m_view;
    const std::vector<Timeline> m_timelines;
    ObjectCopies m_copies;
    TimelineExport m_result;
    std::unordered_map<unsigned long long, std::size_t> m_places;      ///< in m_timelines, by id
    std::unordered_map<unsigned long long, FlatView::Value> m_objects; ///< of timelines, by id
    std::unordered_set<unsigned long long> m_writtenTimelines;
    std::unordered_set<unsigned long long> m_path; ///< timelines that are being written
    std::set<std::tuple<Kind, unsigned long long, unsigned long long, std::string>> m_omitted;
    std::size_t m_repeatableItems = repeatedItems;
};

} // namespace

std::string_view nameOf(Omission::Kind kind) {
    constexpr std::array<std::string_view, 18> names = {"clip-place",        "clip-length",
                                                        "source-range",      "media-range",
                                                        "media-folder",      "nested-missing",
                                                        "nested-circle",     "nested-depth",
                                                        "nested-size",       "transition-place",
                                                        "transition-length", "track-muted",
                                                        "track-hidden",      "label",
                                                        "clip-feature",      "link",
                                                        "unused-timeline",   "text"};
    return names[static_cast<std::size_t>(kind)];
}

TimelineExport exportTimeline(const Document& document) {
    if (document.isXml())
        throw std::invalid_argument("only JSON can be exported");
    return Exporter(document.json(), readTimelines(document)).write();
}

std::string openTimelineText(const Json& document) {
    return document.dump(4, ' ', false, Json::error_handler_t::replace) + '\n';
}

} // namespace Reader
