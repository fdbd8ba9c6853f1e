#include "Archive/Internal/NestedParts.h"

#include "Archive/Internal/ArchiveEditor.h"

#include <QHash>

namespace Archive::Internal {
namespace {

/// Counts the root objects that contain a node, in a tree that does not change. Results are cached, so that
/// counting for all nodes is linear in the size of the document, at any depth.
class RootObjectCounter {
public:
    std::size_t countAround(const QDomNode& child) {
        std::vector<QDomNode> uncounted;
        QDomNode node = child.parentNode();
        for (; !node.isNull() && !m_counts.contains(identityOf(node)); node = node.parentNode())
            uncounted.push_back(node);
        std::size_t count = m_counts.value(identityOf(node), 0);
        for (auto ancestor = uncounted.rbegin(); ancestor != uncounted.rend(); ++ancestor) {
            count += ancestor->nodeName() == Words::RootObject ? 1 : 0;
            m_counts.insert(identityOf(*ancestor), count);
        }
        return count;
    }

private:
    QHash<const void*, std::size_t> m_counts; ///< by node: the root objects that contain it, itself included
};

} // namespace

Elements partsOfRootObjects(ArchiveEditor& archive, const QString& type) {
    RootObjectCounter counter;
    Elements parts;
    for (const QDomElement& part : ofType(archive.baseParts(Scope::Document), type))
        parts.insert(parts.end(), counter.countAround(part), part);
    return parts;
}

} // namespace Archive::Internal
