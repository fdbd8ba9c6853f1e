#pragma once

// For this project's own use.

#include <QDomDocument>
#include <QString>

namespace Archive::Internal {

/// A "StringPtr" that holds a value: the nullable text of documents before version 44.
QDomElement createStringPtr(QDomDocument& doc, const QString& name, const QString& value);

} // namespace Archive::Internal
