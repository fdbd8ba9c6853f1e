#pragma once

#include <QDomDocument>

class QXmlStreamReader;

namespace Archive::Internal {
struct TreeFacts;
}

namespace Reader {

/// Builds the same tree as QDomDocument::setContent() from a reader without namespaces. Equal names and equal
/// short values share memory, so that the tree is smaller and walks through it are faster. After an error,
/// which the reader reports, the tree has what was read before it. If `facts` is not null, it is filled with
/// facts about the tree.
///
/// Threads: thread-safe.
QDomDocument buildXmlTree(QXmlStreamReader& reader, Archive::Internal::TreeFacts* facts = nullptr);

} // namespace Reader
