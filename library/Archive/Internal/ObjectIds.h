#pragma once

// For this project's own use.

#include <QByteArray>
#include <QDomDocument>
#include <QDomElement>

#include <optional>

namespace Archive::Internal {

/// What getMaxObjectId() finds in a text.
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

/// Searches the tree, or an element of it; nothing where only the text of the document can tell.
std::optional<GreatestId> searchGreatestId(const QDomDocument& document);
std::optional<GreatestId> searchGreatestId(const QDomElement& top);

/// The same for an element in which the first form once found all plain, and nothing doubtful came since.
GreatestId searchGreatestIdOfPlain(const QDomElement& top);

/// Elements with more attributes count as doubtful: each is counted out from the first when it is fetched by number.
constexpr int mostPlainAttributes = 100;

/// Whether what stands outside the document element is beyond doubt.
bool hasPlainFrame(const QDomDocument& document);

/// What getMaxObjectId() gives for the document's toByteArray(1), without writing the text where the tree can
/// tell as well.
long long maxObjectId(const QDomDocument& document);

/// The running object id of a step. The document is searched when the first id is wanted, once.
class ObjectIds {
public:
    explicit ObjectIds(const QDomDocument& document) : m_document(document) {}

    /// The counter itself, for addPredeclaration().
    long long& greatest();

    /// Counts up and gives the new id.
    long long next();

private:
    QDomDocument m_document;
    std::optional<long long> m_greatest;
};

} // namespace Archive::Internal
