#pragma once

#include "Stored/V21/AdjustableAttribute.h"

#include <QColor>
#include <QList>
#include <QStringList>

#include <memory>
#include <vector>

namespace Stored::V21 {

namespace Internal {
class NodeTable;
}

/// The target of one animation element: `element` is the animated one, `name` its `attributeName`.
class AnimatableAttribute : public AdjustableAttribute {
public:
    AnimatableAttribute(const SvgElement& place, const QDomNode& node, const QString& attributeName);

    /// Reads again what depends on the adjustable points, from a DOM in which they are filled in.
    virtual void refresh(const QDomNode& root);

    bool freeze = true;
    int repeatCount = 1; ///< -1 for a count that is no number
    int beginMs = 0;
    int endMs = 0; ///< begin plus duration
    bool interpolated = true;
    int valueCount = 0;
};

class AnimatableAttributeFloat : public AnimatableAttribute {
public:
    AnimatableAttributeFloat(const SvgElement& place, const QDomNode& node, const QString& attributeName,
                             const QStringList& keyValues);

    QList<double> values;
};

class AnimatableAttributeColor : public AnimatableAttribute {
public:
    AnimatableAttributeColor(const SvgElement& place, const QDomNode& node, const QString& attributeName,
                             const QStringList& keyValues);

    QList<QColor> values;
};

class AnimatableAttributeText : public AnimatableAttribute {
public:
    AnimatableAttributeText(const SvgElement& place, const QDomNode& node, const QString& attributeName,
                            const QStringList& keyValues);

    QStringList values;
};

/// Key values that hold several numbers each, as the points of a path.
class AnimatableAttributeFloatList : public AnimatableAttribute {
public:
    AnimatableAttributeFloatList(const SvgElement& place, const QDomNode& node, const QString& attributeName,
                                 const QStringList& keyValues);

    QList<std::vector<double>> values; ///< empty unless every key value has the same count of good numbers
    std::vector<QString> separators;   ///< what stands between the numbers of the first key value
    bool startsWithNumber = false;
};

/// Key values that name the coordinates of adjustable points; refresh() makes `inner` from their numbers.
class AnimatableAttributeAdjustablePoint : public AnimatableAttribute {
public:
    AnimatableAttributeAdjustablePoint(const SvgElement& place, const QDomNode& node,
                                       const QString& attributeName, const SvgElement& animation);

    void refresh(const QDomNode& root) override;
    /// The same with a table of the DOM's nodes, which finds a node without counting siblings.
    void refresh(const Internal::NodeTable& nodes);

    std::shared_ptr<AnimatableAttribute> inner;
    SvgElement animateElement;

private:
    void makeInner(const SvgElement& place, const QDomNode& target, const QDomNode& animation);
};

} // namespace Stored::V21
