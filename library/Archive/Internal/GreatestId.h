#pragma once

#include <QByteArray>
#include <QDomDocument>
#include <QDomElement>

#include <optional>

namespace Archive::Internal {

// The greatest object id of a document. By definition it is what a reader of the document's text finds, which stops at
// its first error; where it is certain that the tree gives the same, the tree is searched.

/// What a scan of a text finds.
struct ScannedIds {
    long long greatest = 1;
    bool isComplete = false; ///< false where an error stopped the reading
};
ScannedIds scanIds(const QByteArray& documentText);

/// The greatest object id of a tree, and an element that has it; a null element where none has an id above 1.
struct GreatestId {
    long long id = 1;
    QDomElement holder;
};

/// Searches the tree, or an element of it; nothing where only the text of the document gives it.
std::optional<GreatestId> searchGreatestId(const QDomDocument& document);
std::optional<GreatestId> searchGreatestId(const QDomElement& top);

/// The same for an element in which the first form found everything plain, and which got nothing since that is not.
GreatestId searchGreatestIdOfPlain(const QDomElement& top);

/// Elements with more attributes are not searched: to fetch one of them by number takes as many steps.
constexpr int mostPlainAttributes = 100;

/// Whether the text outside the document element is such that readers have no trouble with it.
bool hasPlainFrame(const QDomDocument& document);

} // namespace Archive::Internal
