#pragma once

#include <QDomNode>
#include <QList>
#include <QString>

namespace Stored::V21 {

/// The position of a node in a DOM. It stays valid when the same text is parsed again.
struct SvgElement {
    SvgElement() = default;
    SvgElement(const QDomNode& node, const QDomNode& root);

    /// The node at that position below `root`; null if there is none.
    QDomNode resolve(const QDomNode& root) const;

    QList<int> path; ///< from the root down: the number of preceding siblings of any kind at each level
    QString pathKey; ///< the same numbers as text, without separators
    QString id;      ///< the element's `id`
    bool underVisibility = false; ///< an ancestor has the attribute `visibility`
    bool underDefs = false;       ///< an ancestor is a `defs`
};

} // namespace Stored::V21
