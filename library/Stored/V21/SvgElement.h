#pragma once

#include <QDomNode>
#include <QList>
#include <QString>

namespace Stored::V21 {

/// One node of a DOM named by its position, so that the name outlives a new parse of the same text.
struct SvgElement {
    SvgElement() = default;
    SvgElement(const QDomNode& node, const QDomNode& root);

    /// The node at that position below `root`; null where there is none.
    QDomNode resolve(const QDomNode& root) const;

    QList<int> path;              ///< from the root down: how many siblings of any kind stand before
    QString pathKey;              ///< the same numbers as text, one behind the other
    QString id;                   ///< the element's `id`
    bool underVisibility = false; ///< some ancestor has the attribute `visibility`
    bool underDefs = false;       ///< some ancestor is a `defs`
};

} // namespace Stored::V21
