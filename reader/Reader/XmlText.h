#pragma once

#include <QByteArray>
#include <QDomDocument>
#include <QString>

namespace Archive::Internal {
struct TreeFacts;
}

namespace Reader {

/// Archives nested deeper than this are refused; real projects are far below. Operations on the tree need
/// stack for each level, and a step that searches all descendants of each object is quadratic in the depth.
inline constexpr int maxXmlDepth = 10000;

/// Elements with more attributes than this are refused: the parser compares all attributes of an element with
/// each other.
inline constexpr int maxXmlAttributes = 256;

/// Reads XML text. `name` is the file's name in errors. Throws Error with line and column for text that is
/// not well-formed, for document type declarations (the format has none), and for too great a depth or too
/// many attributes. If `facts` is not null, it is filled with facts about the tree.
///
/// Threads: thread-safe.
QDomDocument parseXml(const QByteArray& bytes, const QString& name,
                      Archive::Internal::TreeFacts* facts = nullptr);

/// Writes a document with sorted attributes, so that the same tree gives the same text on every run. Depth
/// costs memory, not stack.
///
/// Threads: a tree may be used by one thread at a time.
QByteArray writeXml(const QDomDocument& document);

} // namespace Reader
