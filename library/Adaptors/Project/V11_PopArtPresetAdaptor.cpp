#include "Adaptors/Project/V11_PopArtPresetAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"

using namespace Archive::Internal;

namespace Project {
namespace {

struct Preset {
    const char* tag;
    int value;
};

constexpr Preset presets[] = {
    {"PopArt4Tiles", 0},
    {"PopArt9Tiles", 1},
    {"PopArt16Tiles", 2},
    {"PopArt25Tiles", 3},
};

QString tagOf(const QDomElement& effect) {
    return textOf(firstDescendant(firstDescendant(effect, Words::BaseOfObject), "tag"));
}

} // namespace

void V11_PopArtPresetAdaptor::convert(ArchiveEditor& archive) {
    for (const QDomElement& effect : archive.rootObjects("Effect::PopArt")) {
        if (const Preset* preset = findRow(presets, &Preset::tag, tagOf(effect))) // the tag is kept
            archive.settingFields(effect).int32("preset", preset->value);
    }
}

} // namespace Project
