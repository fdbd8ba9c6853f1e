#include "Adaptors/Project/V21_PresetTypeAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"
#include "Stored/V21/Internal/Repaint.h"

using namespace Archive::Internal;

namespace Project {
namespace {

constexpr int svgKind = 2;
constexpr int specialKind = 3; ///< becomes `svgKind` with a feature

constexpr int ordinaryPreset = 1;
constexpr int specialPreset = 2; ///< has an item of `specialKind`

/// Sets fill and stroke of the text's root element to the colour of the outline, an ARGB number, and that
/// colour to 0. Quirk: a missing colour counts as 0.
void moveOutlineColorIntoText(ArchiveEditor& archive, const QDomElement& item) {
    const QDomElement color = childAt(item, {"outline", "color"});
    const quint32 paint = textOf(color).toUInt();
    archive.setText(color, "0");

    // Quirk: the text may be at any depth, unlike outline and type.
    const QDomElement text = firstDescendant(item, "text");
    if (!text.isNull())
        archive.setText(text, Stored::V21::Internal::repainted(textOf(text), paint));
}

/// Adds the features of an item. Returns whether it is of `specialKind`.
bool convertItem(ArchiveEditor& archive, const QDomElement& item) {
    const int kind = int32In(item, Words::type);
    const bool isSpecial = kind == specialKind;
    if (kind == svgKind)
        moveOutlineColorIntoText(archive, item);
    if (isSpecial)
        archive.setField(item, Words::type, svgKind);
    archive.fields(item).int32("features", isSpecial ? 1 : 0);
    return isSpecial;
}

void convertPreset(ArchiveEditor& archive, const QDomElement& preset) {
    int presetType = ordinaryPreset;
    // Quirk: the entries of inner arrays count as well.
    for (const QDomElement& entry : elements(firstDescendant(preset, "items"), Words::Item)) {
        const QDomElement item = entry.firstChildElement(Words::Data);
        if (!item.isNull() && convertItem(archive, item))
            presetType = specialPreset;
    }
    archive.fields(preset).int32(Words::type, presetType);
}

} // namespace

void V21_PresetTypeAdaptor::convert(ArchiveEditor& archive) {
    for (const QDomElement& preset : ofType(archive.rootObjects(Scope::Archive), "Overlay::Preset")) {
        const Subject subject(archive, preset);
        convertPreset(archive, preset);
    }
}

} // namespace Project
