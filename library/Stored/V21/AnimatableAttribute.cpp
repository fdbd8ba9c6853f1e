#include "Stored/V21/AnimatableAttribute.h"

#include "Stored/V21/Internal/KeyValues.h"
#include "Stored/V21/Internal/NodeTable.h"

#include <QDomElement>

#include <algorithm>
#include <optional>

namespace Stored::V21 {
namespace {

bool isNumeric(QChar c) {
    return c.isDigit() || c == QLatin1Char('.') || c == QLatin1Char('-');
}

/// The character that is appended to every key value so that its last number or separator ends there. Quirk:
/// chosen by the first key value alone; "0" if that is empty.
QChar sentinelBehind(const QString& first) {
    return !first.isEmpty() && isNumeric(first.back()) ? QLatin1Char('#') : QLatin1Char('0');
}

/// The runs of other characters before and between the numbers. A run at the end is ignored.
std::vector<QString> separatorsIn(const QString& text) {
    std::vector<QString> separators;
    QString open;
    for (const QChar c : text) {
        if (!isNumeric(c)) {
            open += c;
        } else if (!open.isEmpty()) {
            separators.push_back(open);
            open.clear();
        }
    }
    return separators;
}

/// The numbers that are followed by another character; nothing if one of them is invalid.
std::optional<std::vector<double>> numbersIn(const QString& text) {
    std::vector<double> numbers;
    QString open;
    for (const QChar c : text) {
        if (isNumeric(c)) {
            open += c;
        } else if (!open.isEmpty()) {
            bool ok = false;
            numbers.push_back(open.toDouble(&ok));
            if (!ok)
                return std::nullopt;
            open.clear();
        }
    }
    return numbers;
}

} // namespace

AnimatableAttribute::AnimatableAttribute(const SvgElement& place, const QDomNode& node,
                                         const QString& attributeName)
    : AdjustableAttribute(place, node, attributeName, QString()) {}

void AnimatableAttribute::refresh(const QDomNode&) {}

AnimatableAttributeFloat::AnimatableAttributeFloat(const SvgElement& place, const QDomNode& node,
                                                   const QString& attributeName, const QStringList& keyValues)
    : AnimatableAttribute(place, node, attributeName) {
    for (const QString& keyValue : keyValues)
        values.append(keyValue.trimmed().toDouble());
    valueCount = values.size();
}

AnimatableAttributeColor::AnimatableAttributeColor(const SvgElement& place, const QDomNode& node,
                                                   const QString& attributeName, const QStringList& keyValues)
    : AnimatableAttribute(place, node, attributeName) {
    for (const QString& keyValue : keyValues)
        values.append(Internal::colorFrom(keyValue.trimmed()));
    valueCount = values.size();
}

AnimatableAttributeText::AnimatableAttributeText(const SvgElement& place, const QDomNode& node,
                                                 const QString& attributeName, const QStringList& keyValues)
    : AnimatableAttribute(place, node, attributeName) {
    for (const QString& keyValue : keyValues)
        values.append(keyValue.trimmed());
    valueCount = values.size();
}

AnimatableAttributeFloatList::AnimatableAttributeFloatList(const SvgElement& place, const QDomNode& node,
                                                           const QString& attributeName,
                                                           const QStringList& keyValues)
    : AnimatableAttribute(place, node, attributeName) {
    const QString first = keyValues.value(0).trimmed();
    startsWithNumber = !first.isEmpty() && isNumeric(first.front());
    // Quirk: the first key value decides for all: one that ends in another way loses its last number.
    const QChar sentinel = sentinelBehind(first);
    separators = separatorsIn(first + sentinel);

    for (const QString& keyValue : keyValues) {
        auto numbers = numbersIn(keyValue.trimmed() + sentinel);
        if (!numbers || (!values.isEmpty() && numbers->size() != values.front().size())) {
            values.clear();
            break;
        }
        values.append(*numbers);
    }
    valueCount = values.size();
}

AnimatableAttributeAdjustablePoint::AnimatableAttributeAdjustablePoint(const SvgElement& place,
                                                                       const QDomNode& node,
                                                                       const QString& attributeName,
                                                                       const SvgElement& animation)
    : AnimatableAttribute(place, node, attributeName), animateElement(animation) {}

void AnimatableAttributeAdjustablePoint::refresh(const QDomNode& root) {
    const QDomNode target = element.resolve(root);
    makeInner(SvgElement(target, root), target, animateElement.resolve(root));
}

void AnimatableAttributeAdjustablePoint::refresh(const Internal::NodeTable& nodes) {
    const int target = nodes.find(element);
    if (target < 0)
        makeInner(SvgElement(), QDomNode(), nodes.resolve(animateElement));
    else
        makeInner(nodes.place(target), nodes.node(target), nodes.resolve(animateElement));
}

void AnimatableAttributeAdjustablePoint::makeInner(const SvgElement& place, const QDomNode& target,
                                                   const QDomNode& animation) {
    const QStringList keyValues = Internal::keyValuesOf(animation.toElement());
    bool isNumber = false;
    keyValues.first().trimmed().toDouble(&isNumber);
    if (isNumber)
        inner = std::make_shared<AnimatableAttributeFloat>(place, target, name, keyValues);
    else
        inner = std::make_shared<AnimatableAttributeFloatList>(place, target, name, keyValues);
    inner->freeze = freeze;
    inner->repeatCount = repeatCount;
    inner->beginMs = beginMs;
    inner->endMs = endMs;
    inner->interpolated = interpolated;
}

} // namespace Stored::V21
