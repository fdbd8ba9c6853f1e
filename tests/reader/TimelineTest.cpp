// What a project shows, read out of documents of versions around each change of a field.

#include "Reader/Timeline.h"

#include "Reader/Migration.h"
#include "bench/Generator.h"
#include "support/Holiday.h"
#include "support/Paths.h"
#include "support/ProgramTest.h"

#include <gtest/gtest.h>

#include <map>

using Reader::ClipKind;
using Reader::Timeline;
using Reader::TimelineClip;
using Reader::TrackKind;

namespace {

std::vector<Timeline> timelinesOf(const QByteArray& bytes) {
    return Reader::readTimelines(Reader::parse(bytes, QStringLiteral("film")));
}

/// An archive with a root object and others.
QByteArray archiveOf(int version, int root, const QByteArray& objects) {
    return "<Archive schemaVersion='" + QByteArray::number(version) + "'><RootRef type='ObjectRef' value='" +
           QByteArray::number(root) + "'/>" + objects + "</Archive>";
}

QByteArray value(const char* name, const char* type, const QByteArray& value) {
    return QByteArray("<") + name + " type='" + type + "' value='" + value + "'/>";
}

QByteArray number(const char* name, long long content) {
    return value(name, "int64_t", QByteArray::number(content));
}

QByteArray reference(const char* name, int id) {
    return value(name, "ObjectRef", QByteArray::number(id));
}

QByteArray object(const char* type, int id, const QByteArray& fields) {
    return QByteArray("<RootObject type='") + type + "' objectId='" + QByteArray::number(id) + "'>" + fields +
           "</RootObject>";
}

QByteArray list(const char* name, const QList<QByteArray>& items) {
    QByteArray text =
        QByteArray("<") + name + " type='Array' size='" + QByteArray::number(items.size()) + "'>";
    for (int index = 0; index < items.size(); ++index)
        text += "<Item type='Item' index='" + QByteArray::number(index + 1) + "'>" + items[index] + "</Item>";
    return text + "</" + name + ">";
}

/// An entry of a timeline's clips, with the fields of its timing.
QByteArray entry(int clip, const QByteArray& timing) {
    return reference("Key", clip) + "<Value type='Timeline::ClipTiming' objectId='" +
           QByteArray::number(clip + 500) + "'>" + timing + "</Value>";
}

QByteArray place(long long start, long long duration) {
    return number("timestamp", start) + number("duration", duration);
}

TEST(Timelines, TracksAreNumbersUpToVersion3) {
    // The greatest number is the uppermost track.
    const auto timelines = timelinesOf(archiveOf(
        3, 2,
        object("Timeline::Object", 2,
               list("clips", {entry(16, value("track", "int32_t", "1") + place(0, 4000)),
                              entry(4, value("track", "int32_t", "2") + place(0, 5000)),
                              entry(5, value("track", "int32_t", "5") + place(5000, 1000))})) +
            object("Timeline::Clip", 16,
                   value("name", "StringPtr", "Beach") + value("type", "int32_t", "1")) +
            object("Timeline::Clip", 4, value("name", "StringPtr", "Song") + value("type", "int32_t", "3")) +
            object("Timeline::Clip", 5,
                   value("name", "StringPtr", "Quiz") + value("type", "int32_t", "32"))));
    ASSERT_EQ(timelines.size(), 1u);
    const Timeline& timeline = timelines[0];
    EXPECT_EQ(timeline.id, 2u);
    EXPECT_EQ(timeline.role, Timeline::Role::Main);
    EXPECT_EQ(timeline.duration(), 6000);
    ASSERT_EQ(timeline.tracks.size(), 3u);
    EXPECT_EQ(timeline.tracks[0].kind, TrackKind::Quizzes);
    EXPECT_EQ(timeline.tracks[1].kind, TrackKind::Audio);
    EXPECT_EQ(timeline.tracks[2].kind, TrackKind::Main);
    EXPECT_EQ(timeline.tracks[2].id, 0u);
    ASSERT_EQ(timeline.clips.size(), 3u);
    EXPECT_EQ(timeline.clips[0].name, "Beach");
    EXPECT_EQ(timeline.clips[0].kind, ClipKind::Video);
    EXPECT_EQ(timeline.clips[0].track, 2u);
    EXPECT_EQ(timeline.clips[1].kind, ClipKind::Audio);
    EXPECT_EQ(timeline.clips[1].track, 1u);
    EXPECT_EQ(timeline.clips[2].kind, ClipKind::Quiz);
    EXPECT_EQ(timeline.clips[2].track, 0u);
}

TEST(Timelines, TracksHaveOtherNumbersUpToVersion26) {
    // The number 16 is no reference, though an object has that id.
    const auto timelines = timelinesOf(
        archiveOf(26, 2,
                  object("Timeline::Object", 2,
                         list("clips", {entry(16, value("track", "int32_t", "16") + place(0, 1)),
                                        entry(4, value("track", "int32_t", "80") + place(0, 1)),
                                        entry(5, value("track", "int32_t", "17") + place(0, 1))})) +
                      object("Timeline::Clip", 16, {}) + object("Timeline::Clip", 4, {}) +
                      object("Timeline::Clip", 5, {})));
    ASSERT_EQ(timelines.at(0).tracks.size(), 3u);
    EXPECT_EQ(timelines[0].tracks[0].kind, TrackKind::Titles);
    EXPECT_EQ(timelines[0].tracks[1].kind, TrackKind::Unknown);
    EXPECT_EQ(timelines[0].tracks[2].kind, TrackKind::Main);
    EXPECT_EQ(timelines[0].clips[0].track, 2u);
    EXPECT_EQ(timelines[0].clips[1].track, 0u);
    EXPECT_EQ(timelines[0].clips[2].track, 1u);
}

TEST(Timelines, TracksAreObjectsFromVersion27) {
    const QByteArray tracks =
        object("Timeline::Track", 10, value("type", "int32_t", "80") + value("muted", "bool", "1")) +
        object("Timeline::Track", 11, value("type", "int32_t", "16") + value("hidden", "bool", "1")) +
        object("Timeline::Track", 12, value("type", "int32_t", "48"));
    const auto timelines = timelinesOf(archiveOf(
        27, 2,
        object("Timeline::Object", 2,
               list("clips",
                    {entry(3, reference("track", 11) + value("trackLevel", "int32_t", "2") + place(0, 1)),
                     entry(4, reference("track", 12) + place(0, 1))}) +
                   list("tracks", {reference("Data", 10), reference("Data", 11)})) +
            tracks + object("Timeline::Clip", 3, {}) + object("Timeline::Clip", 4, {})));
    const Timeline& timeline = timelines.at(0);
    ASSERT_EQ(timeline.tracks.size(), 3u); // the last one is not listed, and a clip lies on it
    EXPECT_EQ(timeline.tracks[0].id, 10u);
    EXPECT_EQ(timeline.tracks[0].kind, TrackKind::Titles);
    EXPECT_TRUE(timeline.tracks[0].isMuted);
    EXPECT_EQ(timeline.tracks[1].kind, TrackKind::Main);
    EXPECT_TRUE(timeline.tracks[1].isHidden);
    EXPECT_EQ(timeline.tracks[2].kind, TrackKind::Audio);
    EXPECT_EQ(timeline.clips[0].track, 1u);
    EXPECT_EQ(timeline.clips[0].level, 2);
    EXPECT_EQ(timeline.clips[1].track, 2u);
}

QByteArray jsonTrack(int id, int type) {
    return R"({"@meta":{"class_name":"Timeline::Track","object_id":)" + QByteArray::number(id) +
           R"(},"type":)" + QByteArray::number(type) + "}";
}

QByteArray jsonWithTracks(const QByteArray& version, const QByteArray& tracks) {
    return "{\"version\":\"1.0\"" + version +
           R"(,"data":{"@meta":{"class_name":"Timeline::Object","object_id":1},"clips":[],"tracks":[)" +
           tracks + "]}}";
}

TEST(Timelines, Version72NumbersTracksAnew) {
    // 16 is the main track before, and the one with titles from then on.
    const auto kindOf = [](const QByteArray& version, const QByteArray& tracks) {
        return timelinesOf(jsonWithTracks(version, tracks)).at(0).tracks.at(0).kind;
    };
    EXPECT_EQ(kindOf(",\"schemaVersion\":71", jsonTrack(2, 16)), TrackKind::Main);
    EXPECT_EQ(kindOf(",\"schemaVersion\":72", jsonTrack(2, 16)), TrackKind::Titles);
    EXPECT_EQ(kindOf(",\"schemaVersion\":72", jsonTrack(2, 1)), TrackKind::Main);
    EXPECT_EQ(kindOf(",\"schemaVersion\":72", jsonTrack(2, 2)), TrackKind::Second);
    EXPECT_EQ(kindOf(",\"schemaVersion\":72", jsonTrack(2, 4)), TrackKind::Audio);
    EXPECT_EQ(kindOf(",\"schemaVersion\":72", jsonTrack(2, 8)), TrackKind::Overlay);
    EXPECT_EQ(kindOf(",\"schemaVersion\":71", jsonTrack(2, 64)), TrackKind::Overlay);
    EXPECT_EQ(kindOf(",\"schemaVersion\":71", jsonTrack(2, 32)), TrackKind::Second);
    // Without a version the other tracks say which numbers these are.
    EXPECT_EQ(kindOf("", jsonTrack(2, 16) + ',' + jsonTrack(3, 48)), TrackKind::Main);
    EXPECT_EQ(kindOf("", jsonTrack(2, 16) + ',' + jsonTrack(3, 1)), TrackKind::Titles);
    EXPECT_EQ(kindOf("", jsonTrack(2, 16)), TrackKind::Titles);
}

TEST(Timelines, TheMainTimelineIsTheRootUpToVersion34) {
    const QByteArray timelines = object("Timeline::Object", 2, value("name", "String", "Other")) +
                                 object("Timeline::Object", 3, value("name", "String", "Film"));
    const auto old = timelinesOf(archiveOf(34, 3, timelines));
    ASSERT_EQ(old.size(), 2u);
    EXPECT_EQ(old[0].name, "Film");
    EXPECT_EQ(old[0].role, Timeline::Role::Main);
    EXPECT_EQ(old[1].role, Timeline::Role::Unused);

    const QByteArray content = reference("timeline", 3);
    const auto later = timelinesOf(archiveOf(35, 4, timelines + object("Project::Content", 4, content)));
    EXPECT_EQ(later.at(0).name, "Film");
    EXPECT_EQ(later.at(0).role, Timeline::Role::Main);

    const auto newer = timelinesOf(archiveOf(
        57, 5,
        timelines + object("Project::PersistentObject", 5,
                           "<content type='Project::Content' objectId='4'>" + content + "</content>")));
    EXPECT_EQ(newer.at(0).name, "Film");
    EXPECT_EQ(newer.at(0).role, Timeline::Role::Main);
}

TEST(Timelines, NestedTimelinesComeInTheOrderOfTheirClips) {
    const auto timelines = timelinesOf(archiveOf(
        34, 2,
        object("Timeline::Object", 9, value("name", "String", "first")) +
            object("Timeline::Object", 8,
                   value("name", "String", "second") + list("clips", {entry(5, place(0, 1))})) +
            object("Timeline::Object", 2, list("clips", {entry(3, place(0, 1)), entry(4, place(0, 1))})) +
            object("Timeline::Clip", 3, reference("nestedTimeline", 8) + value("type", "int32_t", "64")) +
            object("Timeline::Clip", 4, reference("nestedTimeline", 9)) +
            object("Timeline::Clip", 5, reference("nestedTimeline", 2)))); // a circle
    ASSERT_EQ(timelines.size(), 3u);
    EXPECT_EQ(timelines[1].name, "second");
    EXPECT_EQ(timelines[1].role, Timeline::Role::Nested);
    EXPECT_EQ(timelines[2].name, "first");
    EXPECT_EQ(timelines[0].clips[0].nested, 8u);
    EXPECT_EQ(timelines[0].clips[0].kind, ClipKind::Nested);
}

TEST(Timelines, AClipHasItsFileAndItsPlaceInIt) {
    const auto timelines = timelinesOf(archiveOf(
        47, 2,
        object("Timeline::Object", 2,
               list("clips", {entry(3, place(100, 200) + number("sourcePosition", 50) +
                                           number("sourceDuration", 900) + value("reversed", "bool", "1")),
                              entry(4, place(300, 1))}) +
                   value("width", "int32_t", "1280") + value("height", "int32_t", "720") +
                   "<frameRate type='double' value='x' binaryData='QDkAAAAAAAA='/>") +
            object("Timeline::Clip", 3, reference("file", 7) + value("enabled", "bool", "0")) +
            object("Timeline::Clip", 4, reference("file", 8)) +
            object("File", 7, value("path", "String", "media/a.mp4")) +
            object("File", 8, "<path type='String' value='/home/b.mp4' portablePath='/media/b.mp4'/>")));
    const Timeline& timeline = timelines.at(0);
    EXPECT_EQ(timeline.width, 1280);
    EXPECT_EQ(timeline.height, 720);
    EXPECT_EQ(timeline.frameRate, 25.0);
    const TimelineClip& clip = timeline.clips.at(0);
    EXPECT_EQ(clip.start, 100);
    EXPECT_EQ(clip.duration, 200);
    EXPECT_EQ(clip.sourceStart, 50);
    EXPECT_EQ(clip.sourceDuration, 900);
    EXPECT_EQ(clip.timing, 503u);
    EXPECT_TRUE(clip.isReversed);
    EXPECT_FALSE(clip.isEnabled);
    EXPECT_EQ(clip.media, "media/a.mp4");
    EXPECT_EQ(timeline.clips.at(1).media, "./media/b.mp4"); // what version 48 makes of it
    EXPECT_TRUE(timeline.clips.at(1).isEnabled);
}

TEST(Timelines, EffectsHaveTheTagOfTheirBaseClass) {
    const QByteArray effect = "<BaseOfObject type='Effect::VideoEffect' objectId='7'><BaseOfObject "
                              "type='Effect::Object' objectId='7'>" +
                              value("tag", "String", "Soft") + "</BaseOfObject></BaseOfObject>";
    const auto timelines = timelinesOf(archiveOf(
        34, 2,
        object("Timeline::Object", 2, list("clips", {entry(3, place(0, 1))})) +
            object("Timeline::Clip", 3, list("effects", {reference("Data", 7), reference("Data", 99)})) +
            object("Effect::Blur", 7, effect)));
    const auto& effects = timelines.at(0).clips.at(0).effects;
    ASSERT_EQ(effects.size(), 2u);
    EXPECT_EQ(effects[0].className, "Effect::Blur");
    EXPECT_EQ(effects[0].name, "Soft");
    EXPECT_EQ(effects[1].id, 99u);
    EXPECT_EQ(effects[1].className, "");

    const auto json = timelinesOf(
        R"({"version":"1.0","schemaVersion":70,"data":{"@meta":{"class_name":"Timeline::Object","object_id":1},
        "clips":[{"clip":{"@meta":{"class_name":"Timeline::Clip","object_id":2},"effects":[
        {"@meta":{"class_name":"Effect::Blur","object_id":3},"Effect::VideoEffect":{"@meta":{"class_name":
        "Effect::VideoEffect","object_id":4},"Effect::Object":{"@meta":{"class_name":"Effect::Object","object_id":5},
        "tag":"Soft"}}}]},"timing":{"@meta":{"class_name":"Timeline::ClipTiming","object_id":6},"timestamp":7,
        "duration":8}}]}})");
    const TimelineClip& clip = json.at(0).clips.at(0);
    EXPECT_EQ(clip.start, 7);
    EXPECT_EQ(clip.duration, 8);
    EXPECT_EQ(clip.timing, 6u);
    ASSERT_EQ(clip.effects.size(), 1u);
    EXPECT_EQ(clip.effects[0].name, "Soft");
}

