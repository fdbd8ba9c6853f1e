#include "Archive/Internal/Outline.h"

#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/PlainText.h"
#include "Archive/Internal/StringPtr.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <utility>

namespace Archive::Internal {
namespace {

thread_local Outline* standing = nullptr;

const QString unchanged = QStringLiteral("unchanged");
const QString changed = QStringLiteral("changed");

/// The list, which others may share, to be changed.
template <class List>
List& own(std::shared_ptr<List>& list) {
    if (list.use_count() > 1)
        list = std::make_shared<List>(*list);
    return *list;
}

} // namespace

Outline::Outline(const QDomDocument& document)
    : m_document(document), m_outer(standing),
      m_markParent(m_document.createElement(QStringLiteral("marks"))),
      m_mark(m_document.createElement(unchanged)) {
    m_markParent.appendChild(m_mark);
    standing = this;
}

Outline::Outline(const QDomDocument& document, TreeFacts facts) : Outline(document) {
    const QDomElement top = document.documentElement();
    const bool isSole = facts.archives == 1 && top.tagName() == Words::Archive;
    m_archive = isSole ? top : QDomElement();
    m_lists = Lists{std::move(facts.rootObjects), std::move(facts.baseParts)};
    m_greatest = facts.greatest;
    m_isPlain = m_greatest && isSole;
    m_showsTypes = facts.showsTypes;
    markUpToDate();
}

Outline::~Outline() {
    standing = m_outer;
}

Outline* Outline::of(const QDomNode& node) {
    const bool isMine = standing && (node.isDocument() ? node : node.ownerDocument()) == standing->m_document;
    return isMine ? standing : nullptr;
}

void Outline::created(const QDomElement& e) {
    if (Outline* outline = of(e))
        outline->m_created.push_back(e);
}

void Outline::wrote(const QString& text) {
    if (!standing || survivesRewriting(text))
        return;
    standing->m_showsTypes = false;
    if (!isPlainText(text))
        standing->doubtTexts();
}

void Outline::adopted(const QDomElement& e) {
    Outline* outline = of(e);
    if (!outline)
        return;
    outline->m_showsTypes = outline->m_showsTypes && Internal::showsTypes(e);
    if (!searchGreatestId(e))
        outline->doubtTexts();
    for (QDomNode node = e; !node.isNull(); node = nextInDocument(node, e)) {
        if (node.isElement())
            outline->m_created.push_back(node.toElement());
    }
}

void Outline::removed(const QDomNode& e) {
    Outline* outline = of(e);
    if (!outline || !outline->m_lists)
        return;
    for (QDomNode node = e; !node.isNull(); node = nextInDocument(node, e)) {
        const QString tag = node.nodeName();
        if (tag == Words::RootObject)
            outline->m_removed.rootObjects.push_back(node.toElement());
        else if (tag == Words::BaseOfObject)
            outline->m_removed.baseParts.push_back(node.toElement());
    }
}

void Outline::removedChild(const QDomNode& parent, const QDomNode& child) {
    removed(child);
    if (Outline* outline = of(child))
        outline->forgetRecordsBehind(parent, child);
}

/// A child of an entry that tells of its record may be that record, or its id.
void Outline::forgetRecordsBehind(const QDomNode& parent, const QDomNode& child) {
    if (!m_records)
        return;
    const QString tag = child.nodeName();
    const bool isPart = (tag == Words::Item && parent == m_records->array) ||
                        (tag == Words::Data && parent.parentNode() == m_records->array) ||
                        (tag == Words::oid && parent.parentNode().parentNode() == m_records->array);
    if (isPart)
        m_records.reset();
}

Outline::KnownRecords* Outline::knownRecords(const QDomElement& array) {
    Outline* outline = of(array);
    return outline && outline->m_records && outline->m_records->array == array ? &*outline->m_records
                                                                               : nullptr;
}

void Outline::appendedItem(const QDomElement& array, const QDomElement& item, long long index) {
    KnownRecords* records = knownRecords(array);
    if (!records)
        return;
    const bool isNumbered =
        records->numbered == records->size() && index == static_cast<long long>(records->size()) + 1;
    records->unread.push_back(item);
    records->numbered += isNumbered ? 1 : 0;
}

void Outline::prependedItem(const QDomElement& array) {
    if (knownRecords(array))
        of(array)->m_records.reset();
}

void Outline::numbered(const QDomElement& array, std::size_t entries) {
    if (KnownRecords* records = knownRecords(array))
        records->numbered = std::min(entries, records->size());
}

std::size_t Outline::numberedEntries(const QDomElement& array) {
    const KnownRecords* records = knownRecords(array);
    return records ? records->numbered : 0;
}

void Outline::removedItems(const QDomElement& array, const Elements& items) {
    for (const QDomElement& item : items)
        removed(item);
    KnownRecords* records = knownRecords(array);
    if (!records || items.empty())
        return;
    of(array)->records(array); // reads those that are appended
    Records& list = own(records->list);
    const auto first = std::find_if(list.begin(), list.end(),
                                    [&](const Record& record) { return record.item == items.front(); });
    records->numbered = std::min(records->numbered, static_cast<std::size_t>(first - list.begin()));
    auto next = items.begin();
    list.erase(std::remove_if(first, list.end(),
                              [&](const Record& record) {
                                  const bool isGone = next != items.end() && record.item == *next;
                                  next += isGone ? 1 : 0;
                                  return isGone;
                              }),
               list.end());
}

void Outline::retyped(const QDomElement& e) {
    Outline* outline = of(e);
    const QString tag = e.tagName();
    if (outline && outline->m_lists && (tag == Words::RootObject || tag == Words::BaseOfObject))
        outline->m_retyped.push_back(e);
}

void Outline::forget(const QDomDocument& document) {
    if (Outline* outline = of(document))
        outline->clear();
}

void Outline::clear() {
    m_archive.reset();
    m_lists.reset();
    m_records.reset();
    doubtTexts();
    m_created.clear();
    m_removed = {};
    m_retyped.clear();
}

void Outline::doubtTexts() {
    m_showsTypes = false;
    m_isPlain = false;
    m_greatest.reset();
}

bool Outline::isUpToDate() {
    return m_archive && m_removed.size() == 0 && m_retyped.empty() && m_marks.length() == 1;
}

void Outline::markUpToDate() {
    m_mark.setTagName(unchanged);
    m_marks = m_markParent.elementsByTagName(unchanged);
    m_marks.length(); // builds the list
    m_mark.setTagName(changed);
}

void Outline::update() {
    if (isUpToDate())
        return;
    if (m_archive && (m_archive->isNull() || m_document.documentElement() != *m_archive))
        clear();
    m_hopsLeft = mostHops(m_created.size() + m_removed.size() +
                          (m_lists ? m_lists->rootObjects->size() + m_lists->baseParts->size() : 0));
    if (m_archive && !(dropRemoved() && takeInCreated()))
        clear();
    takeInRetyped();
    if (!m_archive) {
        clear();
        findArchive();
    }
    markUpToDate();
}

void Outline::findArchive() {
    const QDomNodeList found = m_document.elementsByTagName(Words::Archive);
    const bool isSole = found.length() == 1 && found.item(0) == m_document.documentElement();
    m_archive = isSole ? found.item(0).toElement() : QDomElement();
}

bool Outline::isInTree(const QDomNode& node) {
    QDomNode ancestor = node;
    while (m_hopsLeft > 0 && !ancestor.isNull() && ancestor != *m_archive) {
        ancestor = ancestor.parentNode();
        --m_hopsLeft;
    }
    return !ancestor.isNull();
}

namespace {

/// Calls `visit` on the entries of the elements, and gives whether all were met. Changes come in document order as a
/// rule: then one pass that compares addresses meets them all.
template <class Visit>
bool visitEntries(TypedElements::List& list, const Elements& elements, Visit visit) {
    auto next = elements.begin();
    for (auto entry = list.begin(); entry != list.end() && next != elements.end(); ++entry) {
        if (entry->element != *next)
            continue;
        visit(*entry);
        ++next;
    }
    std::unordered_set<const void*> left;
    std::transform(next, elements.end(), std::inserter(left, left.end()), identityOf);
    for (auto entry = list.begin(); entry != list.end() && !left.empty(); ++entry) {
        if (left.erase(identityOf(entry->element)) > 0)
            visit(*entry);
    }
    return left.empty();
}

Elements withTag(const Elements& elements, const QString& tag) {
    Elements result;
    std::copy_if(elements.begin(), elements.end(), std::back_inserter(result),
                 [&](const QDomElement& e) { return e.tagName() == tag; });
    return result;
}

} // namespace

/// False where the document is too deep to go on.
bool Outline::dropRemoved() {
    if (m_greatest && !m_greatest->holder.isNull() && !isInTree(m_greatest->holder))
        m_greatest.reset();
    const bool areDropped = m_lists && drop(m_lists->rootObjects, m_removed.rootObjects) &&
                            drop(m_lists->baseParts, m_removed.baseParts);
    if (!areDropped)
        m_lists.reset();
    // They may come back into the tree as if they were new.
    m_created.insert(m_created.end(), m_removed.rootObjects.begin(), m_removed.rootObjects.end());
    m_created.insert(m_created.end(), m_removed.baseParts.begin(), m_removed.baseParts.end());
    m_removed = {};
    return m_hopsLeft > 0;
}

/// False where not all of them are found.
bool Outline::drop(List& list, const Elements& gone) {
    if (gone.empty())
        return true;
    TypedElements::List& entries = own(list);
    if (!visitEntries(entries, gone, [](TypedElement& e) { e.element = QDomElement(); }))
        return false;
    std::erase_if(entries, [](const TypedElement& e) { return e.element.isNull(); });
    return true;
}

void Outline::takeInRetyped() {
    if (m_lists) {
        retype(m_lists->rootObjects, withTag(m_retyped, Words::RootObject));
        retype(m_lists->baseParts, withTag(m_retyped, Words::BaseOfObject));
    }
    m_retyped.clear();
}

void Outline::retype(List& list, const Elements& retyped) {
    if (retyped.empty())
        return;
    const auto readType = [](TypedElement& e) { e.type = e.element.attribute(Words::type); };
    TypedElements::List& entries = own(list);
    if (!visitEntries(entries, retyped, readType))
        std::for_each(entries.begin(), entries.end(), readType);
}

/// False where the document is too deep to go on.
bool Outline::takeInCreated() {
    Elements outside;
    std::size_t rootObjects = 0;
    std::size_t baseParts = 0;
    for (const QDomElement& e : m_created) {
        if (!isInTree(e)) {
            outside.push_back(e);
            continue;
        }
        rootObjects += e.tagName() == Words::RootObject ? 1 : 0;
        baseParts += e.tagName() == Words::BaseOfObject ? 1 : 0;
        const long long id = e.attribute(Words::objectId).toLongLong();
        if (m_greatest && id > m_greatest->id)
            m_greatest = GreatestId{id, e};
    }
    m_created = std::move(outside);
    const bool areTakenIn = !m_lists || rootObjects + baseParts == 0 ||
                            takeInAppended(rootObjects, baseParts) ||
                            (baseParts == 0 && takeInInserted(rootObjects));
    if (!areTakenIn)
        m_lists.reset();
    return m_hopsLeft > 0;
}

namespace {

/// The root objects and base parts of a tree, itself included.
void collect(const QDomElement& top, TypedElements::List& rootObjects, TypedElements::List& baseParts) {
    for (QDomNode node = top; !node.isNull(); node = nextInDocument(node, top)) {
        const QString tag = node.nodeName();
        if (tag == Words::RootObject || tag == Words::BaseOfObject) {
            const QDomElement e = node.toElement();
            (tag == Words::RootObject ? rootObjects : baseParts).push_back({e, e.attribute(Words::type)});
        }
    }
}

} // namespace

/// New root objects mostly stand behind all others, and all that is in them behind all that is known. False, and
/// nothing is taken in, where not all new elements are there.
bool Outline::takeInAppended(std::size_t createdRootObjects, std::size_t createdBaseParts) {
    TypedElements::List& rootObjects = own(m_lists->rootObjects);
    TypedElements::List& baseParts = own(m_lists->baseParts);
    const auto last = std::find_if(rootObjects.rbegin(), rootObjects.rend(), [this](const TypedElement& e) {
        return e.element.parentNode() == *m_archive;
    });
    if (last == rootObjects.rend())
        return false;
    const std::size_t knownRootObjects = rootObjects.size();
    const std::size_t knownBaseParts = baseParts.size();
    for (QDomElement object = last->element.nextSiblingElement(Words::RootObject); !object.isNull();
         object = object.nextSiblingElement(Words::RootObject))
        collect(object, rootObjects, baseParts);
    const bool areThere = rootObjects.size() - knownRootObjects == createdRootObjects &&
                          baseParts.size() - knownBaseParts == createdBaseParts;
    if (!areThere) {
        rootObjects.resize(knownRootObjects);
        baseParts.resize(knownBaseParts);
    }
    return areThere;
}

/// New children of the archive without base parts, wherever they stand. False where not all new root objects are
/// such, or the known ones among them stand otherwise than they did: then the order of the lists is open.
bool Outline::takeInInserted(std::size_t createdRootObjects) {
    const TypedElements::List& known = *m_lists->rootObjects;
    TypedElements::List rootObjects;
    TypedElements::List baseParts;
    auto next = known.begin();
    const auto copyNext = [&] { rootObjects.push_back(*next++); };
    for (QDomElement object = m_archive->firstChildElement(Words::RootObject); !object.isNull();
         object = object.nextSiblingElement(Words::RootObject)) {
        if (next == known.end() || next->element != object) {
            collect(object, rootObjects, baseParts);
            continue;
        }
        copyNext();
        while (next != known.end() && next->element.parentNode() != *m_archive)
            copyNext();
    }
    const bool areThere =
        next == known.end() && baseParts.empty() && rootObjects.size() == known.size() + createdRootObjects;
    if (areThere)
        m_lists->rootObjects = std::make_shared<TypedElements::List>(std::move(rootObjects));
    return areThere;
}

const Outline::List* Outline::elements(const QDomNode& below, const QString& tag) {
    if (tag != Words::RootObject && tag != Words::BaseOfObject)
        return nullptr;
    update();
    if (m_archive->isNull() || !(below.isDocument() || below == *m_archive))
        return nullptr;
    if (!m_lists)
        m_lists =
            Lists{searchTyped(m_document, Words::RootObject), searchTyped(m_document, Words::BaseOfObject)};
    return tag == Words::RootObject ? &m_lists->rootObjects : &m_lists->baseParts;
}

const Outline::List* Outline::known(const QDomNode& below, const QString& tag) {
    Outline* outline = of(below);
    return outline ? outline->elements(below, tag) : nullptr;
}

std::shared_ptr<const Records> Outline::records(const QDomElement& array) {
    if (!m_records || m_records->array != array)
        m_records = KnownRecords{array, std::make_shared<Records>(), children(array, Words::Item), 0};
    if (!m_records->unread.empty()) {
        Records& list = own(m_records->list);
        for (const QDomElement& item : m_records->unread)
            list.push_back(recordIn(item));
        m_records->unread.clear();
    }
    return m_records->list;
}

std::optional<QDomElement> Outline::soleArchive() {
    update();
    return m_archive->isNull() ? std::nullopt : m_archive;
}

std::optional<long long> Outline::greatestId() {
    update();
    if (!m_greatest)
        m_greatest = m_isPlain ? searchGreatestIdOfPlain(*m_archive) : searchGreatestId(m_document);
    m_isPlain = m_greatest && !m_archive->isNull();
    return m_greatest ? std::optional(m_greatest->id) : std::nullopt;
}

bool Outline::showsTypes() {
    update();
    return m_showsTypes;
}

void Outline::endStep() {
    update();
    m_created.clear();
}

} // namespace Archive::Internal
