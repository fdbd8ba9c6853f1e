#include "Adaptors/Project/V11_PopArtPresetAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

#include <algorithm>
#include <iterator>

namespace Project {
namespace {

namespace Words = Archive::Words;
using Archive::Internal::firstDescendant;

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

/// The row of the effect's tag, which the effect keeps; null for any other tag.
const Preset* presetOf(const QDomElement& effect) {
    const QDomElement base = firstDescendant(effect, Words::BaseOfObject);
    const QString tag = firstDescendant(base, QStringLiteral("tag")).attribute(Words::value);
    const auto* found = std::find_if(std::begin(presets), std::end(presets),
                                     [&](const Preset& row) { return tag == QLatin1String(row.tag); });
    return found == std::end(presets) ? nullptr : found;
}

void setPreset(QDomDocument& document, QDomElement& effect, int value) {
    const QString name = QStringLiteral("preset");
    const QDomElement preset = Archive::createInt32(document, name, value);
    const QDomNode old = effect.namedItem(name);
    if (old.isNull())
        effect.appendChild(preset);
    else
        Archive::Internal::replaceChild(effect, preset, old);
}

} // namespace

void V11_PopArtPresetAdaptor::adapt(QDomDocument& document) {
    const QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    for (QDomElement& effect : Archive::Internal::rootObjects(archive, QStringLiteral("Effect::PopArt"))) {
        if (const Preset* preset = presetOf(effect))
            setPreset(document, effect, preset->value);
    }
}

} // namespace Project
