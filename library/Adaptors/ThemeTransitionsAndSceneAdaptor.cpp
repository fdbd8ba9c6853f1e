#include "Adaptors/ThemeTransitionsAndSceneAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

namespace {

struct SceneLimit {
    const char* name;
    long long milliseconds;
};

constexpr SceneLimit sceneLimits[] = {
    {"minSceneDuration", 1000},
    {"maxSceneDuration", 4000},
};

void convertToList(ArchiveEditor& archive, const QDomElement& transition) {
    archive.rename(transition, "transitionsList");
    archive.setType(transition, Words::Array);
    archive.setSize(transition, 0); // Quirk: its children stay and are not counted
}

} // namespace

void ThemeTransitionsAndSceneAdaptor::convert(ArchiveEditor& archive) {
    // A missing `Archive` is not logged: this adaptor completes older files and belongs to no schema version.
    for (const QDomElement& theme : ofType(archive.rootObjects(Scope::Archive), "Theme::Object")) {
        convertToList(archive, firstDescendant(theme, "transition"));
        for (const SceneLimit& limit : sceneLimits) {
            if (firstDescendant(theme, limit.name).isNull())
                archive.fields(theme).int64(limit.name, limit.milliseconds);
        }
    }
}
