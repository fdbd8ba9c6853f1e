#pragma once

// For this project's own use.

#include <QDomDocument>

#include <optional>

namespace Archive::Internal {

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
