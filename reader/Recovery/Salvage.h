#pragma once

#include "Recovery/RecoveryReport.h"

#include <string>
#include <vector>

namespace Reader {

using ObjectId = unsigned long long; ///< 0 for none

/// A clip whose object is there.
struct SalvagedClip {
    ObjectId id = 0;
    std::string name;
    long long type = 0;
    ObjectId timeline = 0; ///< that it belongs to
    ObjectId nested = 0;   ///< the timeline of a scene
    long long duration = 0;
    bool isWhole = true;
};

/// Where a clip is in a timeline; times in milliseconds.
struct ClipPlace {
    ObjectId track = 0; ///< up to version 26 a number
    long long level = 0;
    long long timestamp = 0;
    long long duration = 0;
};

/// An entry of a timeline's clips, with its timing.
struct SalvagedEntry {
    ObjectId clip = 0;
    ClipPlace place;
};

/// Times are brought into this range, so that the sum of two is a time.
inline constexpr long long mostTime = 1LL << 53;
constexpr long long clampedTime(long long time) {
    return time > mostTime ? mostTime : time < -mostTime ? -mostTime : time;
}

struct SalvagedTrack {
    ObjectId id = 0;
    long long type = 0;
    ObjectId timeline = 0;
};

struct SalvagedTimeline {
    ObjectId id = 0;
    bool isWhole = true;
    std::string name;
    std::vector<SalvagedEntry> entries; ///< of clips whose objects are there
    std::vector<ObjectId> tracks;       ///< also of objects that are lost; none up to version 26
};

/// What is whole in a damaged project of either form, in the order of the file, and the changes that make it a
/// project again.
///
/// Threads: not thread-safe.
class Salvage {
public:
    Salvage() = default;
    virtual ~Salvage() = default;
    Salvage(const Salvage&) = delete;
    Salvage& operator=(const Salvage&) = delete;

    /// Whether anything is lost. Otherwise nothing needs to be mended.
    virtual bool isDamaged() const = 0;
    /// The clips that were in the file, by what is left of it.
    virtual std::vector<RecoveredClip> mentionedClips() const = 0;
    virtual std::vector<SalvagedClip> clips() const = 0;
    virtual std::vector<SalvagedTimeline> timelines() const = 0;
    virtual std::vector<SalvagedTrack> tracks() const = 0;
    /// The timeline that the project's root object leads to, which may be missing; 0 where there is no such root.
    virtual ObjectId mainTimeline() const = 0;

    // Each of these makes an object with the fields that its class has at the document's version. The id 0 gives it a
    // new one. They return the object's id.

    virtual ObjectId makeTimeline(ObjectId id) = 0;
    virtual ObjectId makeTrack(ObjectId id, long long type, ObjectId timeline) = 0;
    /// A clip that shows a timeline as a scene. It gets the fields of another clip, so there should be one.
    virtual ObjectId makeScene(ObjectId nested, ObjectId timeline, const std::string& name) = 0;

    /// Adds the fields that a damaged clip, which shows a scene, has lost.
    virtual void completeScene(ObjectId clip, ObjectId timeline) = 0;

    virtual void listTrack(ObjectId timeline, ObjectId track) = 0;
    /// Adds the clip to the list of the timeline.
    virtual void listClip(ObjectId timeline, ObjectId clip, const ClipPlace& place) = 0;
    /// Changes the track of a clip in the list of a timeline.
    virtual void moveClip(ObjectId timeline, ObjectId clip, ObjectId track) = 0;

    /// Makes the project's root object lead to the timeline, and makes a root object where there is none.
    virtual void setMainTimeline(ObjectId timeline) = 0;

    /// Clears references to lost objects, and mends counts and predeclarations. Comes last.
    virtual void mendReferences() = 0;
};

/// Makes the clips that are there reachable: makes lost timelines and tracks, puts clips whose timing is lost at the
/// end of their timeline, and finds the main timeline. Linear in the size of the project, but for a logarithm.
void mendTimelines(Salvage& salvage, int version, RecoveryReport& report);

} // namespace Reader
