#pragma once

#include "Archive/Internal/GreatestId.h"
#include "Archive/Internal/Predeclarations.h"
#include "Archive/Internal/TreeFacts.h"
#include "Archive/Internal/Walk.h"

#include <QDomDocument>

#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Archive::Internal {

/// An index of one archive: its `Archive` element, its root objects and base parts, the records of its
/// predeclarations and its greatest object id. Each is searched for when it is first wanted and kept until a change
/// makes it invalid. The owner of the index, ArchiveEditor, notifies it of every change. Not safe for use by several
/// threads at once.
class ArchiveIndex {
public:
    explicit ArchiveIndex(const QDomDocument& document) : m_document(document) {}

    /// For a document that has not changed since the facts were collected.
    ArchiveIndex(const QDomDocument& document, TreeFacts facts);

    /// The document's only `Archive` element, at any depth; a null element where there is none or several.
    QDomElement archive();

    /// All descendants of the tag `RootObject` or `BaseOfObject`, in document order, with their types.
    TypedElements elements(const QDomNode& below, const QString& tag);

    /// The entries of an array of predeclarations.
    RecordList records(const QDomElement& array);

    /// How many entries of the array, counted from the first, are known to have their position as `index`.
    std::size_t numberedRecords(const QDomElement& array) const;

    /// The greatest object id, or nothing where only the text of the document gives it.
    std::optional<long long> greatestId();

    /// Stores what a scan of the document's text gave, where greatestId() gives nothing.
    void setScannedIds(const ScannedIds& ids);

    /// Whether it is certain that the tree is the same when it is written and read again, and that its text names
    /// types only in attributes `type`.
    bool showsTypes() const { return m_showsTypes; }

    // Notifications of changes.

    /// An element that is not in the tree, or not yet, has an object id.
    void created(const QDomElement& e, long long id) { m_created.push_back({e, id}); }
    /// The ids of root objects that were removed since the last call, in order. One that was inserted again is among
    /// them.
    std::vector<unsigned long long> takeRemovedRootObjects() { return std::exchange(m_removedRootObjects, {}); }

    /// A text was written to an attribute.
    void wrote(const QString& text);
    /// `child` became a child of `parent`, which has `isLast` children behind it or none.
    void inserted(const QDomElement& parent, const QDomNode& child, bool isLast);
    /// `child` is about to leave its place below `parent`, with all below it.
    void removed(const QDomNode& parent, const QDomNode& child);
    /// An element came from another document, with all below it.
    void imported(const QDomElement& e);
    /// An element is about to get another tag.
    void renamed(const QDomElement& e, const QString& newTag);
    /// An element got another type.
    void retyped(const QDomElement& e);
    /// An array of predeclarations got a record as its last entry.
    void appendedRecord(const QDomElement& array);
    /// An array of predeclarations is left with these records; so many have their position as `index`.
    void setRecords(const QDomElement& array, std::shared_ptr<Records> records, std::size_t numbered);
    /// An entry of an array got another `index`.
    void numberedAnew(const QDomNode& array);
    /// The document changed in a way that is not known.
    void invalidate();
    /// A step has ended: elements that it created and did not insert are not inserted later.
    void endStep();

private:
    using List = std::shared_ptr<TypedElements::List>; ///< null where it is not known

    struct Created {
        QDomElement element;
        long long id;
    };

    struct KnownRecords {
        QDomElement array;
        std::shared_ptr<Records> list;
        std::size_t numbered = 0;
    };

    bool isIndexed(const QDomNode& below);
    bool isInNewRootObject(const QDomNode& node) const;
    void update();
    void dropRemoved();
    void collectAppended();
    void readTypes();
    void invalidateLists();
    void invalidateTexts();
    bool isInTree(const QDomNode& node, std::size_t& steps);
    void countCreated();
    void forgetRecordsAt(const QDomNode& parent, const QString& childTag);

    QDomDocument m_document;
    std::optional<QDomElement> m_archive;

    // Lists, and what has changed since they were up to date.
    List m_rootObjects;
    List m_baseParts;
    std::unordered_map<const void*, QDomElement> m_removed; ///< by identity
    std::vector<unsigned long long> m_removedRootObjects;
    QDomElement m_lastAppended; ///< the last root object that was appended to the archive
    bool m_areTypesStale = false;

    std::optional<KnownRecords> m_records;

    std::optional<GreatestId> m_greatest;
    bool m_isGreatestFromText = false;
    bool m_mayHolderBeGone = false;
    bool m_isPlain = false;         ///< the tree gives the same ids as its text
    std::vector<Created> m_created; ///< those that were not in the tree at the last update

    bool m_showsTypes = false;
};

} // namespace Archive::Internal
