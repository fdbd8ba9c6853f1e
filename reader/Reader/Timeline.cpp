#include "Reader/Timeline.h"

#include "FS/FS.h"
#include "Reader/Internal/ProjectView.h"

#include <QFileInfo>
#include <QXmlStreamReader>

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <unordered_map>
#include <unordered_set>

namespace Reader {
namespace {

const QString timelineClass = QStringLiteral("Timeline::Object");

/// The fields that are read, with the versions in which they changed their place.
namespace Fields {
const FieldName content("content");   ///< of the root object from version 57 on
const FieldName timeline("timeline"); ///< of the content from version 35 on
const FieldName name("name");
const FieldName width("width");
const FieldName height("height");
const FieldName frameRate("frameRate");
const FieldName tracks("tracks"); ///< from version 27 on
const FieldName type("type");
const FieldName muted("muted");
const FieldName hidden("hidden");
const FieldName timestamp("timestamp");
const FieldName duration("duration");
const FieldName sourcePosition("sourcePosition");
const FieldName sourceDuration("sourceDuration");
const FieldName track("track");           ///< a number before version 27, then a reference
const FieldName trackLevel("trackLevel"); ///< up to version 76
const FieldName reversed("reversed");
const FieldName enabled("enabled");
const FieldName file("file");
const FieldName path("path");
const FieldName effects("effects");
const FieldName tag("tag");
const FieldName bypass("bypass"); ///< from version 55 on
const FieldName volume("volume");
const FieldName unlimitedDuration("unlimitedDuration"); ///< from version 36 on
const FieldName labels("labels");                       ///< from version 28 on
const FieldName fadeIn("fadeInDuration");               ///< from version 77 on
const FieldName fadeOut("fadeOutDuration");
// Quirk: two names were misspelt up to version 76.
const FieldName oldFadeIn("fadeInDuraion");
const FieldName oldFadeOut("fadeOutDuraion");
const FieldName overlay("overlay");
const FieldName items("items");
const FieldName text("text");               ///< up to version 49
const FieldName encodedText("encodedText"); ///< from version 50 on, base64
const FieldName nestedTimeline("nestedTimeline");
const FieldName transition("transition");                 ///< of a clip, up to version 45
const FieldName transitionDuration("transitionDuration"); ///< up to version 21
const FieldName transitionHalf("transitionHalf");         ///< versions 22 to 45
const FieldName transitionIn("transitionIn");             ///< from version 46 on
const FieldName transitionOut("transitionOut");
} // namespace Fields

template <class Key, class Kind>
struct Meaning {
    Key number;
    Kind kind;
};

constexpr Meaning<long long, ClipKind> clipKinds[] = {
    {1, ClipKind::Video}, {2, ClipKind::Image},  {3, ClipKind::Audio}, {4, ClipKind::Title},
    {8, ClipKind::Intro}, {16, ClipKind::Outro}, {32, ClipKind::Quiz}, {64, ClipKind::Nested},
};

/// The number of a track in a timing up to version 3.
constexpr Meaning<long long, TrackKind> trackKindsToV3[] = {
    {1, TrackKind::Main},   {2, TrackKind::Audio},   {3, TrackKind::Overlay},
    {4, TrackKind::Titles}, {5, TrackKind::Quizzes},
};

/// The number of a track in a timing up to version 26, and the `type` of tracks up to version 71.
constexpr Meaning<long long, TrackKind> trackKindsToV71[] = {
    {16, TrackKind::Main},    {32, TrackKind::Second}, {48, TrackKind::Audio},
    {64, TrackKind::Overlay}, {80, TrackKind::Titles}, {96, TrackKind::Quizzes},
};

constexpr Meaning<long long, TrackKind> trackKindsFromV72[] = {
    {1, TrackKind::Main},    {2, TrackKind::Second},  {4, TrackKind::Audio},
    {8, TrackKind::Overlay}, {16, TrackKind::Titles},
};

template <class Table, class Kind>
Kind kindIn(const Table& table, long long number, Kind otherwise) {
    const auto* row =
        std::find_if(std::begin(table), std::end(table), [&](const auto& r) { return r.number == number; });
    return row == std::end(table) ? otherwise : row->kind;
}

/// Whether tracks have the numbers that version 72 brought.
enum class TrackNumbers { ToV71, FromV72 };

TrackKind trackKind(long long type, TrackNumbers numbers) {
    return numbers == TrackNumbers::FromV72 ? kindIn(trackKindsFromV72, type, TrackKind::Unknown)
                                            : kindIn(trackKindsToV71, type, TrackKind::Unknown);
}

/// The characters of a text with HTML markup; the text itself if it has none, and nothing for other XML.
std::string plainText(const QString& text) {
    if (!text.trimmed().startsWith(QLatin1Char('<')))
        return text.toStdString();
    QXmlStreamReader xml(text);
    if (!xml.readNextStartElement() || xml.name() != QLatin1String("html"))
        return {};
    QString characters;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && xml.name() == QLatin1String("style"))
            xml.skipCurrentElement();
        else if (xml.isCharacters())
            characters += xml.text();
    }
    return characters.simplified().toStdString();
}

