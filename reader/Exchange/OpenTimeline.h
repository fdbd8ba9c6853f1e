#pragma once

#include "Reader/Document.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Export of a project's timelines to OpenTimelineIO. docs/export.md says what becomes what.

namespace Reader {

/// Something of a project that OpenTimelineIO has no words for. Unless its kind says otherwise, the export holds it as
/// metadata.
struct Omission {
    enum class Kind {
        ClipPlace,   ///< the clip begins before 0, or beyond what a number can say exactly: it is on no track
        ClipLength,  ///< the clip's duration is negative: it has none in the export
        SourceRange, ///< where the clip begins in its source can't be said exactly: 0 in the export
        MediaRange,  ///< how long the clip's media are can't be said exactly
        MediaFolder, ///< the path of the clip's file begins with a marker of an unknown folder
        NestedMissing,    ///< the timeline that the clip shows is not there
        NestedCircle,     ///< the timeline shows itself
        NestedDepth,      ///< too many timelines in each other
        NestedSize,       ///< the timeline is shown by many clips and was not written again
        TransitionPlace,  ///< the transition does not join two clips of a track that follow each other
        TransitionLength, ///< the transition is longer than a clip that it joins, or overlaps another one
        TrackMuted,       ///< the sound of a track with pictures is off
        TrackHidden,      ///< a track with sound is hidden
        Label,            ///< a label that is no text
        ClipFeature,      ///< a field of the clip, such as an animation; `detail` is its name
        Link,             ///< a clip moves with another
        UnusedTimeline,   ///< no clip shows the timeline
        Text, ///< a text had characters that can't be written and were replaced; of the whole project
    };

    Kind kind;
    unsigned long long timeline = 0; ///< id of the timeline that it is in
    unsigned long long object = 0;   ///< id of the clip, track, transition or timeline; 0 for none
    std::string name = {};           ///< of that object
    std::string detail = {};

    bool operator==(const Omission&) const = default;
};

/// The kind as a word for programs and people, such as "clip-place".
std::string_view nameOf(Omission::Kind kind);

struct TimelineExport {
    nlohmann::ordered_json document; ///< a Timeline.1
    std::vector<Omission> omissions;
    std::size_t timelines = 0; ///< how many the document holds, each counted as often as it is written
    std::size_t clips = 0;     ///< with nested timelines, each counted as often as it is written
};

/// The key of all metadata in an export.
inline constexpr const char* exportMetadataKey = "adaptors";

/// The project's timeline as OpenTimelineIO. `document` must be JSON of the newest schema version; throws
/// std::invalid_argument for an archive.
///
/// Threads: thread-safe for different documents.
TimelineExport exportTimeline(const Document& document);

/// The bytes of an .otio file.
std::string openTimelineText(const nlohmann::ordered_json& document);

} // namespace Reader
