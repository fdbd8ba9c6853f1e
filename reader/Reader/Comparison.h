#pragma once

#include "Reader/ObjectGraph.h"
#include "Reader/Timeline.h"

#include <QString>

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Threads: each function reads only its arguments.

namespace Reader {

/// A project as it is compared.
struct ComparedProject {
    ObjectGraph objects;
    std::vector<Timeline> timelines;
    QString folder; ///< paths in the project are relative to it; empty for none
};

ComparedProject readForComparison(const Document& document, const QString& folder);

/// What is different between two projects.
struct Difference {
    enum class Kind {
        TimelineAdded,
        TimelineRemoved,
        ClipAdded,
        ClipRemoved,
        ClipRenamed,
        ClipMoved,
        ClipTrimmed,
        MediaRelinked,
        TextChanged,
        EffectAdded,
        EffectRemoved,
        EffectsReordered,
        EffectChanged, ///< a field of an effect
        ClipChanged,   ///< another field of a clip, or of what belongs to it
        TransitionAdded,
        TransitionRemoved,
        TransitionChanged, ///< a field of it, or its duration
        ObjectChanged,     ///< a field of any other object
    };

    /// The clip that it is about, or that its effect or transition belongs to.
    struct Subject {
        std::string name;
        long long start = 0; ///< in its timeline, before the change
    };

    Kind kind;
    std::optional<Subject> clip = {};
    std::string className = {};      ///< of the effect, transition or object
    std::string name = {};           ///< of the effect, transition, object or timeline
    unsigned long long idBefore = 0; ///< of the clip, effect, transition or object; 0 where it was not there
    unsigned long long idAfter = 0;  ///< 0 where it is not there any more
    std::string field = {};          ///< with the path to it, such as "overlay/items/0/textWidth"
    nlohmann::json before = {};      ///< what changed; null where it was not there
    nlohmann::json after = {};
};

/// The kind as words for programs, such as "clip-moved".
std::string_view nameOf(Difference::Kind kind);

/// What is different, clips first, in the order of their timelines. Nothing where both show and hold the same: numbers
/// of ids, the order of keys and of lists without an order, whole and floating numbers of one value, and what nothing
/// refers to make no difference.
std::vector<Difference> compare(const ComparedProject& before, const ComparedProject& after);

} // namespace Reader
