#pragma once

#include "Stored/V21/SvgElement.h"

#include <QDomNode>
#include <QString>

namespace Stored::V21 {

/// One attribute of one element that a change of style may overwrite.
class AdjustableAttribute {
public:
    AdjustableAttribute(const QDomNode& node, const QDomNode& root, const QString& attributeName,
                        const QString& filterId);
    /// The same for a node whose place is known already.
    AdjustableAttribute(const SvgElement& place, const QDomNode& node, const QString& attributeName,
                        const QString& filterId);
    virtual ~AdjustableAttribute() = default;

    SvgElement element;
    QString value; ///< the attribute's value when this was made
    QString name;  ///< the attribute's name
    QString id;    ///< what SvgDocument::setAttributeValue() filters on
};

} // namespace Stored::V21
