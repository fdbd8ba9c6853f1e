#include "Archive/Internal/ArchiveIndex.h"

#include "Archive/Internal/PlainText.h"
#include "Archive/Internal/StringPtr.h"

#include <algorithm>
#include <utility>

namespace Archive::Internal {
namespace {

bool isIndexedTag(const QString& tag) {
    return tag == Words::RootObject || tag == Words::BaseOfObject;
}

/// The most steps from nodes to their ancestors, for that many nodes. With more steps, walking through the
/// whole document once is cheaper: nodes can be thousands of levels deep.
constexpr std::size_t mostSteps(std::size_t nodes) {
    return 1000 + 20 * nodes;
}

/// The list for changing: a shared list is copied first.
TypedElements::List& own(std::shared_ptr<TypedElements::List>& list) {
    if (list.use_count() > 1)
        list = std::make_shared<TypedElements::List>(*list);
    return *list;
}

/// Calls `visit` for a node and all its descendants, in document order.
template <class Visit>
void forEachNode(const QDomNode& top, Visit visit) {
    for (QDomNode node = top; !node.isNull(); node = nextInDocument(node, top))
        visit(node);
}

} // namespace

ArchiveIndex::ArchiveIndex(const QDomDocument& document, TreeFacts facts) : m_document(document) {
    m_greatest = facts.greatest;
    m_showsTypes = facts.showsTypes;
    const QDomElement top = document.documentElement();
    if (facts.archives != 1 || top.tagName() != Words::Archive)
        return;
    m_archive = top;
    m_rootObjects = std::move(facts.rootObjects);
    m_baseParts = std::move(facts.baseParts);
    m_byType = std::move(facts.elementsByType);
    m_isPlain = m_greatest.has_value();
}

QDomElement ArchiveIndex::archive() {
    if (!m_archive) {
        const QDomNodeList found = m_document.elementsByTagName(Words::Archive);
        m_archive = found.length() == 1 ? found.item(0).toElement() : QDomElement();
    }
    return *m_archive;
}

/// Lists are cached only if the archive is the document element: then the document and the archive have the
/// same descendants.
bool ArchiveIndex::isIndexed(const QDomNode& below) {
    const QDomElement top = archive();
    return !top.isNull() && (below == top || below.isDocument()) && m_document.documentElement() == top;
}

TypedElements ArchiveIndex::elements(const QDomNode& below, const QString& tag) {
    if (!isIndexed(below))
        return TypedElements(typedElements(below, tag));
    update();
    List& list = tag == Words::RootObject ? m_rootObjects : m_baseParts;
    if (!list)
        list = typedElements(m_document, tag);
    return TypedElements(list);
}

Elements ArchiveIndex::ofListedType(const QString& type) {
    if (const auto listed = m_byType.constFind(type); listed != m_byType.constEnd()) {
        Elements current;
        std::unordered_set<const void*> seen;
        std::size_t steps = mostSteps(listed->size());
        for (const QDomElement& e : *listed) {
            if (e.attribute(Words::type) == type && isInTree(e, steps) && seen.insert(identityOf(e)).second)
                current.push_back(e);
        }
        if (steps > 0)
            return current;
    }
    Elements& list = m_byType[type];
    list.clear();
    forEachNode(m_document, [&](const QDomNode& node) {
        if (const QDomElement e = node.toElement(); e.attribute(Words::type) == type)
            list.push_back(e);
    });
    return list;
}

// Lists.

void ArchiveIndex::typed(const QDomElement& e, const QString& type) {
    if (!isListedType(type))
        return;
    if (const auto list = m_byType.find(type); list != m_byType.end())
        list->push_back(e);
}

void ArchiveIndex::inserted(const QDomElement& parent, const QDomNode& child, bool isLast) {
    const QString tag = child.nodeName();
    invalidateRecordsAt(parent, tag);
    const bool mayHoldRecords =
        child.hasChildNodes() || parent.tagName() == Words::Data || parent == m_plainArray;
    if (mayHoldRecords && isInPlainArray(parent))
        m_plainArray = QDomElement();
    if (!m_rootObjects && !m_baseParts)
        return;
    if (tag == Words::RootObject && isLast && m_archive && parent == *m_archive) {
        m_lastAppended = child.toElement();
        return;
    }
    if (!isIndexedTag(tag) && !child.hasChildNodes())
        return;
    const bool isOfArchive = tag == Words::RootObject && m_archive && parent == *m_archive;
    bool hasRootObjects = false;
    bool hasBaseParts = false;
    forEachNode(child, [&](const QDomNode& node) {
        const QString name = node.nodeName();
        hasRootObjects = hasRootObjects || (name == Words::RootObject && !(isOfArchive && node == child));
        hasBaseParts = hasBaseParts || name == Words::BaseOfObject;
    });
    m_isOneInserted = m_isOneInserted || isOfArchive;
    if ((hasRootObjects || hasBaseParts) && !isInNewRootObject(parent)) {
        if (hasRootObjects)
            m_rootObjects.reset();
        if (hasBaseParts)
            m_baseParts.reset();
    }
}

/// Whether the node is outside the tree or in the root object that was appended last. The list finds such a
/// node when it reads that root object. May give false for a deep node, which costs time only.
bool ArchiveIndex::isInNewRootObject(const QDomNode& node) const {
    constexpr int mostSteps = 64;
    QDomNode ancestor = node;
    for (int steps = 0; steps < mostSteps; ++steps) {
        if (ancestor.isNull() || ancestor == m_lastAppended)
            return true;
        if (ancestor.isDocument())
            return false;
        ancestor = ancestor.parentNode();
    }
    return false;
}

void ArchiveIndex::removed(const QDomNode& parent, const QDomNode& child) {
    invalidateRecordsAt(parent, child.nodeName());
    // Another `Data` may remain in an entry, and another `oid` in a `Data`.
    if ((child.nodeName() == Words::Data || parent.nodeName() == Words::Data) && isInPlainArray(parent))
        m_plainArray = QDomElement();
    if (m_archive && m_archive->isNull())
        m_archive.reset(); // one of several may remain
    forEachNode(child, [this](const QDomNode& node) {
        if (!node.isElement())
            return;
        if (const QDomElement e = node.toElement(); e.hasAttribute(Words::objectId)) {
            m_mayHolderBeRemoved = true;
            created(e, e.attribute(Words::objectId).toLongLong()); // it may be inserted again
            if (e.tagName() == Words::RootObject)
                m_removedRootObjects.push_back(e.attribute(Words::objectId).toULongLong());
        }
        if (isIndexedTag(node.nodeName()) && (m_rootObjects || m_baseParts))
            m_removed.emplace(identityOf(node), node.toElement());
    });
}

void ArchiveIndex::renamed(const QDomElement& e, const QString& newTag) {
    invalidateRecordsAt(e.parentNode(), e.tagName());
    if (isInPlainArray(e))
        m_plainArray = QDomElement();
    if (isIndexedTag(e.tagName()) && (m_rootObjects || m_baseParts))
        m_removed.emplace(identityOf(e), e);
    if (isIndexedTag(newTag))
        invalidateLists();
    if (newTag == Words::Archive || e.tagName() == Words::Archive)
        invalidate();
}

void ArchiveIndex::imported(const QDomElement& e) {
    if (e.tagName() == Words::Archive || !firstDescendant(e, Words::Archive).isNull())
        return invalidate();
    if (!searchGreatestId(e))
        invalidateTexts();
    m_showsTypes = m_showsTypes && Internal::showsTypes(e);
    forEachNode(e, [this](const QDomNode& node) {
        const QDomElement element = node.toElement();
        if (element.hasAttribute(Words::objectId))
            created(element, element.attribute(Words::objectId).toLongLong());
        typed(element, element.attribute(Words::type));
    });
}

void ArchiveIndex::retyped(const QDomElement& e) {
    if (isIndexedTag(e.tagName()) && (m_rootObjects || m_baseParts))
        m_retyped.insert(identityOf(e));
}

void ArchiveIndex::update() {
    dropRemoved();
    collectAppended();
    collectInserted();
    readTypes();
}

void ArchiveIndex::dropRemoved() {
    if (m_removed.empty())
        return;
    for (List* list : {&m_rootObjects, &m_baseParts}) {
        if (*list)
            std::erase_if(own(*list), [this](const TypedElement& e) {
                return m_removed.count(identityOf(e.element)) > 0;
            });
    }
    m_removed.clear();
}

/// Root objects that were appended to the archive come after all listed ones, and so do the base parts in
/// them.
void ArchiveIndex::collectAppended() {
    if (m_lastAppended.isNull())
        return;
    m_lastAppended = QDomElement();
    if (!m_rootObjects)
        return invalidateLists();
    TypedElements::List& rootObjects = own(m_rootObjects);
    const auto last = std::find_if(rootObjects.rbegin(), rootObjects.rend(), [this](const TypedElement& e) {
        return e.element.parentNode() == *m_archive;
    });
    if (last == rootObjects.rend())
        return invalidateLists();
    QDomElement object = last->element.nextSiblingElement(Words::RootObject);
    for (; !object.isNull(); object = object.nextSiblingElement(Words::RootObject)) {
        forEachNode(object, [&](const QDomNode& node) {
            const QString tag = node.nodeName();
            if (tag == Words::RootObject)
                rootObjects.push_back({node.toElement(), node.toElement().attribute(Words::type)});
            else if (tag == Words::BaseOfObject && m_baseParts)
                own(m_baseParts).push_back({node.toElement(), node.toElement().attribute(Words::type)});
        });
    }
}

/// Lists the children of the archive again. Only if a root object is nested, the whole document has to be searched.
void ArchiveIndex::collectInserted() {
    if (!std::exchange(m_isOneInserted, false) || !m_rootObjects)
        return;
    const bool isOneNested =
        std::any_of(m_rootObjects->begin(), m_rootObjects->end(),
                    [this](const TypedElement& object) { return object.element.parentNode() != *m_archive; });
    if (isOneNested) {
        m_rootObjects.reset();
        return;
    }
    m_rootObjects = std::make_shared<TypedElements::List>();
    for (const QDomElement& object : children(*m_archive, Words::RootObject))
        m_rootObjects->push_back({object, object.attribute(Words::type)});
}

void ArchiveIndex::readTypes() {
    if (m_retyped.empty())
        return;
    for (List* list : {&m_rootObjects, &m_baseParts}) {
        if (!*list)
            continue;
        for (TypedElement& e : own(*list)) {
            if (m_retyped.count(identityOf(e.element)) > 0)
                e.type = e.element.attribute(Words::type);
        }
    }
    m_retyped.clear();
}

void ArchiveIndex::invalidateLists() {
    m_rootObjects.reset();
    m_baseParts.reset();
}

// Records.

RecordList ArchiveIndex::records(const QDomElement& array) {
    if (!m_records || m_records->array != array)
        m_records = KnownRecords{array, readRecords(array), 0};
    return RecordList(m_records->list);
}

/// What declares nothing counts as a record of the object 0. It can be left out if there is no other of that object.
RecordList ArchiveIndex::recordsAtAnyDepth(const QDomElement& array) {
    RecordList direct = records(array);
    if (!array.isNull() && array == m_plainArray)
        return direct;
    const auto all = std::make_shared<Records>();
    bool isPlain = true;
    auto next = direct.begin();
    for (const QDomElement& item : Internal::elements(array, Words::Item)) {
        const bool isDirect = next != direct.end() && next->item == item;
        const Record& record = all->emplace_back(isDirect ? *next++ : recordIn(item));
        isPlain = isPlain && (isDirect ? record.id != 0 : !record.data.hasChildNodes());
    }
    if (isPlain)
        m_plainArray = array;
    return RecordList(all);
}

std::size_t ArchiveIndex::numberedRecords(const QDomElement& array) const {
    return m_records && m_records->array == array ? m_records->numbered : 0;
}

void ArchiveIndex::appendedRecord(const QDomElement& array) {
    if (!m_records || m_records->array != array)
        return;
    if (m_records->list.use_count() > 1)
        m_records->list = std::make_shared<Records>(*m_records->list);
    const QDomElement item = array.lastChildElement();
    Records& list = *m_records->list;
    list.push_back(recordIn(item));
    if (m_records->numbered + 1 == list.size() && item.attribute(Words::index).toULongLong() == list.size())
        ++m_records->numbered;
}

void ArchiveIndex::renumbered(const QDomNode& array) {
    if (m_records && m_records->array == array)
        m_records->numbered = 0;
}

void ArchiveIndex::setRecords(const QDomElement& array, std::shared_ptr<Records> records,
                              std::size_t numbered) {
    m_records = KnownRecords{array, std::move(records), numbered};
}

/// The list of records depends on the entries of the array, on their `Data` and on the `oid` in that.
void ArchiveIndex::invalidateRecordsAt(const QDomNode& parent, const QString& childTag) {
    if (!m_records)
        return;
    const QDomElement& array = m_records->array;
    const bool isPart = (childTag == Words::Item && parent == array) ||
                        (childTag == Words::Data && parent.parentNode() == array) ||
                        (childTag == Words::oid && parent.parentNode().parentNode() == array);
    if (isPart)
        m_records.reset();
}

/// Whether the node is `m_plainArray` or below it. May give true for a deep node, which costs time only.
bool ArchiveIndex::isInPlainArray(QDomNode node) const {
    if (m_plainArray.isNull())
        return false;
    constexpr int mostSteps = 64;
    for (int steps = 0; steps < mostSteps; ++steps) {
        if (node.isNull())
            return false;
        if (node == m_plainArray)
            return true;
        node = node.parentNode();
    }
    return true;
}

// Ids and texts.

void ArchiveIndex::wrote(const QString& text) {
    if (survivesRewriting(text))
        return;
    m_showsTypes = false;
    if (!isPlainText(text))
        invalidateTexts();
}

std::optional<long long> ArchiveIndex::greatestId() {
    std::size_t steps = mostSteps(m_created.size());
    if (m_greatest && m_mayHolderBeRemoved) {
        const bool isGone =
            m_isGreatestFromText || (!m_greatest->holder.isNull() && !isInTree(m_greatest->holder, steps));
        if (isGone)
            m_greatest.reset();
    }
    m_mayHolderBeRemoved = false;
    countCreated();
    if (!m_greatest) {
        m_isGreatestFromText = false;
        m_greatest = m_isPlain ? searchGreatestIdOfPlain(archive()) : searchGreatestId(m_document);
    }
    m_isPlain = m_greatest && !m_isGreatestFromText && isIndexed(m_document);
    return m_greatest ? std::optional(m_greatest->id) : std::nullopt;
}

void ArchiveIndex::setScannedIds(const ScannedIds& ids) {
    // A scan stops at the first error. New ids may be before or after it, so an incomplete scan is not
    // cached.
    if (!ids.isComplete)
        return;
    m_greatest = GreatestId{ids.greatest, {}};
    m_isGreatestFromText = true;
}

/// Updates the greatest id from the new elements that are now in the tree.
void ArchiveIndex::countCreated() {
    std::size_t steps = mostSteps(m_created.size());
    std::vector<Created> outside;
    for (Created& created : m_created) {
        if (!isInTree(created.element, steps))
            outside.push_back(std::move(created));
        else if (m_greatest && created.id > m_greatest->id)
            m_greatest = GreatestId{created.id, created.element};
    }
    m_created = std::move(outside);
    if (steps == 0)
        m_greatest.reset();
}

/// Decrements `steps` for each step to an ancestor. If it reaches 0, the result is not reliable.
bool ArchiveIndex::isInTree(const QDomNode& node, std::size_t& steps) {
    QDomNode ancestor = node;
    while (steps > 0 && !ancestor.isNull() && !ancestor.isDocument()) {
        ancestor = ancestor.parentNode();
        --steps;
    }
    return ancestor.isDocument();
}

void ArchiveIndex::invalidateTexts() {
    m_showsTypes = false;
    m_isPlain = false;
    m_greatest.reset();
}

void ArchiveIndex::invalidate() {
    m_archive.reset();
    invalidateLists();
    m_removed.clear();
    m_lastAppended = QDomElement();
    m_isOneInserted = false;
    m_retyped.clear();
    m_byType.clear();
    m_records.reset();
    m_plainArray = QDomElement();
    invalidateTexts();
    m_created.clear();
}

void ArchiveIndex::endStep() {
    if (m_greatest)
        countCreated();
    m_created.clear();
}

} // namespace Archive::Internal
