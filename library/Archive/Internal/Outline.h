#pragma once

// For this project's own use.

#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/Predeclarations.h"
#include "Archive/Internal/TreeFacts.h"
#include "Archive/Internal/Walk.h"

#include <QDomDocument>

#include <memory>
#include <optional>

namespace Archive::Internal {

/// What is known of a document from one step to the next, so that not every step searches all of it: its `Archive`, the
/// elements of the tags that steps look for everywhere, the records of the predeclarations, and the greatest object id.
/// While an outline stands, elements(), rootObjects(), soleArchive() and maxObjectId() answer from it on this thread;
/// without one they search, with the same results.
///
/// That the document changed is noticed; what changed is told. The outline then brings itself up to date from what it
/// was told, without a search. The functions of Archive and Walk.h tell it all by themselves. A step that brings root
/// objects, base parts or object ids into the document otherwise than by createObject() calls adopted() or forget();
/// one that gives such elements another place, tag or type calls removed() or retyped(); one that writes texts otherwise
/// than by the functions of Archive, and not from texts of the document, calls wrote(); one that gives entries of any
/// array another `index` does so by setIndex(), since they may be records.
class Outline {
public:
    explicit Outline(const QDomDocument& document);
    /// For a document that has not changed since the facts were taken.
    Outline(const QDomDocument& document, TreeFacts facts);
    ~Outline();
    Outline(const Outline&) = delete;
    Outline& operator=(const Outline&) = delete;

    /// The outline that stands on this thread for the node's document, or null.
    static Outline* of(const QDomNode& node);

    /// A new element, still outside the tree, that has an object id or a tag that is kept.
    static void created(const QDomElement& e);

    /// A new text in the document. One that readers may stumble over puts the greatest id in doubt.
    static void wrote(const QString& text);

    /// The node and all in it left the tree, or are about to get another place, or the node another tag.
    static void removed(const QDomNode& e);

    /// The same for a child that was removed from `parent`.
    static void removedChild(const QDomNode& parent, const QDomNode& child);

    /// An array got an entry behind all others, which has that `index`, or in front of them, or lost entries.
    static void appendedItem(const QDomElement& array, const QDomElement& item, long long index);
    static void prependedItem(const QDomElement& array);
    static void removedItems(const QDomElement& array, const Elements& items);

    /// The first so many entries of an array of records have their places, from 1, as `index`; no more is known.
    static void numbered(const QDomElement& array, std::size_t entries);
    /// How many have, as far as is known.
    static std::size_t numberedEntries(const QDomElement& array);

    /// The element got another `type`.
    static void retyped(const QDomElement& e);

    /// The element and all in it came into the tree from another document.
    static void adopted(const QDomElement& e);

    /// Nothing is known any more of the document.
    static void forget(const QDomDocument& document);

    /// The document's one `Archive`, or nothing where the document must be searched for it.
    std::optional<QDomElement> soleArchive();

    using List = std::shared_ptr<TypedElements::List>;

    /// All elements of that tag below, or null where the outline can't tell.
    const List* elements(const QDomNode& below, const QString& tag);

    /// The same from the outline that stands for the node's document, if one does.
    static const List* known(const QDomNode& below, const QString& tag);

    /// What recordsOf() gives. Kept for one array, as there is but one in a project.
    std::shared_ptr<const Records> records(const QDomElement& array);

    /// What Internal::maxObjectId() gives, or nothing where only the document's text can tell.
    std::optional<long long> greatestId();

    /// Whether it is certain that the tree is the same when it is written and read again, and that its text names types
    /// only in attributes `type`.
    bool showsTypes();

    /// A step is done: what it created and left outside the tree is nowhere any more.
    void endStep();

private:
    /// The elements of the kept tags, in document order.
    struct Lists {
        List rootObjects;
        List baseParts;
    };

    struct Removed {
        Elements rootObjects;
        Elements baseParts;

        std::size_t size() const { return rootObjects.size() + baseParts.size(); }
    };

    struct KnownRecords {
        QDomElement array;
        std::shared_ptr<Records> list;
        Elements unread;          ///< appended since
        std::size_t numbered = 0; ///< entries in front that have their place as `index`

        std::size_t size() const { return list->size() + unread.size(); }
    };

    static KnownRecords* knownRecords(const QDomElement& array);
    void forgetRecordsBehind(const QDomNode& parent, const QDomNode& child);
    bool isUpToDate();
    void update();
    void markUpToDate();
    void clear();
    void doubtTexts();
    void findArchive();
    bool dropRemoved();
    bool drop(List& list, const Elements& gone);
    void takeInRetyped();
    void retype(List& list, const Elements& retyped);
    bool takeInCreated();
    bool takeInAppended(std::size_t createdRootObjects, std::size_t createdBaseParts);
    bool takeInInserted(std::size_t createdRootObjects);
    bool isInTree(const QDomNode& node);

    QDomDocument m_document;
    Outline* m_outer;

    // A list of Qt's is built again when it is asked for after a change of the document, and only then. This one
    // shows `m_mark` as long as nothing has changed: the mark was renamed behind its back.
    QDomElement m_markParent;
    QDomElement m_mark;
    QDomNodeList m_marks;

    std::optional<QDomElement> m_archive; ///< the sole `Archive` where it is the document element, else null
    std::optional<Lists> m_lists;
    std::optional<KnownRecords> m_records;
    bool m_isPlain = false; ///< the tree says all that its text would
    std::optional<GreatestId> m_greatest;
    bool m_showsTypes = false;
    std::size_t m_hopsLeft = 0; ///< of an update, from nodes towards the archive
    Elements m_created;         ///< since the last update, and those that were still outside the tree then
    Removed m_removed;          ///< since the last update
    Elements m_retyped;         ///< the same
};

} // namespace Archive::Internal