template <class View>
class TimelineReader {
public:
    using Value = typename View::Value;

    TimelineReader(const View& view, TrackNumbers numbers) : m_view(view), m_numbers(numbers) {}

    std::vector<Timeline> read() {
        for (const Value& object : m_view.ofClass(timelineClass)) {
            const unsigned long long id = View::idOf(object);
            if (m_places.emplace(id, m_read.size()).second)
                m_read.push_back(readTimeline(object));
        }
        take(mainTimeline(), Timeline::Role::Main);
        for (std::size_t place = 0; place < m_result.size(); ++place) {
            for (std::size_t clip = 0; clip < m_result[place].clips.size(); ++clip)
                take(m_result[place].clips[clip].nested, Timeline::Role::Nested);
        }
        for (Timeline& timeline : m_read) {
            if (timeline.id != 0)
                take(timeline.id, Timeline::Role::Unused);
        }
        return std::move(m_result);
    }

private:
    /// The root object itself up to version 34, then a field of it.
    unsigned long long mainTimeline() const {
        const Value root = m_view.root();
        if (View::classOf(root) == timelineClass.toStdString())
            return View::idOf(root);
        const Value content = View::field(root, Fields::content);
        const Value holder = View::isNone(content) ? root : m_view.target(content);
        return View::idOf(m_view.target(View::field(holder, Fields::timeline)));
    }

    /// Moves a timeline to the result, unless it is there already.
    void take(unsigned long long id, Timeline::Role role) {
        const auto place = m_places.find(id);
        if (place == m_places.end())
            return;
        m_result.push_back(std::move(m_read[place->second]));
        m_result.back().role = role;
        m_read[place->second].id = 0;
        m_places.erase(place);
    }

    Timeline readTimeline(const Value& object) {
        Timeline timeline{View::idOf(object)};
        timeline.name = View::text(View::field(object, Fields::name));
        timeline.width = View::integer(View::field(object, Fields::width));
        timeline.height = View::integer(View::field(object, Fields::height));
        timeline.frameRate = View::real(View::field(object, Fields::frameRate));
        const auto entries = View::clipEntries(object);
        m_tracks.clear();
        m_numberedTracks.clear();
        addNumberedTracks(timeline, entries);
        for (const Value& track : View::items(View::field(object, Fields::tracks)))
            addTrack(timeline, track);
        for (const auto& [clip, timing] : entries)
            addClip(timeline, clip, m_view.target(timing));
        addTransitions(timeline, object, entries);
        return timeline;
    }

    // Tracks

