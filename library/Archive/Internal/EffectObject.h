#pragma once

#include <QDomDocument>
#include <QDomElement>
#include <QString>

#include <initializer_list>
#include <utility>

namespace Archive::Internal {

class ArchiveEditor;

/// An effect's three nested levels, which share one id.
struct EffectObject {
    QDomElement root;   ///< the `RootObject` of the concrete class
    QDomElement base;   ///< its base class part, such as "Effect::VideoEffect"
    QDomElement object; ///< the innermost part, "Effect::Object"
};

/// The part with the fields that all effects have: the first `BaseOfObject` in the first `BaseOfObject`. A
/// null element if it is missing.
QDomElement innerBase(const QDomElement& effect);

/// Creates the three levels; they are not yet in the tree. The step adds the fields of each level.
EffectObject newEffect(ArchiveEditor& archive, const QString& className, const QString& baseName,
                       long long id);

/// The names of an effect in documents before version 23, where its identifiers are numbers.
struct NumberedEffect {
    const char* className;
    unsigned int id;
    const char* tag;
    unsigned int uniqueId;
};

/// Declares a new video effect, appends it to the archive and appends a reference to `effects`, the list of a
/// clip.
EffectObject appendNumberedEffect(ArchiveEditor& archive, const NumberedEffect& kind,
                                  const QDomElement& effects);

} // namespace Archive::Internal
