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

/// Archives are refused where the depths of all tags, added up, are more than the first number and the second one for
/// each tag: each change of an element takes a walk up to the root. A project has average depths below 20.
inline constexpr long long maxXmlNesting = 32'000'000;
inline constexpr long long maxXmlNestingOfEach = 64;

/// Elements with more attributes than this are refused: the parser compares each attribute with all others.
inline constexpr int maxXmlAttributes = 256;

/// Reads XML text in UTF-8, UTF-16, or an encoding that it declares and that writes ASCII characters as one byte; `name`
/// is the file's name for errors. Throws Error with line and column for text that is not
/// well-formed, for document type declarations (the format has none), and for hostile depth or
/// numbers of attributes. `facts`, where they are given, get what the tree holds.
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
