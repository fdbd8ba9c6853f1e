// Nothing else is in this file, so that a program can define the function itself.

#include "Stored/V21/Internal/Repaint.h"

#include "Stored/V21/SvgImage.h"

namespace Stored::V21::Internal {

QString repainted(const QString& text, quint32 color) {
    const QColor paint = QColor::fromRgba(color);
    SvgImage image(text);
    image.setFillColor(paint);
    image.setStrokeColor(paint);
    return image.toString();
}

} // namespace Stored::V21::Internal
