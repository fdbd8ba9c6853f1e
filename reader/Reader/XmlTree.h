#pragma once

#include <QDomDocument>

class QXmlStreamReader;

namespace Archive::Internal {
struct TreeFacts;
}

namespace Reader {

/// Builds the same tree as QDomDocument::setContent() does from a reader without namespaces, but for memory: equal
/// names and short values share theirs, so that the tree is smaller and every walk through it finds them in the
/// processor's cache. After an error, which the reader keeps, the tree is what was read by then. `facts`, where they
/// are given, get what the tree holds.
///
/// Threads: may be called from any thread at any time.
QDomDocument buildXmlTree(QXmlStreamReader& reader, Archive::Internal::TreeFacts* facts = nullptr);

} // namespace Reader
