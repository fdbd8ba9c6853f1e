#pragma once

// What the program calls in the module of drawings.

#include <QString>

namespace Drawings {

/// The name and the type of the module's function: replaces an SVG text by Stored::V21::Internal::repainted().
inline constexpr const char* repaintName = "adaptorsRepaint";
using Repaint = void(QString& text, quint32 color);

} // namespace Drawings
