#pragma once

// Parsing XML text that is stored inside a document.

#include <QDomDocument>
#include <QString>

namespace Archive::Internal {

/// Parses a text that is stored in a document, such as the text of an overlay item. Any text is accepted. If
/// it is not well-formed, `document` gets what was read before the error. If elements are nested so deeply
/// that Qt's parser would overflow the stack, `document` is empty.
void parseXml(QDomDocument& document, const QString& text);

} // namespace Archive::Internal