/// The texts of a title whose items hold these fields.
std::vector<std::string> textsOf(int version, const QList<QByteArray>& items) {
    QList<QByteArray> entries;
    for (const QByteArray& item : items)
        entries.append("<Data type='Overlay::Item' objectId='" + QByteArray::number(60 + entries.size()) +
                       "'>" + item + "</Data>");
    return timelinesOf(archiveOf(version, 2,
                                 object("Timeline::Object", 2, list("clips", {entry(3, place(0, 1))})) +
                                     object("Timeline::Clip", 3, reference("overlay", 7)) +
                                     object("Overlay::Preset", 7, list("items", entries))))
        .at(0)
        .clips.at(0)
        .texts;
}

TEST(Timelines, TitlesHaveTheirWords) {
    using Texts = std::vector<std::string>;
    const QByteArray text = value("type", "int32_t", "1");
    const QByteArray picture = value("type", "int32_t", "2");
    EXPECT_EQ(textsOf(49, {text + value("text", "String", "Sea &amp; sand"),
                           picture + value("text", "String", "no")}),
              (Texts{"Sea & sand"}));
    EXPECT_EQ(textsOf(50, {text + value("encodedText", "String", "R3LDtsOfZQ==")}),
              (Texts{"Gr\xc3\xb6\xc3\x9f"
                     "e"}));
    EXPECT_EQ(
        textsOf(49,
                {text +
                 value("text", "String",
                       "&lt;html&gt;&lt;p&gt;two &amp;amp; &lt;b&gt;bold&lt;/b&gt;&lt;/p&gt;&lt;/html&gt;")}),
        (Texts{"two & bold"}));
    // Pictures, questions and side files are no words.
    EXPECT_EQ(textsOf(49, {text + value("text", "String", "&lt;svg/&gt;"),
                           text + value("text", "String", "content_1.svg"),
                           text + value("text", "String", "&lt;Archive&gt;x&lt;/Archive&gt;"), text}),
              (Texts{}));
}

