#pragma once

// For this project's own use.

#include <QDomAttr>
#include <QDomDocument>
#include <QString>

#include <optional>
#include <vector>

namespace Archive::Internal {

/// The attributes that name the type "StringPtr" in the document's text, where the end of a longer name counts as
/// well. Nothing where only the text can tell, or where it would not give the same tree when it is read again.
std::optional<std::vector<QDomAttr>> stringPtrAttributes(const QDomDocument& document);

/// Whether all of these are attributes `type` in the element, and its tree is the same when it is written and read
/// again.
bool showsTypes(const QDomElement& top);

} // namespace Archive::Internal
