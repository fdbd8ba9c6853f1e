#include "Stored/V21/AdjustableAttribute.h"

#include <QDomElement>

namespace Stored::V21 {

AdjustableAttribute::AdjustableAttribute(const QDomNode& node, const QDomNode& root,
                                         const QString& attributeName, const QString& filterId)
    : AdjustableAttribute(SvgElement(node, root), node, attributeName, filterId) {}

AdjustableAttribute::AdjustableAttribute(const SvgElement& place, const QDomNode& node,
                                         const QString& attributeName, const QString& filterId)
    : element(place), value(node.toElement().attribute(attributeName)), name(attributeName), id(filterId) {}

} // namespace Stored::V21
