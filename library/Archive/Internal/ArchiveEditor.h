#pragma once

#include "Archive/Internal/ArchiveIndex.h"
#include "Archive/Internal/Fields.h"
#include "Archive/Internal/Walk.h"

#include <QDomDocument>
#include <QHash>
#include <QList>
#include <QSet>
#include <QString>

#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace Archive::Internal {

/// Where a step searches for objects.
enum class Scope {
    Archive,  ///< below the document's only `Archive`; finds nothing if there is none or several
    Document, ///< in the whole document
};

/// The context of a step: an XML archive and an index of it. All changes of the tree are made through this
/// class, which keeps the index up to date. All steps of a migration share one editor, so that not every step
/// has to search the document again.
///
/// Lists of elements are snapshots: they do not change with the document. A null element is accepted
/// everywhere; the result is then a null element, an empty list or no change. Not thread-safe.
class ArchiveEditor {
public:
    explicit ArchiveEditor(const QDomDocument& document) : m_document(document), m_index(document) {}

    /// For a document that has not changed since the facts were collected.
    ArchiveEditor(const QDomDocument& document, TreeFacts facts)
        : m_document(document), m_index(document, std::move(facts)) {}

    ArchiveEditor(ArchiveEditor&&) = default;
    ArchiveEditor& operator=(ArchiveEditor&&) = default;

    /// For reading. After a change that is made without this class, call invalidate().
    const QDomDocument& document() const { return m_document; }

    /// Discards the index. To be called after the document was changed without this class.
    void invalidate() { m_index.invalidate(); }

    /// Replaces the whole document by the one in that text.
    void parse(const QString& text);

    /// Starts a step that searches for objects in that scope. New ids start above the greatest id that the
    /// document has when the step first needs one. The predeclarations are those of the last `Predeclarator`.
    void beginStep(Scope scope);
    /// Ends the step: applies pending calls of undeclare().
    void endStep();

    // Find.

    /// The document's only `Archive`, at any depth; a null element if there is none or several.
    QDomElement root() { return m_index.archive(); }
    /// The document element if it is an `Archive`, also if it contains further ones; else a null element.
    QDomElement topArchive() const;

    /// All `RootObject` elements, at any depth, in document order; those of one type, or all with their types.
    Elements rootObjects(const QString& type);
    TypedElements rootObjects();
    TypedElements rootObjects(Scope scope);
    TypedElements rootObjectsBelow(const QDomElement& e);
    /// The last of that type.
    QDomElement lastRootObject(const QString& type);

    /// The same for `BaseOfObject` elements.
    Elements baseParts(const QString& type);
    TypedElements baseParts();
    TypedElements baseParts(Scope scope);

    /// All elements of a type that isListedType(), in the whole document, in no particular order.
    Elements ofListedType(const QString& type) { return m_index.ofListedType(type); }

    /// The array of records that declare() and undeclare() change. Null if there is none: then new records
    /// are dropped, but still use up ids.
    QDomElement predeclarations();
    /// Uses another array as predeclarations() until the step ends. Must be called before anything is
    /// removed.
    void setPredeclarations(const QDomElement& array);
    /// The entries of predeclarations(), as a snapshot.
    RecordList records();
    /// The number of leading entries whose `index` is known to be their position.
    std::size_t numberedRecords() { return m_index.numberedRecords(predeclarations()); }
    /// The entries of an array of records.
    RecordList recordsIn(const QDomElement& array) { return m_index.records(array); }
    /// The same with all further `Item` elements below them, which some steps take for records as well. Those may be
    /// missing that declare nothing and have an empty `Data` or none.
    RecordList recordsAtAnyDepth(const QDomElement& array) { return m_index.recordsAtAnyDepth(array); }

    // Create.

    /// The greatest object id that the document has now, at least 1.
    long long greatestId();
    /// The next new id. A step gets each id once, also if objects were removed.
    long long nextId();
    /// Reads the greatest id now instead of at the first new id, so that ids of objects that are removed
    /// later are not used again. A second call reads it again.
    void startIds();

    /// Appends fields to an object. See Fields.
    Fields fields(const QDomElement& object) { return {*this, object, Fields::Place::End}; }
    /// The same, but a field replaces the first child that has its name.
    Fields settingFields(const QDomElement& object) { return {*this, object, Fields::Place::SameName}; }
    /// The same, but the first field replaces `old`, a child of the object.
    Fields fieldsInsteadOf(const QDomElement& old) {
        return {*this, old.parentNode().toElement(), Fields::Place::Instead, old};
    }
    /// Inserts fields after a child of the object; at the end if that is a null element.
    Fields fieldsBehind(const QDomElement& object, const QDomElement& child) {
        return {*this, object, Fields::Place::Behind, child};
    }

    /// An object that is not yet in the tree.
    QDomElement newObject(const QString& tag, const QString& type, long long id);
    /// An object as the last child of `parent`.
    QDomElement appendObject(const QDomElement& parent, const QString& tag, const QString& type,
                             long long id);
    /// A root object as the last child of the archive.
    QDomElement appendRootObject(const QString& type, long long id);
    /// An element without attributes that is not yet in the tree.
    QDomElement newArray(const QString& name, long long size = 0);

