#pragma once

// For this project's own use.

#include <QDomDocument>
#include <QString>

namespace Archive::Internal {

/// Parses a text out of a document, such as the text of an overlay item, which may be anything. Of a broken text the
/// document gets what was read in front of the fault; of one whose elements nest so deeply that Qt's parser would
/// overflow the stack, nothing.
void parseXml(QDomDocument& document, const QString& text);

} // namespace Archive::Internal
