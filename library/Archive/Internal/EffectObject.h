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

/// The part that holds the fields of every effect: the first base of the first base; a null element for none.
QDomElement innerBase(const QDomElement& effect);

/// Makes the levels, not yet in the tree. A step adds fields to each.
EffectObject newEffect(ArchiveEditor& archive, const QString& className, const QString& baseName,
                       long long id);

/// What an effect was called while its identifiers were numbers: before version 23.
struct NumberedEffect {
    const char* className;
    unsigned int id;
    const char* tag;
    unsigned int uniqueId;
};

/// Declares a new video effect, appends it to the archive and lists it last in `effects`, the list of a clip.
EffectObject appendNumberedEffect(ArchiveEditor& archive, const NumberedEffect& kind,
                                  const QDomElement& effects);

} // namespace Archive::Internal
