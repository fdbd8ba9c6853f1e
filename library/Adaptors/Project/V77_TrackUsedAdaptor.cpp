#include "Adaptors/Project/V77_TrackUsedAdaptor.h"

#include "Archive/Internal/FlatEditor.h"
#include "Archive/Internal/JsonFields.h"
#include "Archive/Json.h"

#include <unordered_set>
#include <vector>

using nlohmann::json;
using Serialize::Json::getAnyObjectId;

namespace Project {
namespace {

using Archive::Internal::FlatEditor;
using Ids = std::unordered_set<unsigned long long>;

Ids collectUnused(FlatEditor& editor) {
    Ids unused;
    for (const auto& track : editor.objects("Timeline::Track")) {
        if ((*track.object)["used"].get<bool>())
            continue;
        if (const auto id = getAnyObjectId(*track.object))
            unused.insert(*id);
    }
    return unused;
}

void renameFades(json& timing) {
    Archive::renameChild(timing, "fadeInDuraion", "fadeInDuration");
    Archive::renameChild(timing, "fadeOutDuraion", "fadeOutDuration");
}

/// Renames the fields of the timings, and removes the tracks that they are on from `unused`.
void keepOccupied(FlatEditor& editor, Ids& unused) {
    for (const auto& timing : editor.objects("Timeline::ClipTiming")) {
        renameFades(*timing.object);
        if (const auto track = getAnyObjectId(Archive::Internal::memberOf(*timing.object, "track")))
            unused.erase(*track);
    }
}

// Quirk: a track is removed from the lists only; its object stays. `used` stays false on a track that is
// kept.
void dropTracks(FlatEditor& editor, const Ids& unused) {
    for (const auto& timeline : editor.objects("Timeline::Object")) {
        auto* tracks = Archive::Internal::listOf(*timeline.object, "tracks");
        if (!tracks)
            continue;
        std::erase_if(*tracks, [&](const json& track) {
            const auto id = getAnyObjectId(track);
            return id && unused.count(*id) > 0;
        });
    }
}

} // namespace

void V77_TrackUsedAdaptor::convert(FlatEditor& editor) {
    Ids unused = collectUnused(editor);
    keepOccupied(editor, unused);
    dropTracks(editor, unused);
}

} // namespace Project
