#include "Archive/Internal/ArchiveEditor.h"

#include "Archive/Internal/ArrayItems.h"
#include "Archive/Internal/Count.h"
#include "Archive/Internal/Reading.h"
#include "Archive/Internal/Words.h"
#include "Archive/Xml.h"

namespace Archive::Internal {

void ArchiveEditor::parse(const QString& text) {
    m_document.setContent(text);
    invalidate();
}

void ArchiveEditor::beginStep(Scope scope) {
    m_scope = scope;
    m_lastId.reset();
    m_predeclarations.reset();
}

void ArchiveEditor::endStep() {
    applyUndeclared();
    m_index.endStep();
}

// Find.

QDomElement ArchiveEditor::topArchive() const {
    return m_document.firstChildElement(Words::Archive);
}

TypedElements ArchiveEditor::elements(const QString& tag, Scope scope) {
    return scope == Scope::Document ? m_index.elements(m_document, tag) : m_index.elements(root(), tag);
}

TypedElements ArchiveEditor::rootObjects(Scope scope) {
    return elements(Words::RootObject, scope);
}

TypedElements ArchiveEditor::rootObjects() {
    return rootObjects(m_scope);
}

Elements ArchiveEditor::rootObjects(const QString& type) {
    return ofType(rootObjects(), type);
}

TypedElements ArchiveEditor::rootObjectsBelow(const QDomElement& e) {
    return m_index.elements(e, Words::RootObject);
}

QDomElement ArchiveEditor::lastRootObject(const QString& type) {
    QDomElement last;
    for (const auto& [object, objectType] : rootObjects()) {
        if (objectType == type)
            last = object;
    }
    return last;
}

TypedElements ArchiveEditor::baseParts(Scope scope) {
    return elements(Words::BaseOfObject, scope);
}

TypedElements ArchiveEditor::baseParts() {
    return baseParts(m_scope);
}

Elements ArchiveEditor::baseParts(const QString& type) {
    return ofType(baseParts(), type);
}

QDomElement ArchiveEditor::predeclarations() {
    if (!m_predeclarations)
        m_predeclarations = lastRootObject(Words::Predeclarator).firstChildElement(Words::predeclarations);
    return *m_predeclarations;
}

void ArchiveEditor::setPredeclarations(const QDomElement& array) {
    applyUndeclared();
    m_predeclarations = array;
}

RecordList ArchiveEditor::records() {
    applyUndeclared();
    return m_index.records(predeclarations());
}

// Create.

long long ArchiveEditor::greatestId() {
    if (const auto id = m_index.greatestId())
        return *id;
    const ScannedIds ids = scanIds(m_document.toByteArray(1));
    m_index.setScannedIds(ids);
    return ids.greatest;
}

void ArchiveEditor::startIds() {
    m_lastId = greatestId();
}

long long ArchiveEditor::nextId() {
    if (!m_lastId)
        startIds();
    return Internal::nextId(*m_lastId);
}

QDomElement ArchiveEditor::newObject(const QString& tag, const QString& type, long long id) {
    const QDomElement object = createObject(m_document, tag, type, id);
    m_index.created(object, id);
    m_index.typed(object, type);
    return object;
}

QDomElement ArchiveEditor::appendObject(const QDomElement& parent, const QString& tag, const QString& type,
                                        long long id) {
    const QDomElement object = newObject(tag, type, id);
    append(parent, object);
    return object;
}

QDomElement ArchiveEditor::appendRootObject(const QString& type, long long id) {
    return appendObject(root(), Words::RootObject, type, id);
}

QDomElement ArchiveEditor::newArray(const QString& name, long long size) {
    return createArray(m_document, name, size);
}

QDomElement ArchiveEditor::appendItem(const QDomElement& array) {
    QDomElement list = array;
    const QDomElement item = appendArrayElement(m_document, list);
    if (!array.isNull())
        m_index.inserted(array, item, true);
    return item;
}

QDomElement ArchiveEditor::appendItem(const QDomElement& parent, const FieldName& name) {
    QDomElement array = childOf(parent, name);
    if (array.isNull()) {
        array = newArray(m_fieldNames.textOf(name));
        append(parent, array);
    }
    return appendItem(array);
}

void ArchiveEditor::appendReference(const QDomElement& array, long long id) {
    if (!array.isNull())
        fields(appendItem(array)).reference(Words::Data, id);
}

QDomElement ArchiveEditor::prependItem(const QDomElement& array) {
    QDomElement list = array;
    const QDomElement item = prependArrayElement(m_document, list);
    if (!array.isNull())
        m_index.inserted(array, item, false);
    return item;
}

void ArchiveEditor::prependReference(const QDomElement& array, long long id) {
    if (!array.isNull())
        fields(prependItem(array)).reference(Words::Data, id);
}

long long ArchiveEditor::declare(const QString& type, long long parent, const QList<long long>& refs) {
    return declareAs(0, type, parent, refs);
}

long long ArchiveEditor::declareAs(long long id, const QString& type, long long parent,
                                   const QList<long long>& refs) {
    if (!m_lastId)
        startIds();
    QDomElement array = predeclarations();
    const long long declared = addPredeclaration(array, m_document, type, parent, *m_lastId, id, refs);
    if (array.isNull())
        return declared;
    const QDomElement item = array.lastChildElement();
    const QDomElement record = item.firstChildElement();
    m_index.created(record, idOf(record));
    m_index.appendedRecord(array);
    if (!m_undeclared.isEmpty())
        m_added.push_back(item);
    return declared;
}

void ArchiveEditor::undeclare(long long id) {
    m_undeclared[id] = m_added.size();
    m_addedBeforeLastUndeclared = m_added.size();
}

void ArchiveEditor::undeclare(const QSet<long long>& ids) {
    for (const long long id : ids)
        undeclare(id);
}

void ArchiveEditor::undeclareIf(const std::function<bool(const Record&)>& predicate) {
    applyUndeclared();
    removeRecords(predicate);
}

void ArchiveEditor::applyUndeclared() {
    if (m_undeclared.isEmpty())
        return; // without a call the entries are not numbered

    // An entry that was added after the last call got its index from a `size` that still counted the batched
    // removals. So the index is reduced by their number.
    std::vector<long long> lateIndexes;
    for (std::size_t number = m_addedBeforeLastUndeclared; number < m_added.size(); ++number)
        lateIndexes.push_back(m_added[number].attribute(Words::index).toLongLong());

    std::size_t added = 0;
    unsigned long long removals = 0;
    removeRecords([&](const Record& record) {
        const auto undeclared = m_undeclared.constFind(record.id);
        const bool isUndeclared = undeclared != m_undeclared.constEnd();
        const bool isNew = added < m_added.size() && record.item == m_added[added];
        // A call removes only records that existed when it was made.
        const bool isRemoved = isUndeclared && (!isNew || *undeclared > added);
        added += isNew ? 1 : 0;
        removals += isRemoved ? 1 : 0;
        return isRemoved;
    });

    // These are the last entries of the array. As long as each new index is the entry's position, the index of the
    // archive still knows that the array is numbered.
    const RecordList records = m_index.records(predeclarations());
    const auto listed = static_cast<std::size_t>(records.end() - records.begin());
    for (std::size_t late = 0; late < lateIndexes.size(); ++late) {
        QDomElement item = m_added[m_addedBeforeLastUndeclared + late];
        const unsigned long long index = static_cast<unsigned long long>(lateIndexes[late]) - removals;
        const std::size_t position = listed - lateIndexes.size() + late;
        Internal::setIndex(item, static_cast<long long>(index));
        const bool hasPosition = position < listed &&
                                 records.begin()[static_cast<std::ptrdiff_t>(position)].item == item &&
                                 index == position + 1;
        if (!hasPosition)
            m_index.renumbered(item.parentNode());
    }
    m_undeclared.clear();
    m_added.clear();
    m_addedBeforeLastUndeclared = 0;
}

void ArchiveEditor::removeRecords(const std::function<bool(const Record&)>& predicate) {
    QDomElement array = predeclarations();
    const RecordList records = m_index.records(array);
    const std::size_t numbered = m_index.numberedRecords(array);
    const auto left = std::make_shared<Records>();
    Elements removals;
    for (const Record& record : records) {
        if (predicate(record)) {
            removals.push_back(record.item);
            m_index.removed(array, record.item);
            continue;
        }
        left->push_back(record);
        QDomElement item = record.item;
        const bool hasPosition = left->size() + removals.size() <= numbered;
        if (!hasPosition)
            Internal::setIndex(item,
                               static_cast<long long>(left->size())); // also if nothing is removed
        else if (!removals.empty())
            item.setAttribute(
                Words::index,
                QString::number(left->size())); // the old one is known to differ: no need to read it
    }
    Internal::removeItems(array, removals);
    m_index.setRecords(array, left, left->size());
}

// Change.

void ArchiveEditor::notifyMove(const QDomElement& child) {
    if (child.ownerDocument() != m_document)
        m_index.imported(child);
    else if (const QDomNode parent = child.parentNode(); !parent.isNull())
        notifyRemoval(parent, child);
}

void ArchiveEditor::notifyRemoval(const QDomNode& parent, const QDomNode& child) {
    predeclarations(); // a step uses the array that existed before its first removal
    m_index.removed(parent, child);
}

void ArchiveEditor::append(QDomElement parent, const QDomElement& child) {
    if (parent.isNull() || child.isNull())
        return;
    notifyMove(child);
    parent.appendChild(child);
    m_index.inserted(parent, child, true);
}

void ArchiveEditor::placeBefore(QDomElement parent, const QDomElement& child, const QDomElement& next) {
    if (parent.isNull() || child.isNull())
        return;
    notifyMove(child);
    parent.insertBefore(child, next);
    m_index.inserted(parent, child, false);
}

void ArchiveEditor::placeBehind(QDomElement parent, const QDomElement& child, const QDomNode& previous) {
    if (parent.isNull() || child.isNull())
        return;
    notifyMove(child);
    parent.insertAfter(child, previous);
    m_index.inserted(parent, child, child.nextSibling().isNull());
}

void ArchiveEditor::remove(const QDomElement& e) {
    removeFrom(e.parentNode().toElement(), e);
}

void ArchiveEditor::removeFrom(const QDomElement& parent, const QDomElement& child) {
    if (parent.isNull() || child.parentNode() != parent)
        return;
    notifyRemoval(parent, child);
    QDomNode(parent).removeChild(child);
}

void ArchiveEditor::removeField(const QDomElement& object, const FieldName& name) {
    removeFrom(object, childOf(object, name));
}

bool ArchiveEditor::removeItems(QDomElement array, const std::function<bool(QDomElement&)>& predicate) {
    const Elements removals = numberItems(array, predicate);
    for (const QDomElement& item : removals)
        notifyRemoval(array, item);
    return Internal::removeItems(array, removals);
}

void ArchiveEditor::replace(const QDomNode& old, const QDomElement& created) {
    replaceIn(old.parentNode().toElement(), created, old);
}

void ArchiveEditor::replaceIn(const QDomElement& parent, const QDomElement& created, const QDomNode& old) {
    if (parent.isNull() || created.isNull() || old.parentNode() != parent)
        return;
    notifyMove(created);
    notifyRemoval(parent, old);
    QDomNode(parent).replaceChild(created, old);
    m_index.inserted(parent, created, created.nextSibling().isNull());
}

void ArchiveEditor::rename(QDomElement e, const QString& tag) {
    if (e.isNull())
        return;
    predeclarations();
    m_index.renamed(e, tag);
    e.setTagName(tag);
}

void ArchiveEditor::setType(QDomElement e, const QString& type) {
    e.setAttribute(Words::type, type);
    m_index.retyped(e);
    m_index.typed(e, type);
}

void ArchiveEditor::setType(QDomAttr attribute, const QString& type) {
    attribute.setValue(type);
    m_index.retyped(attribute.ownerElement());
    m_index.typed(attribute.ownerElement(), type);
}

void ArchiveEditor::setObjectId(QDomElement e, long long id) {
    e.setAttribute(Words::objectId, QString::number(id));
    m_index.created(e, id);
}

void ArchiveEditor::setText(QDomElement e, const QString& text) {
    e.setAttribute(Words::value, text);
    m_index.wrote(text);
}

void ArchiveEditor::setField(const QDomElement& object, const FieldName& name, const QString& text) {
    setText(childOf(object, name), text);
}

void ArchiveEditor::setField(const QDomElement& object, const FieldName& name, long long number) {
    setField(object, name, QString::number(number));
}

void ArchiveEditor::setNumber(QDomElement e, double number) {
    writeValue(e, number);
    m_index.retyped(e);
}

void ArchiveEditor::removeBinaryData(QDomElement e) {
    e.removeAttribute(Words::binaryData);
}

void ArchiveEditor::setIndex(QDomElement item, long long index) {
    Internal::setIndex(item, index);
    m_index.renumbered(item.parentNode());
}

void ArchiveEditor::setSize(QDomElement array, long long size) {
    array.setAttribute(Words::size, QString::number(size));
}

Elements ofType(const TypedElements& elements, const QString& type) {
    Elements result;
    for (const auto& [e, elementType] : elements) {
        if (elementType == type)
            result.push_back(e);
    }
    return result;
}

} // namespace Archive::Internal
