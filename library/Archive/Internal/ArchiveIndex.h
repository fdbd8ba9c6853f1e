#pragma once

#include "Archive/Internal/GreatestId.h"
#include "Archive/Internal/Predeclarations.h"
#include "Archive/Internal/TreeFacts.h"
#include "Archive/Internal/Walk.h"

#include <QDomDocument>

#include <memory>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace Archive::Internal {

/// An index of one archive: its `Archive` element, its root objects and base parts, the records of its
/// predeclarations and its greatest object id. Each is searched for at its first use and cached until a
/// change makes it invalid. The owner of the index, ArchiveEditor, notifies it of every change. Not
/// thread-safe.
class ArchiveIndex {
public:
    explicit ArchiveIndex(const QDomDocument& document) : m_document(document) {}

    /// For a document that has not changed since the facts were collected.
    ArchiveIndex(const QDomDocument& document, TreeFacts facts);

    /// The document's only `Archive` element, at any depth; a null element if there is none or several.
    QDomElement archive();

    /// All descendants of the tag `RootObject` or `BaseOfObject`, in document order, with their types.
    TypedElements elements(const QDomNode& below, const QString& tag);

    /// All elements of a listed type, in no particular order.
    Elements ofListedType(const QString& type);

    /// The entries of an array of predeclarations.
    RecordList records(const QDomElement& array);

    /// The same with all further `Item` elements below them, which some steps take for records as well. Those may be
    /// missing that declare nothing and have an empty `Data` or none.
    RecordList recordsAtAnyDepth(const QDomElement& array);

    /// The number of leading entries of the array whose `index` is known to be their position.
    std::size_t numberedRecords(const QDomElement& array) const;

    /// The greatest object id; nothing if it has to be scanned in the text of the document.
    std::optional<long long> greatestId();

    /// Caches the result of a scan of the document's text. To be called if greatestId() gives nothing.
    void setScannedIds(const ScannedIds& ids);

    /// Whether it is certain that writing and reading the document gives the same tree, and that its text
    /// names types only in attributes `type`.
    bool showsTypes() const { return m_showsTypes; }

    // Notifications of changes.

    /// An element that is not in the tree got an object id. It may be inserted later.
    void created(const QDomElement& e, long long id) { m_created.push_back({e, id}); }
    /// The ids of root objects that were removed since the last call, in order. One that was inserted again is among
    /// them.
    std::vector<unsigned long long> takeRemovedRootObjects() {
        return std::exchange(m_removedRootObjects, {});
    }

    /// An element was created with that type, or got it. It may be inserted later.
    void typed(const QDomElement& e, const QString& type);
    /// A text was written to an attribute.
    void wrote(const QString& text);
    /// `child` became a child of `parent`; `isLast`: as its last child.
    void inserted(const QDomElement& parent, const QDomNode& child, bool isLast);
    /// `child` is about to be removed from `parent`, with all its descendants.
    void removed(const QDomNode& parent, const QDomNode& child);
    /// An element of another document is about to be inserted, with all its descendants.
    void imported(const QDomElement& e);
    /// An element is about to get another tag.
    void renamed(const QDomElement& e, const QString& newTag);
    /// An element got another type.
    void retyped(const QDomElement& e);
    /// An array of predeclarations got a record as its last entry.
    void appendedRecord(const QDomElement& array);
    /// An array of predeclarations now has exactly these records. The first `numbered` have their position as
    /// `index`.
    void setRecords(const QDomElement& array, std::shared_ptr<Records> records, std::size_t numbered);
    /// An entry of an array got another `index`.
    void renumbered(const QDomNode& array);
    /// The document was changed in an unknown way: nothing cached is valid.
    void invalidate();
    /// A step has ended. Elements that it created but did not insert will not be inserted later.
    void endStep();

private:
    using List = std::shared_ptr<TypedElements::List>; ///< null if not cached

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
    void collectInserted();
    void readTypes();
    void invalidateLists();
    void invalidateTexts();
    bool isInTree(const QDomNode& node, std::size_t& steps);
    void countCreated();
    void invalidateRecordsAt(const QDomNode& parent, const QString& childTag);
    bool isInPlainArray(QDomNode node) const;

    QDomDocument m_document;
    std::optional<QDomElement> m_archive;

    // Cached lists, and the changes since their last update.
    List m_rootObjects;
    List m_baseParts;
    std::unordered_map<const void*, QDomElement> m_removed; ///< by identity
    std::vector<unsigned long long> m_removedRootObjects;
    QDomElement m_lastAppended;   ///< the last root object that was appended to the archive
    bool m_isOneInserted = false; ///< a root object was inserted into the archive, not as its last child
    std::unordered_set<const void*> m_retyped; ///< by identity

    /// The lists may also contain elements that left the tree or have another type by now, and the same one twice. A
    /// list that is missing has to be searched for.
    ElementsByType m_byType;

    std::optional<KnownRecords> m_records;
    /// An array of predeclarations of which recordsAtAnyDepth() can leave out what is below its entries; null if none is
    /// known.
    QDomElement m_plainArray;

    std::optional<GreatestId> m_greatest;
    bool m_isGreatestFromText = false;
    bool m_mayHolderBeRemoved = false;
    bool m_isPlain = false;         ///< searching the tree gives the same ids as scanning its text
    std::vector<Created> m_created; ///< elements that were not in the tree at the last update

    bool m_showsTypes = false;
};

} // namespace Archive::Internal
