#pragma once

// A table of the nodes of a DOM, for fast lookups by position and by tag.

#include "Stored/V21/SvgElement.h"

#include <QDomNode>
#include <QString>

#include <vector>

namespace Stored::V21::Internal {

/// All nodes of a DOM, numbered in document order from the root, 0. It finds the node at a position, and the
/// position of a node, without counting siblings, which would be quadratic for an element with many children.
class NodeTable {
public:
    NodeTable() = default;
    explicit NodeTable(const QDomNode& root);

    int size() const { return static_cast<int>(m_entries.size()); }
    const QDomNode& node(int number) const { return entry(number).node; }
    int parent(int number) const { return entry(number).parent; } ///< -1 for the root
    int behind(int number) const {
        return entry(number).behind;
    } ///< the number after those of all descendants
    bool isUnderClipPath(int number) const { return entry(number).underClipPath; }

    /// The numbers of the elements of that tag, in document order; in the second form only those below an
    /// element.
    std::vector<int> elements(const QString& tag) const { return elements(tag, 0, size()); }
    std::vector<int> elementsBelow(int number, const QString& tag) const {
        return elements(tag, number + 1, behind(number));
    }

    /// The position of a node; the same as SvgElement(node, root).
    SvgElement place(int number) const;

    /// The node at that position: its number, -1 if there is none, or the node as from SvgElement::resolve(),
    /// null if there is none.
    int find(const SvgElement& place) const;
    QDomNode resolve(const SvgElement& place) const;

private:
    struct Entry {
        QDomNode node;
        int parent;
        int position; ///< the number of preceding siblings
        int behind;
        bool underVisibility;
        bool underDefs;
        bool underClipPath;
    };

    const Entry& entry(int number) const { return m_entries[static_cast<std::size_t>(number)]; }
    void append(const QDomNode& node, int parent, int position);
    void listChildren();
    std::vector<int> elements(const QString& tag, int from, int to) const;

    std::vector<Entry> m_entries;
    std::vector<int> m_children; ///< the children of 0, then those of 1 ...
    std::vector<int>
        m_childStart; ///< by node: the start of its children in `m_children`; last, the end of the list
};

} // namespace Stored::V21::Internal