/// A timeline with three clips on the main track, and one above them. The first two name a transition.
QByteArray withTransitions(int version, const QByteArray& first, const QByteArray& second,
                           const QByteArray& more) {
    const QByteArray track = value("track", "int32_t", "16");
    return archiveOf(
        version, 2,
        object("Timeline::Object", 2,
               list("clips", {entry(4, track + place(4000, 2000) + second),
                              entry(3, track + place(0, 4000) + first), entry(5, track + place(6000, 1000)),
                              entry(6, value("track", "int32_t", "64") + place(0, 500))}) +
                   more) +
            object("Timeline::Clip", 3, reference("transition", 7)) +
            object("Timeline::Clip", 4, reference("transition", 0)) +
            object("Timeline::Clip", 5, reference("transition", 8)) +
            object("Timeline::Clip", 6, reference("transition", 8)) +
            object("Transition::Fade", 7,
                   "<BaseOfObject type='Transition::Object' objectId='7'>" + value("tag", "String", "Slow") +
                       "</BaseOfObject>") +
            object("Transition::Wipe", 8, {}));
}

TEST(Timelines, AClipNamesTheTransitionBehindItUpToVersion45) {
    // It goes to the next clip in time, whatever the order of the list; clips of other tracks have none.
    const auto half =
        timelinesOf(withTransitions(45, number("transitionHalf", 300), {}, {})).at(0).transitions;
    ASSERT_EQ(half.size(), 2u);
    EXPECT_EQ(half[0].id, 7u);
    EXPECT_EQ(half[0].className, "Transition::Fade");
    EXPECT_EQ(half[0].name, "Slow");
    EXPECT_EQ(half[0].from, 3u);
    EXPECT_EQ(half[0].to, 4u);
    EXPECT_EQ(half[0].duration, 600);
    EXPECT_EQ(half[1].from, 5u);
    EXPECT_EQ(half[1].to, 0u);

    const auto whole =
        timelinesOf(withTransitions(21, number("transitionDuration", 601), {}, {})).at(0).transitions;
    ASSERT_EQ(whole.size(), 2u);
    EXPECT_EQ(whole[0].duration, 601);
}

