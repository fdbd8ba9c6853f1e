#pragma once

// For this project's own use.

#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/Walk.h"

#include <QDomDocument>

#include <optional>

namespace Archive::Internal {

/// What is known of a document from one step to the next, so that not every step searches all of it: its `Archive`,
/// the elements of the tags that steps look for everywhere, and the greatest object id. While an outline stands,
/// elements(), rootObjects(), soleArchive() and maxObjectId() answer from it on this thread; without one they
/// search, with the same results.
///
/// Every change of the document is noticed, but for elements that get a kept tag by renaming. After a change the outline brings itself up
/// to date from what was created meanwhile, without a search. So a step that brings root objects, base parts or
/// object ids into the document otherwise than by createObject() calls adopted() or forget(); one that gives such
/// elements another place calls rearranged(); one that writes texts otherwise than by the functions of Archive,
/// and not from texts of the document, calls wrote().
class Outline {
public:
    explicit Outline(const QDomDocument& document);
    ~Outline();
    Outline(const Outline&) = delete;
    Outline& operator=(const Outline&) = delete;

    /// The outline that stands on this thread for the node's document, or null.
    static Outline* of(const QDomNode& node);

    /// A new element, still outside the tree, that has an object id or a tag that is kept.
    static void created(const QDomElement& e);

    /// A new text in the document. One that readers may stumble over puts the greatest id in doubt.
    static void wrote(const QString& text);

    /// The element and all in it came into the tree from another document.
    static void adopted(const QDomElement& e);

    /// Root objects or base parts of the document got another place: their lists are searched anew.
    static void rearranged(const QDomDocument& document);

    /// Nothing is known any more of the document.
    static void forget(const QDomDocument& document);

    /// The document's one `Archive`, or nothing where the document must be searched for it.
    std::optional<QDomElement> soleArchive();

    /// All elements of that tag below, or null where the outline can't tell.
    const Elements* elements(const QDomNode& below, const QString& tag);

    /// What Internal::maxObjectId() gives, or nothing where only the document's text can tell.
    std::optional<long long> greatestId();

    /// A step is done: what it created and left outside the tree is nowhere any more.
    void endStep();

private:
    /// The elements of the kept tags, in document order.
    struct Lists {
        Elements rootObjects;
        Elements baseParts;
    };

    bool isUpToDate();
    void update();
    void markUpToDate();
    void clear();
    void doubtTexts();
    void findArchive();
    bool dropRemoved();
    void dropRemoved(Elements& list, const QString& tag);
    bool takeInCreated();
    bool takeInAppended(std::size_t createdRootObjects, std::size_t createdBaseParts);
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
    bool m_isPlain = false; ///< the tree says all that its text would
    std::optional<GreatestId> m_greatest;
    std::size_t m_hopsLeft = 0; ///< of an update, from nodes towards the archive
    Elements m_created;         ///< since the last update, and those that were still outside the tree then
};

} // namespace Archive::Internal
