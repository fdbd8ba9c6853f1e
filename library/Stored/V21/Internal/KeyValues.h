#pragma once

// Reading the key values of an animation, and colours.

#include <QColor>
#include <QDomElement>
#include <QString>
#include <QStringList>

namespace Stored::V21::Internal {

/// The colour of that name; an invalid one if there is none. Unlike QColor, prints no warning.
inline QColor colorFrom(const QString& name) {
    return QColor::isValidColor(name) ? QColor(name) : QColor();
}

/// The list in an animation's `values`, or else its `from` and `to`. Never empty.
inline QStringList keyValuesOf(const QDomElement& animation) {
    const QString values = animation.attribute(QStringLiteral("values"));
    if (!values.isEmpty())
        return values.split(QLatin1Char(';'));
    return {animation.attribute(QStringLiteral("from")), animation.attribute(QStringLiteral("to"))};
}

} // namespace Stored::V21::Internal
