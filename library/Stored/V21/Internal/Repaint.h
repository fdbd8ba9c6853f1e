#pragma once

// The one place where a step uses the SVG model.

#include <QString>

namespace Stored::V21::Internal {

/// The SVG text with fill and stroke in that colour, an ARGB number whose alpha is ignored. The model needs Qt's SVG
/// library and so Qt Gui, X11 and OpenGL. A program may define this function itself and load the model only when it is
/// called; then a static library adds nothing of the model to the program.
QString repainted(const QString& text, quint32 color);

} // namespace Stored::V21::Internal