    /// Before there were objects for tracks, a timing had the number of one; the greatest is the uppermost.
    void addNumberedTracks(Timeline& timeline, const std::vector<ClipEntry<Value>>& entries) {
        std::map<long long, TrackKind, std::greater<>> kinds;
        for (const auto& [clip, timing] : entries) {
            const Value track = View::field(m_view.target(timing), Fields::track);
            if (View::isNone(track) || View::isReference(track))
                continue;
            const long long number = View::integer(track).value_or(0);
            kinds[number] = kindIn(trackKindsToV3, number, trackKind(number, TrackNumbers::ToV71));
        }
        for (const auto& [number, kind] : kinds) {
            m_numberedTracks[number] = timeline.tracks.size();
            timeline.tracks.push_back({0, kind});
        }
    }

    std::size_t addTrack(Timeline& timeline, const Value& reference) {
        const Value object = m_view.target(reference);
        const unsigned long long id = View::isNone(object) ? View::targetId(reference) : View::idOf(object);
        const auto [place, isNew] = m_tracks.emplace(id, timeline.tracks.size());
        if (isNew)
            timeline.tracks.push_back(
                {id, trackKind(View::integer(View::field(object, Fields::type)).value_or(0), m_numbers),
                 View::boolean(View::field(object, Fields::muted)).value_or(false),
                 View::boolean(View::field(object, Fields::hidden)).value_or(false)});
        return place->second;
    }

    std::size_t trackOf(Timeline& timeline, const Value& timing) {
        const Value track = View::field(timing, Fields::track);
        if (!View::isReference(track)) {
            const auto numbered = m_numberedTracks.find(View::integer(track).value_or(0));
            if (numbered != m_numberedTracks.end())
                return numbered->second;
        }
        return addTrack(timeline, track); // of a track that the timeline doesn't list, too
    }

    // Clips

    void addClip(Timeline& timeline, const Value& reference, const Value& timing) {
        const Value object = m_view.target(reference);
        TimelineClip clip{View::targetId(reference), View::idOf(timing)};
        clip.className = View::classOf(object);
        clip.name = View::text(View::field(object, Fields::name));
        clip.kind = kindIn(clipKinds, View::integer(View::field(object, Fields::type)).value_or(0),
                           ClipKind::Unknown);
        clip.start = time(timing, Fields::timestamp);
        clip.duration = time(timing, Fields::duration);
        clip.sourceStart = time(timing, Fields::sourcePosition);
        clip.sourceDuration = time(timing, Fields::sourceDuration);
        clip.track = trackOf(timeline, timing);
        clip.level = View::integer(View::field(timing, Fields::trackLevel)).value_or(0);
        clip.isEnabled = View::boolean(View::field(object, Fields::enabled)).value_or(true);
        clip.isReversed = View::boolean(View::field(timing, Fields::reversed)).value_or(false);
        const Value file = m_view.target(View::field(object, Fields::file));
        clip.media = View::path(View::field(file, Fields::path));
        clip.file = View::idOf(file);
        clip.fileDuration = time(file, Fields::duration);
        clip.ownDuration = time(object, Fields::sourceDuration);
        clip.isUnlimited = View::boolean(View::field(object, Fields::unlimitedDuration)).value_or(false);
        clip.volume = View::integer(View::field(object, Fields::volume)).value_or(clip.volume);
        clip.fadeIn = fadeOf(timing, Fields::fadeIn, Fields::oldFadeIn);
        clip.fadeOut = fadeOf(timing, Fields::fadeOut, Fields::oldFadeOut);
        for (const Value& label : View::items(View::field(object, Fields::labels))) {
            if (std::string text = View::text(label); !text.empty())
                clip.labels.push_back(std::move(text));
        }
        for (const Value& effect : View::items(View::field(object, Fields::effects)))
            addEffect(clip, effect);
        clip.texts = textsOf(m_view.target(View::field(object, Fields::overlay)));
        clip.nested = View::idOf(m_view.target(View::field(object, Fields::nestedTimeline)));
        timeline.clips.push_back(std::move(clip));
    }

    static long long time(const Value& timing, const FieldName& name) {
        return View::integer(View::field(timing, name)).value_or(0);
    }

    static long long fadeOf(const Value& timing, const FieldName& name, const FieldName& oldName) {
        return time(timing, View::isNone(View::field(timing, name)) ? oldName : name);
    }

