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

/// The attribute that an animation element changes: `element` is the animated element, `name` is the
/// `attributeName`.
class AnimatableAttribute : public AdjustableAttribute {
public:
    AnimatableAttribute(const SvgElement& place, const QDomNode& node, const QString& attributeName);

    /// Reads the values that depend on adjustable points again, from a DOM in which the coordinates replace
    /// the names of the points.
    virtual void refresh(const QDomNode& root);

    bool freeze = true;
    int repeatCount = 1; ///< -1 if the count is no number
    int beginMs = 0;
    int endMs = 0; ///< `beginMs` plus the duration
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

/// Key values of several numbers each, such as the points of a path.
class AnimatableAttributeFloatList : public AnimatableAttribute {
public:
    AnimatableAttributeFloatList(const SvgElement& place, const QDomNode& node, const QString& attributeName,
                                 const QStringList& keyValues);

    QList<std::vector<double>>
        values; ///< empty unless all key values have the same count of numbers, all valid
    std::vector<QString> separators; ///< the texts between the numbers of the first key value
    bool startsWithNumber = false;
};

/// Key values that name coordinates of adjustable points. refresh() creates `inner` from their numbers.
class AnimatableAttributeAdjustablePoint : public AnimatableAttribute {
public:
    AnimatableAttributeAdjustablePoint(const SvgElement& place, const QDomNode& node,
                                       const QString& attributeName, const SvgElement& animation);

    void refresh(const QDomNode& root) override;
    /// The same with a table of the DOM's nodes, which finds nodes faster.
    void refresh(const Internal::NodeTable& nodes);

    std::shared_ptr<AnimatableAttribute> inner;
    SvgElement animateElement;

private:
    void makeInner(const SvgElement& place, const QDomNode& target, const QDomNode& animation);
};

} // namespace Stored::V21
