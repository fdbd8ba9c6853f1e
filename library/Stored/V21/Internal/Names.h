#pragma once

// Names that several files of the SVG model use.

#include <QString>

/// Tags and attributes of SVG, and those that the editor adds to it.
namespace Stored::V21::Internal::Names {

inline const QString idName = QStringLiteral("id");
inline const QString fillName = QStringLiteral("fill");
inline const QString fillOpacityName = QStringLiteral("fill-opacity");
inline const QString strokeName = QStringLiteral("stroke");
inline const QString strokeOpacityName = QStringLiteral("stroke-opacity");
inline const QString strokeWidthName = QStringLiteral("stroke-width");
inline const QString visibilityName = QStringLiteral("visibility");
inline const QString posXName = QStringLiteral("posX");
inline const QString posYName = QStringLiteral("posY");

inline const QString animateTag = QStringLiteral("animate");
inline const QString animateMotionTag = QStringLiteral("animateMotion");
inline const QString animateColorTag = QStringLiteral("animateColor");
inline const QString animateTransformTag = QStringLiteral("animateTransform");
inline const QString adjustablePointTag = QStringLiteral("adjustablePoint");

} // namespace Stored::V21::Internal::Names
