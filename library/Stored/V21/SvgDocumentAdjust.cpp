// Changes of style in a document: colours, sizes, points.

#include "Stored/V21/SvgDocument.h"

#include "Stored/V21/Internal/KeyValues.h"
#include "Stored/V21/Internal/Names.h"
#include "Stored/V21/Internal/NodeTable.h"
#include "Stored/V21/Internal/PointReferences.h"

#include <QDomElement>

#include <glog/logging.h>

#include <algorithm>
#include <optional>

namespace Stored::V21 {
namespace {

using namespace Internal::Names;
using Internal::NodeTable;

const QString stopColorName = QStringLiteral("stop-color");
const QString retain = QStringLiteral("retain");

// A stop is listed once for each gradient that contains it, although SVG has no nested gradients.
constexpr std::size_t maxGradientsAround = 8;

bool isAnimation(const QString& tag) {
    return tag == animateTag || tag == animateMotionTag || tag == animateColorTag ||
           tag == animateTransformTag;
}

bool isPaint(const QString& value) {
    return value != QLatin1String("none") && value != QLatin1String("currentColor") &&
           value != QLatin1String("inherit") && !value.startsWith(QLatin1String("url"));
}

bool isStyle(const QString& name) {
    return name == fillName || name == strokeName || name == strokeOpacityName || name == fillOpacityName ||
           name == strokeWidthName;
}

bool isAdjustable(const NodeTable& nodes, int number, const QString& name) {
    const QDomElement element = nodes.node(number).toElement();
    if (!element.hasAttribute(name))
        return false;
    if (element.attribute(idName).contains(retain + name, Qt::CaseInsensitive))
        return false;
    if (name == fillName && isAnimation(element.tagName())) // `fill` of an animation is no paint
        return false;
    if ((name == fillName || name == strokeName) && !isPaint(element.attribute(name)))
        return false;
    return !(isStyle(name) && nodes.isUnderClipPath(number));
}

QString moved(const QColor& color, const std::vector<int>& offsets) {
    const auto channel = [](int value) { return std::clamp(value, 0, 255); };
    return QColor(channel(color.red() + offsets[0]), channel(color.green() + offsets[1]),
                  channel(color.blue() + offsets[2]))
        .name();
}

} // namespace

void SvgDocument::collectAdjustableAttributes(const QStringList& names) {
    parse();
    m_adjustable.clear();
    std::vector<std::vector<std::shared_ptr<AdjustableAttribute>>> found(
        static_cast<std::size_t>(names.size()));
    for (int number = 0; number < m_nodes->size(); ++number) {
        SvgElement place;
        bool isPlaced = false;
        for (int name = 0; name < names.size(); ++name) {
            if (!isAdjustable(*m_nodes, number, names[name]))
                continue;
            if (!isPlaced)
                place = m_nodes->place(number);
            isPlaced = true;
            found[static_cast<std::size_t>(name)].push_back(
                std::make_shared<AdjustableAttribute>(place, m_nodes->node(number), names[name], place.id));
        }
    }
    for (int name = 0; name < names.size(); ++name)
        m_adjustable[names[name]] = std::move(found[static_cast<std::size_t>(name)]);
}

void SvgDocument::collectGradientStops() {
    m_gradientStops.clear();
    m_stopsInDocumentOrder.clear();
    parse();
    std::vector<int> around; // ends of the gradients that contain this one
    for (const int gradient : m_nodes->elements(QStringLiteral("linearGradient"))) {
        while (!around.empty() && around.back() <= gradient)
            around.pop_back();
        if (around.size() == maxGradientsAround) {
            LOG(ERROR) << "gradients stand too deep in one another";
            break;
        }
        around.push_back(m_nodes->behind(gradient));

        const QString id = m_nodes->node(gradient).toElement().attribute(idName);
        if (id.contains(retain, Qt::CaseInsensitive))
            continue;
        QColor previous;
        for (const int number : m_nodes->elementsBelow(gradient, QStringLiteral("stop"))) {
            const QDomElement stop = m_nodes->node(number).toElement();
            if (!stop.hasAttribute(stopColorName))
                continue;
            const QColor color = Internal::colorFrom(stop.attribute(stopColorName));
            std::vector<int> offsets{0, 0, 0};
            // Quirk: the difference to the previous stop, not to the first one.
            if (previous.isValid())
                offsets = {color.red() - previous.red(), color.green() - previous.green(),
                           color.blue() - previous.blue()};
            const auto attribute =
                std::make_shared<AdjustableAttribute>(m_nodes->place(number), stop, stopColorName, id);
            m_gradientStops[attribute] = offsets;
            m_stopsInDocumentOrder.push_back(attribute);
            previous = color;
        }
    }
}

void SvgDocument::applyColorToGradients(const QColor& color) {
    // In document order, not in that of the map, which is sorted by pointers: a stop below two gradients is
    // set twice, and the last value must be the same on every run.
    for (const auto& attribute : m_stopsInDocumentOrder) {
        QDomElement stop = m_nodes->resolve(attribute->element).toElement();
        if (!stop.isNull())
            stop.setAttribute(stopColorName, moved(color, m_gradientStops.at(attribute)));
    }
    if (!m_gradientStops.empty())
        save();
}

void SvgDocument::setAttributeValue(const QString& name, const QString& value, const QString& idFilter) {
    const auto entry = m_adjustable.find(name);
    if (entry == m_adjustable.end())
        return;
    bool isHit = false;
    for (const auto& attribute : entry->second) {
        if (!idFilter.isEmpty() && attribute->id != idFilter)
            continue;
        isHit = true;
        QDomElement element = m_nodes->resolve(attribute->element).toElement();
        if (!element.isNull())
            element.setAttribute(attribute->name, value);
    }
    if (isHit)
        save();
    if (name == posXName || name == posYName)
        refreshAdjustablePoints();
}

void SvgDocument::refreshAdjustablePoints() {
    QByteArray filledIn = contentWithPointsFilledIn();
    setStorage(filledIn);
    parse();
    for (const auto& animation : m_animations) {
        // Only these have anything to refresh. With the table the time does not depend on the number of
        // siblings.
        if (auto* point = dynamic_cast<AnimatableAttributeAdjustablePoint*>(animation.get()))
            point->refresh(*m_nodes);
    }
    setStorage(m_content);
    parse();
}

QByteArray SvgDocument::contentWithPointsFilledIn() const {
    std::vector<Internal::Point> points;
    points.reserve(m_adjustablePoints.size());
    for (const auto& place : m_adjustablePoints) {
        const QDomElement point = m_nodes->resolve(*place).toElement();
        points.push_back(
            {place->id.toUtf8(), point.attribute(posXName).toUtf8(), point.attribute(posYName).toUtf8()});
    }
    const std::optional<QByteArray> filledIn = Internal::withPointsFilledIn(m_content, points);
    LOG_IF(ERROR, !filledIn) << "adjustable points name one another too often";
    return filledIn.value_or(m_content);
}

} // namespace Stored::V21