    /// Appends an empty entry to an array and increments its `size`. The form with a name creates the array
    /// if it is missing. If the array is null, the entry is not in the tree.
    QDomElement appendItem(const QDomElement& array);
    QDomElement appendItem(const QDomElement& parent, const FieldName& name);
    /// Adds an entry whose `Data` refers to an object.
    void appendReference(const QDomElement& array, long long id);
    /// The same at the front. The `index` of all other entries is incremented.
    QDomElement prependItem(const QDomElement& array);
    void prependReference(const QDomElement& array, long long id);

    /// Adds a record for a new object and gives the object's id. The record itself gets the next id.
    long long declare(const QString& type, long long parent = 0, const QList<long long>& refs = {});
    /// Adds a record for an object of that id, or of a new id if `id` is below 1. Gives the object's id.
    long long declareAs(long long id, const QString& type, long long parent = 0,
                        const QList<long long>& refs = {});
    /// Removes all records of an object. The other entries get their position, from 1, as `index`, also if
    /// there is no such record. Batches removals until records() is called or the step ends; the result
    /// equals removing them one by one.
    void undeclare(long long id);
    void undeclare(const QSet<long long>& ids);
    /// Removes the records for which `predicate` holds, without batching. The predicate is called for every
    /// record, in order.
    void undeclareIf(const std::function<bool(const Record&)>& predicate);

    // Change.

    /// Makes an element the last child of `parent`. It may be anywhere in this document, in another, or in
    /// none.
    void append(QDomElement parent, const QDomElement& child);
    void placeBefore(QDomElement parent, const QDomElement& child, const QDomElement& next);
    /// Inserts at the end if `previous` is null.
    void placeBehind(QDomElement parent, const QDomElement& child, const QDomNode& previous);

    /// Removes an element from its parent.
    void remove(const QDomElement& e);
    /// Removes a child. Does nothing if the element has another parent.
    void removeFrom(const QDomElement& parent, const QDomElement& child);
    /// Removes the first child of that name.
    void removeField(const QDomElement& object, const FieldName& name);
    /// Removes the entries for whose `Data` the predicate holds, numbers the others from 1 and reduces
    /// `size`. Returns whether anything was removed.
    bool removeItems(QDomElement array, const std::function<bool(QDomElement&)>& predicate);

    /// Replaces a node by an element.
    void replace(const QDomNode& old, const QDomElement& created);
    /// The same for a child. Does nothing if `old` has another parent.
    void replaceIn(const QDomElement& parent, const QDomElement& created, const QDomNode& old);

    void rename(QDomElement e, const QString& tag);
    void setType(QDomElement e, const QString& type);
    /// Sets an attribute of any name whose value is a type.
    void setType(QDomAttr attribute, const QString& type);
    void setObjectId(QDomElement e, long long id);

    /// Sets the `value` of an element.
    void setText(QDomElement e, const QString& text);
    /// Sets the `value` of the first child of that name. Does nothing if there is none.
    void setField(const QDomElement& object, const FieldName& name, const QString& text);
    void setField(const QDomElement& object, const FieldName& name, long long number);
    /// Makes an element a "double" of that value.
    void setNumber(QDomElement e, double number);
    /// Removes the attribute `binaryData`, the exact form of a number, so that only its `value` counts.
    void removeBinaryData(QDomElement e);

    /// Sets the `index` of an entry or the `size` of an array directly. The operations on arrays above set
    /// both themselves.
    void setIndex(QDomElement item, long long index);
    void setSize(QDomElement array, long long size);

    /// Whether it is certain that the document's text names types only in attributes `type`, and that writing
    /// and reading the document gives the same tree.
    bool showsTypes() const { return m_index.showsTypes(); }

    /// The ids of root objects that were removed since the last call, in order, for reports. One that was moved is among
    /// them.
    std::vector<unsigned long long> takeRemovedRootObjects() { return m_index.takeRemovedRootObjects(); }

    /// The object that log lines of the step are about; see Subject. Null for none.
    const QDomElement& subject() const { return m_subject; }

private:
    friend class Fields;
    friend class Subject;

    TypedElements elements(const QString& tag, Scope scope);
    /// Notifies the index, before a child is inserted elsewhere, that it leaves its parent or its document.
    void notifyMove(const QDomElement& child);
    void notifyRemoval(const QDomNode& parent, const QDomNode& child);
    void applyUndeclared();
    void removeRecords(const std::function<bool(const Record&)>& predicate);

    QDomDocument m_document;
    ArchiveIndex m_index;
    FieldNames m_fieldNames;
    Scope m_scope = Scope::Archive;
    QDomElement m_subject;
    std::optional<long long> m_lastId;
    std::optional<QDomElement> m_predeclarations;

    // Batched calls of undeclare(), and the records that were added since the first of them.
    QHash<long long, std::size_t> m_undeclared; ///< by id: the length of `m_added` at the last call for it
    std::vector<QDomElement> m_added;
    std::size_t m_addedBeforeLastUndeclared = 0;
};

/// Until the end of the scope, log lines of the step are about that object. Reports use it to name the object and the
/// clip that it belongs to.
class Subject {
public:
    Subject(ArchiveEditor& archive, const QDomElement& object)
        : m_archive(archive), m_previous(std::exchange(archive.m_subject, object)) {}
    ~Subject() { m_archive.m_subject = m_previous; }
    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;

private:
    ArchiveEditor& m_archive;
    QDomElement m_previous;
};

/// The elements of that type, in order.
Elements ofType(const TypedElements& elements, const QString& type);

} // namespace Archive::Internal
