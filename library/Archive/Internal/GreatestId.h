#pragma once

#include <QByteArray>
#include <QDomDocument>
#include <QDomElement>

#include <optional>

namespace Archive::Internal {

// The greatest object id of a document. By definition it is the one that a scan of the document's text finds,
// and the scan stops at the first error in the text. The tree is searched instead where it is certain that
// the result is the same, because that is far cheaper.

/// The result of a scan of a text.
struct ScannedIds {
    long long greatest = 1;
    bool isComplete = false; ///< false where an error stopped the reading
};
ScannedIds scanIds(const QByteArray& documentText);

/// The greatest object id of a tree, and an element that has it; a null element if no id is above 1.
struct GreatestId {
    long long id = 1;
    QDomElement holder;
};

/// Searches a document, or an element with its descendants. Gives nothing if only a scan of the text can give
/// the id.
std::optional<GreatestId> searchGreatestId(const QDomDocument& document);
std::optional<GreatestId> searchGreatestId(const QDomElement& top);

/// The same without checks, for an element that the first form has searched with success and that got only
/// plain names and texts since.
GreatestId searchGreatestIdOfPlain(const QDomElement& top);

/// Elements with more attributes are not searched: fetching an attribute by number takes time that grows with
/// the number.
constexpr int mostPlainAttributes = 100;

/// Whether there is nothing outside the document element but a plain XML declaration.
bool hasPlainFrame(const QDomDocument& document);

} // namespace Archive::Internal
