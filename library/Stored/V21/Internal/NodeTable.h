#pragma once

// For the model's own use.

#include "Stored/V21/SvgElement.h"

#include <QDomNode>
#include <QString>

#include <vector>

namespace Stored::V21::Internal {

/// All nodes of a DOM in document order, by number, the root being 0. It finds the node at a path, and the path of
/// a node, without counting siblings one by one, which would be quadratic for a wide document.
class NodeTable {
public:
    NodeTable() = default;
    explicit NodeTable(const QDomNode& root);

    int size() const { return static_cast<int>(m_entries.size()); }
    const QDomNode& node(int number) const { return entry(number).node; }
    int parent(int number) const { return entry(number).parent; } ///< -1 for the root
    int behind(int number) const { return entry(number).behind; } ///< the number behind all descendants
    bool isUnderClipPath(int number) const { return entry(number).underClipPath; }

    /// The numbers of the elements of that tag, in document order; in the second form those below an element.
    std::vector<int> elements(const QString& tag) const { return elements(tag, 0, size()); }
    std::vector<int> elementsBelow(int number, const QString& tag) const {
        return elements(tag, number + 1, behind(number));
    }

    /// The same as SvgElement(node, root).
    SvgElement place(int number) const;

    /// The node at that place, by number and as SvgElement::resolve() gives it; -1 or null where there is none.
    int find(const SvgElement& place) const;
    QDomNode resolve(const SvgElement& place) const;

private:
    struct Entry {
        QDomNode node;
        int parent;
        int position; ///< how many siblings stand before
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
    std::vector<int> m_children;   ///< the children of 0, then those of 1 ...
    std::vector<int> m_childStart; ///< where the children of each node begin there, and where the last end
};

} // namespace Stored::V21::Internal
