#pragma once

// For this project's own use: names and texts that are the same in the tree and in its text, beyond doubt.

#include <QDomNode>
#include <QString>

namespace Archive::Internal {

/// A name of ASCII letters, digits, "_", "-" and "." that any XML reader takes, without a prefix and not too long.
bool isPlainName(const QString& name);

/// Nothing but characters that XML allows.
bool isPlainText(const QString& text);

/// Nothing but characters that stay as they are when an attribute is written and read again.
bool survivesRewriting(const QString& value);

/// An XML declaration in front of all else that names version 1.0 and no encoding but UTF-8.
bool isPlainDeclaration(const QDomNode& node);

} // namespace Archive::Internal