    void addEffect(TimelineClip& clip, const Value& reference) {
        const Value effect = m_view.target(reference);
        if (View::targetId(reference) != 0)
            clip.effects.push_back(
                {View::targetId(reference), View::classOf(effect),
                 View::text(m_view.inheritedField(effect, Fields::tag)),
                 View::boolean(m_view.inheritedField(effect, Fields::bypass)).value_or(false)});
    }

    std::vector<std::string> textsOf(const Value& preset) const {
        constexpr long long textItem = 1; // others are pictures
        std::vector<std::string> texts;
        for (const Value& reference : View::items(View::field(preset, Fields::items))) {
            const Value item = m_view.target(reference);
            if (View::integer(View::field(item, Fields::type)) != textItem)
                continue;
            const Value encoded = View::field(item, Fields::encodedText);
            const QString text = QString::fromStdString(
                View::isNone(encoded)
                    ? View::text(View::field(item, Fields::text))
                    : QByteArray::fromBase64(QByteArray::fromStdString(View::text(encoded))).toStdString());
            const bool isSideFile = text.startsWith(QLatin1String("content_"));
            std::string plain = isSideFile ? std::string() : plainText(text);
            if (!plain.empty())
                texts.push_back(std::move(plain));
        }
        return texts;
    }

    // Transitions

    void addTransitions(Timeline& timeline, const Value& object,
                        const std::vector<ClipEntry<Value>>& entries) {
        std::unordered_map<unsigned long long, Value> timings; // by clip
        for (const auto& [clip, timing] : entries)
            timings.emplace(View::targetId(clip), m_view.target(timing));
        const auto timeIn = [&](unsigned long long clip, const FieldName& name) {
            const auto timing = timings.find(clip);
            return timing == timings.end() ? 0 : time(timing->second, name);
        };
        for (const auto& [transition, fromClip, toClip] : View::transitionEntries(object)) {
            const unsigned long long from = View::targetId(fromClip);
            const unsigned long long to = View::targetId(toClip);
            addTransition(timeline, transition, from, to, timeIn(from, Fields::transitionOut),
                          timeIn(to, Fields::transitionIn));
        }
        addTransitionsOfClips(timeline, entries);
    }

    /// Up to version 45 a clip of the main track named the transition to the next one.
    void addTransitionsOfClips(Timeline& timeline, const std::vector<ClipEntry<Value>>& entries) {
        std::vector<std::size_t> places;
        for (std::size_t place = 0; place < timeline.clips.size(); ++place) {
            if (timeline.tracks[timeline.clips[place].track].kind == TrackKind::Main)
                places.push_back(place);
        }
        std::stable_sort(places.begin(), places.end(), [&](std::size_t a, std::size_t b) {
            return timeline.clips[a].start < timeline.clips[b].start;
        });
        for (std::size_t n = 0; n < places.size(); ++n) {
            const auto& [clip, timing] = entries[places[n]];
            const Value transition = View::field(m_view.target(clip), Fields::transition);
            if (View::targetId(transition) == 0)
                continue;
            const Value place = m_view.target(timing);
            const long long half = time(place, Fields::transitionHalf);
            const Value whole = View::field(place, Fields::transitionDuration);
            const bool hasNext = n + 1 < places.size();
            const long long length = View::isNone(whole) ? sum(half, half) : View::integer(whole).value_or(0);
            addTransition(timeline, transition, timeline.clips[places[n]].id,
                          hasNext ? timeline.clips[places[n + 1]].id : 0, length / 2, length - length / 2);
        }
    }

    /// Times come from files: their sum may wrap.
    static long long sum(long long a, long long b) {
        return static_cast<long long>(static_cast<unsigned long long>(a) +
                                      static_cast<unsigned long long>(b));
    }