TEST(Timelines, ATimelineListsTransitionsFromVersion46) {
    const QByteArray pair = "<Value type='Array' size='1'><Item type='Item' index='1'>" +
                            reference("First", 3) + reference("Second", 4) + "</Item></Value>";
    QByteArray bytes = withTransitions(46, number("transitionOut", 300), number("transitionIn", 200),
                                       list("transitions", {reference("Key", 7) + pair}));
    bytes.replace(reference("transition", 7), {}).replace(reference("transition", 8), {});
    const auto transitions = timelinesOf(bytes).at(0).transitions;
    ASSERT_EQ(transitions.size(), 1u);
    EXPECT_EQ(transitions[0].className, "Transition::Fade");
    EXPECT_EQ(transitions[0].from, 3u);
    EXPECT_EQ(transitions[0].to, 4u);
    EXPECT_EQ(transitions[0].duration, 500);
}

TEST(Timelines, BrokenDocumentsGiveWhatTheyHave) {
    // References to nothing, entries without a timing, times beyond 64 bits and no root object.
    const auto timelines = timelinesOf(archiveOf(
        62, 99,
        object(
            "Timeline::Object", 2,
            list("clips",
                 {reference("Key", 3), entry(4, place(9223372036854775807, 5)), reference("Data", 5), {}}) +
                list("tracks", {reference("Data", 98), reference("Data", 0)}) +
                list("transitions", {reference("Key", 97), {}})) +
            object("Timeline::Object", 2, {})));
    ASSERT_EQ(timelines.size(), 1u);
    EXPECT_EQ(timelines[0].role, Timeline::Role::Unused);
    EXPECT_EQ(timelines[0].clips.size(), 4u);
    EXPECT_EQ(timelines[0].duration(), 9223372036854775807);
    EXPECT_EQ(timelines[0].clips[0].className, "");

    const auto json = timelinesOf(
        R"({"version":"1.0","data":{"@meta":{"class_name":"Timeline::Object","object_id":1},"clips":
        ["x",null,{"clip":7,"timing":"no"},{"clip":{"@meta_reference":1}}],"tracks":{"a":1},"transitions":5,
        "width":"wide"}})");
    ASSERT_EQ(json.size(), 1u);
    EXPECT_EQ(json[0].clips.size(), 4u);
    EXPECT_FALSE(json[0].width.has_value());
}

