#pragma once

#include "Stored/V21/SvgDocument.h"

#include <QColor>
#include <QString>

#include <memory>

namespace Stored::V21 {

/// An SVG text with the style of its root element.
class SvgImage {
public:
    explicit SvgImage(const QString& text);

    /// Sets the paint of all elements that may be repainted. The alpha of the colour is ignored.
    void setFillColor(QColor color);
    void setStrokeColor(QColor color);

    /// The original text, with the current style and the current adjustable points.
    QString toString() const;

    const QString& text() const { return m_text; }
    const std::shared_ptr<SvgDocument>& document() const { return m_document; }
    const QColor& fill() const { return m_fill; }
    int fillOpacity() const { return m_fillOpacity; } ///< 0 to 255, -1 when unset
    const QColor& stroke() const { return m_stroke; }
    int strokeOpacity() const { return m_strokeOpacity; } ///< 0 to 255, -1 when unset
    int strokeWidth() const { return m_strokeWidth; }     ///< -1 when unset

private:
    QString m_text;
    std::shared_ptr<SvgDocument> m_document;
    QColor m_fill;
    int m_fillOpacity = -1;
    QColor m_stroke;
    int m_strokeOpacity = -1;
    int m_strokeWidth = -1;
};

} // namespace Stored::V21
