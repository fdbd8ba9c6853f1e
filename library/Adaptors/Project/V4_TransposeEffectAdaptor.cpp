#include "Adaptors/Project/V4_TransposeEffectAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/Reading.h"

using namespace Archive::Internal;

namespace Project {
namespace {

constexpr NumberedEffect transpose = {"Effect::Transpose", 35, "effect_transpose", 35};

/// The `type` of clips that can be turned.
constexpr int turnedType = 1;

/// Removes the clip's angle and gives its number; 0 if there is none.
int takeAngle(ArchiveEditor& archive, const QDomElement& clip) {
    const QDomElement angle = firstDescendant(clip, "angle");
    archive.remove(angle);
    return int32Of(angle);
}

} // namespace

void V4_TransposeEffectAdaptor::convert(ArchiveEditor& archive) {
    // Quirk: the records are those in the first descendant of that name, not in the first child.
    archive.setPredeclarations(firstDescendant(archive.root(), Words::predeclarations));
    const Elements clips = archive.rootObjects("Timeline::Clip");
    if (!clips.empty())
        archive.startIds(); // before removing an `angle`, which may have an id of its own
    for (const QDomElement& clip : clips) {
        const int angle = takeAngle(archive, clip); // Quirk: removed also if no effect replaces it
        if (angle % 360 == 0 || int32Of(firstDescendant(clip, Words::type)) != turnedType)
            continue;
        const QDomElement effects = firstDescendant(clip, "effects");
        archive.fields(appendNumberedEffect(archive, transpose, effects).root).int32("angle", angle);
    }
}

} // namespace Project
