#include "Stored/V21/SvgImage.h"

#include "Stored/V21/Internal/KeyValues.h"
#include "Stored/V21/Internal/Markup.h"
#include "Stored/V21/Internal/Names.h"
#include "Stored/V21/Internal/Time.h"

#include <QDomDocument>
#include <QDomElement>

#include <glog/logging.h>

#include <algorithm>
#include <optional>

namespace Stored::V21 {
namespace {

using namespace Internal::Names;

/// Quirk: the width of a wider stroke of the root is not written.
constexpr int greatestWrittenWidth = 4;

QDomElement svgElementOf(const QDomDocument& dom) {
    return dom.elementsByTagName(QStringLiteral("svg")).item(0).toElement();
}

std::vector<QDomElement> adjustablePointsOf(const QDomDocument& dom) {
    const QDomNodeList found = dom.elementsByTagName(adjustablePointTag);
    std::vector<QDomElement> points;
    points.reserve(static_cast<std::size_t>(found.length()));
    for (int number = 0; number < found.length(); ++number)
        points.push_back(found.item(number).toElement());
    return points;
}

/// The style attributes of an `svg` element. An attribute that is no number reads as 0.
struct RootStyle {
    std::optional<int> strokeWidth;
    QColor fill;
    std::optional<int> fillOpacity;
    QColor stroke;
    std::optional<int> strokeOpacity;
};

std::optional<int> opacityOf(const QDomElement& svg, const QString& name) {
    const QString text = svg.attribute(name);
    if (text.isEmpty())
        return std::nullopt;
    return Internal::truncated(text.toDouble() * 255);
}

/// The style of the first `svg` element of a text; nothing for a text that parse() refuses.
std::optional<RootStyle> styleOf(const QString& text) {
    QDomDocument scratch;
    if (!Internal::parse(scratch, text)) {
        LOG(ERROR) << Internal::refusal;
        return std::nullopt;
    }
    const QDomElement svg = svgElementOf(scratch);
    RootStyle style;
    const QString width = svg.attribute(strokeWidthName);
    if (!width.isEmpty())
        style.strokeWidth = width.toInt();
    style.fill = Internal::colorFrom(svg.attribute(fillName));
    style.fillOpacity = opacityOf(svg, fillOpacityName);
    style.stroke = Internal::colorFrom(svg.attribute(strokeName));
    style.strokeOpacity = opacityOf(svg, strokeOpacityName);
    return style;
}

/// Quirk: the live document gets two significant digits, the result text two decimals.
QString liveOpacity(int opacity) {
    return QString().setNum(opacity / 255.0, 'g', 2);
}
QString writtenOpacity(int opacity) {
    return QString::number(opacity / 255.0, 'f', 2);
}

void writePaint(QDomElement& svg, const QString& name, const QColor& color) {
    const QString present = svg.attribute(name);
    const bool isKept = present == QLatin1String("none") || present == QLatin1String("currentColor") ||
                        present == QLatin1String("inherit") || present.startsWith(QLatin1String("url"));
    if (color.isValid() && !isKept)
        svg.setAttribute(name, color.name());
}

} // namespace

SvgImage::SvgImage(const QString& text) : m_text(text) {
    const std::optional<RootStyle> read = styleOf(text);
    const RootStyle style = read.value_or(RootStyle());
    m_document = std::make_shared<SvgDocument>(read ? text : QString());
    m_document->collectAdjustableAttributes(
        {fillName, fillOpacityName, strokeName, strokeWidthName, strokeOpacityName, posXName, posYName});
    m_document->collectGradientStops();

    if (style.fill.isValid())
        setFillColor(style.fill);
    if (style.stroke.isValid())
        setStrokeColor(style.stroke);

    const auto apply = [this](const QString& name, int& present, int wanted, const QString& value) {
        if (wanted == present)
            return;
        m_document->setAttributeValue(name, value, QString());
        present = wanted;
    };
    if (style.strokeWidth)
        apply(strokeWidthName, m_strokeWidth, *style.strokeWidth, QString::number(*style.strokeWidth));
    if (style.fillOpacity) {
        const int opacity = std::clamp(*style.fillOpacity, 0, 255);
        apply(fillOpacityName, m_fillOpacity, opacity, liveOpacity(opacity));
    }
    if (style.strokeOpacity) {
        const int opacity = std::clamp(*style.strokeOpacity, 0, 255);
        apply(strokeOpacityName, m_strokeOpacity, opacity, liveOpacity(opacity));
    }
}

void SvgImage::setFillColor(QColor color) {
    color.setAlpha(255);
    if (color == m_fill)
        return;
    m_document->setAttributeValue(fillName, color.name(), QString());
    m_document->applyColorToGradients(color);
    m_fill = color;
}

void SvgImage::setStrokeColor(QColor color) {
    color.setAlpha(255);
    if (color == m_stroke)
        return;
    m_document->setAttributeValue(strokeName, color.name(), QString());
    m_stroke = color;
}

QString SvgImage::toString() const {
    QDomDocument dom;
    Internal::parse(dom, m_text);

    QDomElement svg = svgElementOf(dom);
    if (!svg.isNull()) {
        if (m_strokeWidth >= 0 && m_strokeWidth <= greatestWrittenWidth)
            svg.setAttribute(strokeWidthName, QString::number(m_strokeWidth));
        writePaint(svg, fillName, m_fill);
        writePaint(svg, strokeName, m_stroke);
        if (m_fillOpacity != -1)
            svg.setAttribute(fillOpacityName, writtenOpacity(m_fillOpacity));
        if (m_strokeOpacity != -1)
            svg.setAttribute(strokeOpacityName, writtenOpacity(m_strokeOpacity));
    }

    std::vector<QDomElement> points = adjustablePointsOf(dom);
    const std::vector<QDomElement> live = adjustablePointsOf(m_document->dom());
    for (std::size_t number = 0; number < std::min(points.size(), live.size()); ++number) {
        // A coordinate that is absent in the live document becomes an empty attribute.
        for (const QString& name : {posXName, posYName})
            points[number].setAttribute(name, live[number].attribute(name));
    }
    return Internal::toText(dom);
}

} // namespace Stored::V21
