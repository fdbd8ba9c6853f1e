#pragma once

#include "Reader/Document.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What a project shows, read out of an archive or JSON of any version. All times are in milliseconds. Threads: each
// function reads only its argument; see Document.

namespace Reader {

/// What a clip shows.
enum class ClipKind { Video, Image, Audio, Title, Intro, Outro, Quiz, Nested, Unknown };

/// The kind as a word for programs and people, such as "video".
std::string_view nameOf(ClipKind kind);

/// What a track is for.
enum class TrackKind { Main, Second, Audio, Overlay, Titles, Quizzes, Unknown };

std::string_view nameOf(TrackKind kind);

struct Track {
    unsigned long long id; ///< 0 before version 27, which brought objects for tracks
    TrackKind kind;
    bool isMuted = false;
    bool isHidden = false;

    bool operator==(const Track&) const = default;
};

struct ClipEffect {
    unsigned long long id;
    std::string className; ///< empty where there is no such object
    std::string name;      ///< its `tag`, such as "PopArt9Tiles"
    bool isBypassed = false;

    bool operator==(const ClipEffect&) const = default;
};

/// A clip and its place in a timeline.
struct TimelineClip {
    unsigned long long id = 0;
    unsigned long long timing = 0; ///< id of the object with its place
    std::string className = {};    ///< empty where there is no such object
    std::string name = {};
    ClipKind kind = ClipKind::Unknown;
    long long start = 0;
    long long duration = 0;
    long long sourceStart = 0;    ///< where in its source it begins
    long long sourceDuration = 0; ///< the length of its whole source
    std::size_t track = 0;        ///< its place in Timeline::tracks
    long long level = 0;          ///< within the track; 0 from version 77 on
    bool isEnabled = true;
    bool isReversed = false;
    std::string media = {}; ///< path of its file as the document has it; empty for none
    std::vector<ClipEffect> effects = {};
    std::vector<std::string> texts = {}; ///< of a title; texts in side files are left out
    unsigned long long nested = 0;       ///< id of the timeline that it shows; 0 for none
    unsigned long long file = 0;         ///< id of the object of its file; 0 for none
    long long fileDuration = 0;          ///< the length that this object has
    long long ownDuration = 0;           ///< the length of its source at the source's own speed
    bool isUnlimited = false;            ///< whether its source has no length of its own
    long long volume = 100;              ///< in percent
    long long fadeIn = 0;                ///< how long its sound fades in
    long long fadeOut = 0;
    std::vector<std::string> labels = {};

    /// Where it ends; no less than where it starts, and no overflow.
    long long end() const;
    bool operator==(const TimelineClip&) const = default;
};

struct TimelineTransition {
    unsigned long long id;
    std::string className;
    std::string name;        ///< its `tag`
    unsigned long long from; ///< id of the clip before it; 0 for none
    unsigned long long to;   ///< id of the clip after it; 0 for none
    long long duration = 0;
    long long before = 0; ///< the part of it that is before the end of the first clip
    long long after = 0;  ///< the part that is behind the start of the second

    bool operator==(const TimelineTransition&) const = default;
};

struct Timeline {
    enum class Role {
        Main,   ///< the project's own
        Nested, ///< shown by a clip
        Unused, ///< nothing shows it
    };

    unsigned long long id = 0;
    Role role = Role::Unused;
    std::string name = {};
    std::optional<long long> width = {}; ///< in pixels
    std::optional<long long> height = {};
    std::optional<double> frameRate = {}; ///< in frames per second
    std::vector<Track> tracks = {};       ///< the uppermost first
    std::vector<TimelineClip> clips = {}; ///< in document order
    std::vector<TimelineTransition> transitions = {};

    /// Where its last clip ends.
    long long duration() const;
    bool operator==(const Timeline&) const = default;
};

std::string_view nameOf(Timeline::Role role);

/// All timelines: the project's own, then those that clips show in the order of these clips, then unused ones.
/// `version` is the schema version that the document has reached; without it numbers of tracks are guessed.
std::vector<Timeline> readTimelines(const Document& document, std::optional<int> version);
inline std::vector<Timeline> readTimelines(const Document& document) {
    return readTimelines(document, document.version());
}

/// A file that clips show.
struct MediaFile {
    std::string path; ///< as the document has it
    std::size_t clips = 0;
};

/// The files of all clips, each once, by path.
std::vector<MediaFile> mediaOf(const std::vector<Timeline>& timelines);

enum class Presence {
    Present,
    Missing,
    Unknown, ///< the path has a marker of an unknown folder, or is relative to an unknown one
};

/// Whether the file is on disk. Relative paths are relative to `folder`, that of the project; empty where there is
/// none.
Presence presenceOf(const std::string& path, const QString& folder);

} // namespace Reader
