#pragma once

// For this project's own use.

#include <QDomDocument>
#include <QString>

#include <initializer_list>
#include <utility>

namespace Archive::Internal {

/// An effect's three nested levels, which share one id.
struct EffectObject {
    QDomElement root;   ///< the `RootObject` of the concrete class
    QDomElement base;   ///< its base class part, such as "Effect::VideoEffect"
    QDomElement object; ///< the innermost part, "Effect::Object"
};

/// The part that holds the fields of every effect: the first base of the first base; a null element for none.
QDomElement innerBase(const QDomElement& effect);

/// Makes the levels, not yet inserted. A step appends the fields that are its own to each.
EffectObject createEffectObject(QDomDocument& doc, const QString& className, const QString& baseName,
                                long long id);

/// Appends one "String" field after the other.
void appendStrings(QDomDocument& doc, QDomElement& object,
                   std::initializer_list<std::pair<const char*, QString>> fields);

} // namespace Archive::Internal
