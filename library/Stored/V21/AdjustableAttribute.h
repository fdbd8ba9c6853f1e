#pragma once

#include "Stored/V21/SvgElement.h"

#include <QDomNode>
#include <QString>

namespace Stored::V21 {

/// An attribute of an element that a change of style may overwrite.
class AdjustableAttribute {
public:
    AdjustableAttribute(const QDomNode& node, const QDomNode& root, const QString& attributeName,
                        const QString& filterId);
    /// The same for a node whose position is known.
    AdjustableAttribute(const SvgElement& place, const QDomNode& node, const QString& attributeName,
                        const QString& filterId);
    virtual ~AdjustableAttribute() = default;

    SvgElement element;
    QString value; ///< the attribute's value when this object was created
    QString name;  ///< the attribute's name
    QString id;    ///< the element's id, for the filter of SvgDocument::setAttributeValue()
};

} // namespace Stored::V21
