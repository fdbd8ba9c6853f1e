#include "Adaptors/Project/V4_EffectNamespaceAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <QHash>

#include <glog/logging.h>

namespace Project {
namespace {

namespace Words = Archive::Words;
using Archive::Internal::Elements;
using Archive::Internal::elements;
using Archive::Internal::TypedElements;
using Archive::Internal::typedElements;

struct Renaming {
    const char* oldName;
    const char* newName;
};

// clang-format off
// Every class but the first two is that of a transition. An effect of such a name, as "Blur", goes with them.
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

using Names = QHash<QString, QString>;

Names newNames() {
    Names names;
    for (const Renaming& row : renamings)
        names.insert(QString::fromLatin1(row.oldName), QString::fromLatin1(row.newName));
    return names;
}

Elements declaredTypeNames(const TypedElements& rootObjects) {
    Elements typeNames;
    for (const auto& [object, type] : rootObjects) {
        if (type != Words::Predeclarator)
            continue;
        const QDomElement records = Archive::Internal::firstDescendant(object, Words::predeclarations);
        for (const QDomElement& typeName : elements(records, Words::typeName))
            typeNames.push_back(typeName);
    }
    return typeNames;
}

void renameTypes(const TypedElements& list, const Names& names) {
    for (auto [e, type] : list) {
        const auto found = names.constFind(type);
        if (found != names.constEnd())
            Archive::Internal::setType(e, *found);
    }
}

void renameValues(const Elements& list, const Names& names) {
    for (QDomElement e : list) {
        const auto found = names.constFind(e.attribute(Words::value));
        if (found != names.constEnd())
            e.setAttribute(Words::value, *found);
    }
}

} // namespace

void V4_EffectNamespaceAdaptor::adapt(QDomDocument& document) {
    const QDomElement archive = Archive::Internal::soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    const Names names = newNames();
    renameTypes(typedElements(archive, Words::RootObject), names);
    renameTypes(typedElements(archive, Words::BaseOfObject), names);
    renameValues(declaredTypeNames(typedElements(archive, Words::RootObject)), names);
}

} // namespace Project