/// A project in JSON whose timeline has these fields. It says no version.
QByteArray jsonTimeline(const QByteArray& fields) {
    return R"({"version":"1.0","data":{"@meta":{"class_name":"Project::Content","object_id":1},"timeline":
        {"@meta":{"class_name":"Timeline::Object","object_id":2},)" +
           fields + "}}}";
}

TEST(Timelines, WithoutAVersionTracksAreNumberedAsTheirTypesShow) {
    const auto kindsOf = [](const std::vector<int>& types) {
        QByteArray tracks;
        int id = 10;
        for (const int type : types)
            tracks += (tracks.isEmpty() ? "" : ",") +
                      QByteArray(R"({"@meta":{"class_name":"Timeline::Track","object_id":)") +
                      QByteArray::number(id++) + R"(},"type":)" + QByteArray::number(type) + '}';
        const auto timelines = timelinesOf(jsonTimeline("\"tracks\":[" + tracks + ']'));
        std::vector<TrackKind> kinds;
        for (const Reader::Track& track : timelines.at(0).tracks)
            kinds.push_back(track.kind);
        return kinds;
    };
    using Kinds = std::vector<TrackKind>;
    // 48 is a number of the versions up to 71 only, and the small ones of those from 72 on.
    EXPECT_EQ(kindsOf({16, 48}), (Kinds{TrackKind::Main, TrackKind::Audio}));
    EXPECT_EQ(kindsOf({48, 16}), (Kinds{TrackKind::Audio, TrackKind::Main}));
    for (const int type : {1, 2, 4, 8})
        EXPECT_EQ(kindsOf({type, 16}).at(1), TrackKind::Titles) << type;
    EXPECT_EQ(kindsOf({16}), Kinds{TrackKind::Titles});
}