    void addTransition(Timeline& timeline, const Value& reference, unsigned long long from,
                       unsigned long long to, long long before, long long after) {
        const Value object = m_view.target(reference);
        timeline.transitions.push_back({View::targetId(reference), View::classOf(object),
                                        View::text(m_view.inheritedField(object, Fields::tag)), from, to,
                                        sum(before, after), before, after});
    }

    const View& m_view;
    TrackNumbers m_numbers;
    std::vector<Timeline> m_read;                                 ///< in document order
    std::unordered_map<unsigned long long, std::size_t> m_places; ///< in m_read, by id
    std::vector<Timeline> m_result;
    std::unordered_map<unsigned long long, std::size_t>
        m_tracks; ///< places in the timeline that is read, by id
    std::unordered_map<long long, std::size_t> m_numberedTracks; ///< the same by number
};

/// Some numbers of tracks exist before and after version 72 and mean other tracks.
TrackNumbers trackNumbersOf(const FlatView& view, std::optional<int> version) {
    constexpr int firstWithNewNumbers = 72;
    if (version)
        return *version < firstWithNewNumbers ? TrackNumbers::ToV71 : TrackNumbers::FromV72;
    bool isOld = false;
    for (const nlohmann::json* track : view.ofClass(QStringLiteral("Timeline::Track"))) {
        const long long type = FlatView::integer(FlatView::field(track, Fields::type)).value_or(0);
        if (type == 1 || type == 2 || type == 4 || type == 8)
            return TrackNumbers::FromV72;
        isOld = isOld || type > 16;
    }
    return isOld ? TrackNumbers::ToV71 : TrackNumbers::FromV72;
}

} // namespace

std::string_view nameOf(ClipKind kind) {
    constexpr std::array<std::string_view, 9> names = {"video", "image", "audio",    "title",  "intro",
                                                       "outro", "quiz",  "timeline", "unknown"};
    return names[static_cast<std::size_t>(kind)];
}

std::string_view nameOf(TrackKind kind) {
    constexpr std::array<std::string_view, 7> names = {"main",   "second",  "audio",  "overlay",
                                                       "titles", "quizzes", "unknown"};
    return names[static_cast<std::size_t>(kind)];
}

std::string_view nameOf(Timeline::Role role) {
    constexpr std::array<std::string_view, 3> names = {"main", "nested", "unused"};
    return names[static_cast<std::size_t>(role)];
}

long long TimelineClip::end() const {
    constexpr long long most = std::numeric_limits<long long>::max();
    if (duration <= 0)
        return start;
    return start > most - duration ? most : start + duration;
}

long long Timeline::duration() const {
    long long end = 0;
    for (const TimelineClip& clip : clips)
        end = std::max(end, clip.end());
    return end;
}

std::vector<Timeline> readTimelines(const Document& document, std::optional<int> version) {
    if (document.isXml()) {
        const QDomElement archive = document.xml().documentElement();
        const ArchiveView view(rootObjectsOf(document.xml()),
                               archive.firstChildElement(Archive::Words::RootRef));
        return TimelineReader(view, TrackNumbers::ToV71).read();
    }
    const FlatView view(document.json());
    return TimelineReader(view, trackNumbersOf(view, version)).read();
}

std::vector<MediaFile> mediaOf(const std::vector<Timeline>& timelines) {
    std::map<std::string, std::size_t> files;
    for (const Timeline& timeline : timelines) {
        for (const TimelineClip& clip : timeline.clips) {
            if (!clip.media.empty())
                ++files[clip.media];
        }
    }
    std::vector<MediaFile> list;
    list.reserve(files.size());
    for (const auto& [path, clips] : files)
        list.push_back({path, clips});
    return list;
}

Presence presenceOf(const std::string& path, const QString& folder) {
    const QString name = QString::fromStdString(path);
    if (name.startsWith(QLatin1Char('#')))
        return Presence::Unknown;
    if (folder.isEmpty() && !QFileInfo(name).isAbsolute())
        return Presence::Unknown;
    return QFileInfo::exists(FS::fromRelativePath(folder, name)) ? Presence::Present : Presence::Missing;
}

} // namespace Reader
