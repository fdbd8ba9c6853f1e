#pragma once

// Finding the places where a document's text names the type "StringPtr", by way of the tree.

#include <QDomAttr>
#include <QDomDocument>
#include <QString>

#include <optional>
#include <vector>

namespace Archive::Internal {

/// The attributes of the value "StringPtr" whose name is or ends with `type`. Nothing if the document's text
/// may name the type in other places, or if writing and reading the document may give another tree.
std::optional<std::vector<QDomAttr>> stringPtrAttributes(const QDomDocument& document);

/// Whether all such attributes in the element are named `type`, and writing and reading the element gives the
/// same tree.
bool showsTypes(const QDomElement& top);

} // namespace Archive::Internal