TEST(Timelines, EffectsThatAreLostOrHoldThemselvesHaveNoTag) {
    const auto timelines = timelinesOf(jsonTimeline(
        R"("clips":[{"timing":{"@meta":{"class_name":"Timeline::ClipTiming","object_id":4}},"clip":
        {"@meta":{"class_name":"Timeline::Clip","object_id":3},"effects":[{"@meta_reference":90},
        {"@meta":{"class_name":"Effect::Blur","object_id":20},"Effect::Object":
        {"@meta":{"class_name":"Effect::Object","object_id":21},"Effect::Object":{"@meta_reference":21}}},
        {"@meta":{"class_name":"Effect::Blur","object_id":30},"Effect::VideoEffect":
        {"@meta":{"class_name":"Effect::VideoEffect","object_id":31},"Effect::Base":
        {"@meta":{"class_name":"Effect::Base","object_id":32},"Effect::VideoEffect":{"@meta_reference":31}}}}]}}])"));
    ASSERT_EQ(timelines.at(0).clips.size(), 1u);
    const std::vector<Reader::ClipEffect>& effects = timelines[0].clips[0].effects;
    ASSERT_EQ(effects.size(), 3u);
    EXPECT_EQ(effects[0].id, 90u);
    EXPECT_EQ(effects[0].className, "");
    for (const Reader::ClipEffect& effect : effects)
        EXPECT_EQ(effect.name, "") << effect.id;
}

