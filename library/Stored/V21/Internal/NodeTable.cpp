#include "Stored/V21/Internal/NodeTable.h"

#include "Stored/V21/Internal/Names.h"

#include <QDomElement>

#include <algorithm>
#include <numeric>

namespace Stored::V21::Internal {

NodeTable::NodeTable(const QDomNode& root) {
    if (root.isNull())
        return;
    append(root, -1, 0);
    for (int current = 0; current >= 0;) {
        // To the first child, or else to the next sibling of the nearest ancestor that has one.
        QDomNode next = node(current).firstChild();
        if (!next.isNull()) {
            append(next, current, 0);
            current = size() - 1;
            continue;
        }
        while (current >= 0) {
            m_entries[static_cast<std::size_t>(current)].behind = size();
            next = current > 0 ? node(current).nextSibling() : QDomNode();
            if (!next.isNull()) {
                append(next, parent(current), entry(current).position + 1);
                current = size() - 1;
                break;
            }
            current = parent(current);
        }
    }
    listChildren();
}

void NodeTable::append(const QDomNode& node, int parent, int position) {
    Entry added{node, parent, position, 0, false, false, false};
    if (parent >= 0) {
        const Entry& above = entry(parent);
        const QString tag = above.node.nodeName();
        added.underVisibility =
            above.underVisibility || above.node.toElement().hasAttribute(Names::visibilityName);
        added.underDefs = above.underDefs || tag == QStringLiteral("defs");
        added.underClipPath = above.underClipPath || tag == QStringLiteral("clipPath");
    }
    m_entries.push_back(std::move(added));
}

void NodeTable::listChildren() {
    m_childStart.assign(m_entries.size() + 1, 0);
    for (int number = 1; number < size(); ++number)
        ++m_childStart[static_cast<std::size_t>(parent(number)) + 1];
    std::partial_sum(m_childStart.begin(), m_childStart.end(), m_childStart.begin());
    m_children.resize(m_entries.size() - 1);
    for (int number = 1; number < size(); ++number) {
        const int start = m_childStart[static_cast<std::size_t>(parent(number))];
        const int place = start + entry(number).position;
        m_children[static_cast<std::size_t>(place)] = number;
    }
}

std::vector<int> NodeTable::elements(const QString& tag, int from, int to) const {
    std::vector<int> found;
    for (int number = from; number < to; ++number) {
        if (node(number).isElement() && node(number).nodeName() == tag)
            found.push_back(number);
    }
    return found;
}

SvgElement NodeTable::place(int number) const {
    SvgElement result;
    result.id = node(number).toElement().attribute(QStringLiteral("id"));
    result.underVisibility = entry(number).underVisibility;
    result.underDefs = entry(number).underDefs;
    for (int current = number; current > 0; current = parent(current))
        result.path.append(entry(current).position);
    std::reverse(result.path.begin(), result.path.end());
    for (const int position : result.path)
        result.pathKey += QString::number(position);
    return result;
}

int NodeTable::find(const SvgElement& place) const {
    if (m_entries.empty())
        return -1;
    int number = 0;
    for (const int position : place.path) {
        const int start = m_childStart[static_cast<std::size_t>(number)];
        const int count = m_childStart[static_cast<std::size_t>(number) + 1] - start;
        if (position < 0 || position >= count)
            return -1;
        const int child = start + position;
        number = m_children[static_cast<std::size_t>(child)];
    }
    return number;
}

QDomNode NodeTable::resolve(const SvgElement& place) const {
    const int number = find(place);
    return number < 0 ? QDomNode() : node(number);
}

} // namespace Stored::V21::Internal
