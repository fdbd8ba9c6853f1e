#include "Adaptors/Project/V4_EffectNamespaceAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"

using namespace Archive::Internal;

namespace Project {
namespace {

struct Renaming {
    const char* oldName;
    const char* newName;
};

// clang-format off
// Quirk: all but the first two become transitions, also an effect with such a name, for example "Blur".
constexpr Renaming renamings[] = {
    {"VideoEffect", "Effect::VideoEffect"},
    {"AutoEnhance", "Effect::AutoEnhance"},
    {"FadeInFadeOut", "Transition::FadeInFadeOut"},
    {"Crossfade", "Transition::Crossfade"},
    {"KenBurns", "Transition::KenBurns"},
    {"Blur", "Transition::Blur"},
    {"OrigamiPleats", "Transition::OrigamiPleats"},
    {"OrigamiValley", "Transition::OrigamiValley"},
    {"OrigamiFlips", "Transition::OrigamiFlips"},
    {"Smear", "Transition::Smear"},
    {"BarnDoor", "Transition::BarnDoor"},
    {"Circle", "Transition::Circle"},
    {"SlidingDoor", "Transition::SlidingDoor"},
    {"Slide", "Transition::Slide"},
    {"Radial", "Transition::Radial"},
    {"DirectCrossFade", "Transition::DirectCrossFade"},
    {"Wipe", "Transition::Wipe"},
    {"Matrix", "Transition::Matrix"},
    {"Ripple", "Transition::Ripple"},
    {"Snake", "Transition::Snake"},
    {"Zoom", "Transition::Zoom"},
    {"Scale", "Transition::Scale"},
    {"Blinds", "Transition::Blinds"},
    {"Push", "Transition::Push"},
    {"Lens", "Transition::Lens"},
    {"Spiral", "Transition::Spiral"},
    {"Disintegrate", "Transition::Disintegrate"},
    {"Shatter", "Transition::Shatter"},
    {"RippleSmooth", "Transition::RippleSmooth"},
    {"Pinwheel", "Transition::Pinwheel"},
    {"Roll", "Transition::Roll"},
    {"Twist", "Transition::Twist"},
    {"Waterbrush", "Transition::Waterbrush"},
    {"Pageturn", "Transition::Pageturn"},
};
// clang-format on

void renameTypes(ArchiveEditor& archive, const TypedElements& list) {
    for (const auto& [e, type] : list) {
        if (const Renaming* renaming = findRow(renamings, &Renaming::oldName, type))
            archive.setType(e, renaming->newName);
    }
}

/// Renames the classes in the records of a predeclarator.
void renameDeclaredTypes(ArchiveEditor& archive, const QDomElement& predeclarator) {
    const QDomElement records = firstDescendant(predeclarator, Words::predeclarations);
    for (const QDomElement& typeName : elements(records, Words::typeName)) {
        if (const Renaming* renaming = findRow(renamings, &Renaming::oldName, textOf(typeName)))
            archive.setText(typeName, renaming->newName);
    }
}

} // namespace

void V4_EffectNamespaceAdaptor::convert(ArchiveEditor& archive) {
    renameTypes(archive, archive.rootObjects());
    renameTypes(archive, archive.baseParts());
    for (const QDomElement& predeclarator : archive.rootObjects(Words::Predeclarator))
        renameDeclaredTypes(archive, predeclarator);
}

} // namespace Project