TEST(Timelines, FilesAreListedOnce) {
    Timeline timeline;
    for (const char* path : {"b.mp4", "a.mp4", "", "b.mp4"}) {
        timeline.clips.emplace_back();
        timeline.clips.back().media = path;
    }
    const auto files = Reader::mediaOf({timeline, timeline});
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(files[0].path, "a.mp4");
    EXPECT_EQ(files[0].clips, 2u);
    EXPECT_EQ(files[1].clips, 4u);
}

TEST(Timelines, AFileIsThereOrMissingOrUnknown) {
    const QString folder = QString::fromStdString(Tests::samplesFolder().string());
    EXPECT_EQ(Reader::presenceOf("holiday-v3.xml", folder), Reader::Presence::Present);
    EXPECT_EQ(Reader::presenceOf("./holiday-v3.xml", folder), Reader::Presence::Present);
    EXPECT_EQ(Reader::presenceOf(folder.toStdString() + "/holiday-v3.xml", {}), Reader::Presence::Present);
    EXPECT_EQ(Reader::presenceOf("none.mp4", folder), Reader::Presence::Missing);
    EXPECT_EQ(Reader::presenceOf("C:\\none.mp4", folder), Reader::Presence::Missing);
    EXPECT_EQ(Reader::presenceOf("holiday-v3.xml", {}), Reader::Presence::Unknown);
    EXPECT_EQ(Reader::presenceOf("#PACKAGES_ROOT#/a.svg", folder), Reader::Presence::Unknown);
}

// A migration keeps what clips show, but for what schema versions change on purpose.

struct Place {
    std::string name;
    long long start;
    long long duration;

