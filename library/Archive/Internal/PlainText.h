#pragma once

// Tests for names and texts that are certain to be the same after a tree is written and read again. They say
// whether a tree can be searched in place of its text.

#include <QDomNode>
#include <QString>

namespace Archive::Internal {

/// Whether it is a name of ASCII letters, digits, "_", "-" and "." that every XML reader accepts: without a
/// prefix and not too long.
bool isPlainName(const QString& name);

/// Whether all characters are allowed in XML.
bool isPlainText(const QString& text);

/// Whether an attribute of this value has the same value after it is written and read again.
bool survivesRewriting(const QString& value);

/// Whether the node is an XML declaration at the start of the document, of version 1.0 and with no other
/// encoding than UTF-8.
bool isPlainDeclaration(const QDomNode& node);

} // namespace Archive::Internal
