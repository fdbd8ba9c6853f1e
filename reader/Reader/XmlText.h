#pragma once

#include <QByteArray>
#include <QDomDocument>
#include <QString>

namespace Reader {

/// Archives nested deeper than this are refused: operations of the tree need stack for each level.
inline constexpr int maxXmlDepth = 10000;

/// Reads XML text; `name` is the file's name for errors. Throws Error with line and column for text that is not
/// well-formed, for document type declarations (the format has none), and for hostile depth.
QDomDocument parseXml(const QByteArray& bytes, const QString& name);

/// Writes a document with sorted attributes, so that the same tree is the same text on every run. Depth costs
/// memory, not stack.
QByteArray writeXml(const QDomDocument& document);

} // namespace Reader