    bool operator==(const Place&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Place& place) {
    return out << place.name << " at " << place.start << ", " << place.duration << " long";
}

std::map<unsigned long long, Place> placesIn(const std::vector<Timeline>& timelines) {
    std::map<unsigned long long, Place> places;
    for (const Timeline& timeline : timelines) {
        for (const TimelineClip& clip : timeline.clips)
            places[clip.id] = {clip.name, clip.start, clip.duration};
    }
    return places;
}

/// Migrates a document and expects every kept clip where it was. Up to version 22 transitions overlap, and clips are
/// cut and moved by that step: it comes before the comparison.
void expectPlacesKept(const QByteArray& bytes) {
    constexpr int cutsClips = 22;
    Reader::Document document = Reader::parse(bytes, QStringLiteral("film"));
    if (*document.version() < cutsClips) {
        Reader::Migration first(std::move(document), Tests::optionsTo(cutsClips));
        first.run();
        document = Reader::parse(first.save(), QStringLiteral("film"));
    }
    const auto before = placesIn(Reader::readTimelines(document));
    ASSERT_FALSE(before.empty());
    Reader::Migration migration(document.clone(), Tests::optionsTo(Reader::currentVersion));
    migration.run();
    const auto after = placesIn(Reader::readTimelines(migration.document()));
    std::size_t kept = 0;
    for (const auto& [id, place] : before) {
        const auto clip = after.find(id);
        if (clip == after.end())
            continue;
        ++kept;
        EXPECT_EQ(clip->second, place);
    }
    EXPECT_EQ(kept, migration.report().clipsKept);
    EXPECT_GT(kept, before.size() / 2);
}

class TimelinesOfSamples : public testing::TestWithParam<Tests::Sample> {};

TEST_P(TimelinesOfSamples, KeptClipsStayWhereTheyAre) {
    expectPlacesKept(Tests::bytesOf(GetParam()));
}

/// The kinds of clips and their tracks are those of the expected film.
TEST_P(TimelinesOfSamples, ClipsHaveTheTracksOfTheFilm) {
    const auto timelines = timelinesOf(Tests::bytesOf(GetParam()));
    const Timeline& main = timelines.at(0);
    EXPECT_EQ(main.name, "Holiday");
    EXPECT_EQ(main.width, 1920);
    EXPECT_EQ(main.height, 1080);
    EXPECT_EQ(main.frameRate, 25.0);
    const std::map<std::string, std::pair<ClipKind, TrackKind>> expected = {
        {"Beach", {ClipKind::Video, TrackKind::Main}},
        {"Harbour", {ClipKind::Image, TrackKind::Main}},
        {"Summer by the sea", {ClipKind::Title, TrackKind::Main}},
        {"The old harbour", {ClipKind::Title, TrackKind::Titles}},
        {"Song", {ClipKind::Audio, TrackKind::Audio}},
    };
    std::size_t found = 0;
    for (const TimelineClip& clip : main.clips) {
        const auto row = expected.find(clip.name);
        if (row == expected.end())
            continue;
        ++found;
        EXPECT_EQ(clip.kind, row->second.first) << clip.name;
        EXPECT_EQ(main.tracks.at(clip.track).kind, row->second.second) << clip.name;
    }
    EXPECT_EQ(found, expected.size());
    ASSERT_FALSE(main.transitions.empty());
    const auto beach = std::find_if(main.clips.begin(), main.clips.end(),
                                    [](const TimelineClip& clip) { return clip.name == "Beach"; });
    EXPECT_EQ(beach->effects.at(0).className, "Effect::Blur");
    EXPECT_EQ(beach->effects.at(0).name, "Blur");
    EXPECT_TRUE(QByteArray::fromStdString(beach->media).endsWith("media/beach.mp4")) << beach->media;
}

INSTANTIATE_TEST_SUITE_P(Samples, TimelinesOfSamples, testing::ValuesIn(Tests::samples), Tests::sampleName);

TEST(Timelines, KeptClipsOfGeneratedProjectsStayWhereTheyAre) {
    for (const int version : {3, 22, 34, 46, 62})
        expectPlacesKept(Bench::generateProject(version, {8000, 0, 0, 1}));
}

} // namespace
