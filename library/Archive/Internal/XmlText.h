#pragma once

// For this project's own use.

#include <QDomDocument>
#include <QString>

namespace Archive::Internal {

/// Parses a text out of a document, such as the text of an overlay item, which may be anything. False, and an empty
/// document, for what is no XML and for elements nested so deeply that Qt's parser would overflow the stack.
bool parseXml(QDomDocument& document, const QString& text);

} // namespace Archive::Internal
