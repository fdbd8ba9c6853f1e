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
#include <vector>

namespace Archive::Internal {

/// Where a step looks for objects.
enum class Scope {
    Archive,  ///< below the document's only `Archive`; nowhere where there is none or several
    Document, ///< in the whole document
};

/// The context that a step works in: an XML archive and an index of it. All changes of the tree go through this class,
/// which keeps the index up to date. One editor serves all steps of a migration, so that not every step has to search
/// the document again.
///
/// Lists of elements are fetched at once and do not change with the document. A null element is accepted everywhere and
/// gives a null element, an empty list or no change. Not safe for use by several threads at once.
class ArchiveEditor {
public:
    explicit ArchiveEditor(const QDomDocument& document) : m_document(document), m_index(document) {}

    /// For a document that has not changed since the facts were collected.
    ArchiveEditor(const QDomDocument& document, TreeFacts facts)
        : m_document(document), m_index(document, std::move(facts)) {}

    ArchiveEditor(ArchiveEditor&&) = default;
    ArchiveEditor& operator=(ArchiveEditor&&) = default;

    /// For reading. Changes that are made to it directly must be followed by invalidate().
    const QDomDocument& document() const { return m_document; }

    /// Forgets all that is known of the document.
    void invalidate() { m_index.invalidate(); }

    /// Replaces the whole document by what is read from that text.
    void setContent(const QString& text);

    /// Starts a step that looks for objects in that scope. Its ids count from the greatest that the document has when
    /// the first one is wanted, and its predeclarations are those of the last `Predeclarator`.
    void beginStep(Scope scope);
    /// Completes what the step left pending.
    void endStep();

    // Find.

    /// The document's only `Archive`, at any depth; a null element where there is none or several.
    QDomElement root() { return m_index.archive(); }
    /// The document element where it is an `Archive`, also if there are further ones in it; else a null element.
    QDomElement topArchive() const;

    /// All `RootObject` elements, at any depth, in document order; those of one type, or all with their types.
    Elements rootObjects(const QString& type);
    TypedElements rootObjects();
    TypedElements rootObjects(Scope scope);
    TypedElements rootObjectsBelow(const QDomElement& e);
    /// The last of that type.
    QDomElement lastRootObject(const QString& type);

    /// All `BaseOfObject` elements, in the same way.
    Elements baseParts(const QString& type);
    TypedElements baseParts();
    TypedElements baseParts(Scope scope);

    /// The array of records that declare() and undeclare() work on. Null where there is none: then new records are
    /// lost, while their ids are used up all the same.
    QDomElement predeclarations();
    /// Makes another array that one, until the step ends. To be called before anything is removed.
    void setPredeclarations(const QDomElement& array);
    /// Its entries, at this moment.
    RecordList records();
    /// How many of them, counted from the first, are known to have their position as `index`.
    std::size_t numberedRecords() { return m_index.numberedRecords(predeclarations()); }
    /// The entries of an array of records.
    RecordList recordsIn(const QDomElement& array) { return m_index.records(array); }

    // Make.

    /// The greatest object id that the document has now, at least 1.
    long long greatestId();
    /// The next id. Ids are not given twice in a step, also where objects were removed.
    long long nextId();
    /// Reads the greatest id now instead of when the first new id is wanted: ids of objects that are removed from now
    /// on are not given again. A second call reads it again.
    void startIds();

    /// Appends fields to an object.
    Fields fields(const QDomElement& object) { return {*this, object, Fields::Place::End}; }
    /// The same, but a field takes the place of the first child that has its name.
    Fields settingFields(const QDomElement& object) { return {*this, object, Fields::Place::SameName}; }
    /// The same, but the first one takes the place of `old`, a child of the object.
    Fields fieldsInsteadOf(const QDomElement& old) {
        return {*this, old.parentNode().toElement(), Fields::Place::Instead, old};
    }
    /// Inserts fields behind a child of the object; at the end where that is a null element.
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

    /// Adds an empty entry at the end of an array and counts its `size` up. The form with a name creates a missing
    /// array. The entry is not in the tree where the array is null.
    QDomElement appendItem(const QDomElement& array);
    QDomElement appendItem(const QDomElement& parent, const QString& name);
    /// Adds an entry whose `Data` refers to an object.
    void appendReference(const QDomElement& array, long long id);
    /// The same in front of all entries, whose `index` counts up by one.
    QDomElement prependItem(const QDomElement& array);
    void prependReference(const QDomElement& array, long long id);

    /// Adds a record for a new object and gives its id. The record itself takes the id behind that.
    long long declare(const QString& type, long long parent = 0, const QList<long long>& refs = {});
    /// Adds a record for an object that has an id, or gets one where `id` is below 1.
    long long declareAs(long long id, const QString& type, long long parent = 0,
                        const QList<long long>& refs = {});
    /// Removes all records of an object. The other entries get their position, from 1, as `index`, also where there is
    /// no such record. Takes effect when records() is called or the step ends, with the same result.
    void undeclare(long long id);
    void undeclare(const QSet<long long>& ids);
    /// Removes the records for which `goes` holds, at once. It is called on all, in order.
    void undeclareIf(const std::function<bool(const Record&)>& goes);

    // Change.

    /// Makes an element the last child of `parent`, from where it was in this document, in another, or in none.
    void append(QDomElement parent, const QDomElement& child);
    void insertBefore(QDomElement parent, const QDomElement& child, const QDomElement& next);
    /// At the end where `previous` is null.
    void insertAfter(QDomElement parent, const QDomElement& child, const QDomNode& previous);

    /// Removes an element from its parent.
    void remove(const QDomElement& e);
    /// Removes a child; nothing for an element with another parent.
    void removeChild(const QDomElement& parent, const QDomElement& child);
    /// Removes the first child of that name.
    void removeField(const QDomElement& object, const QString& name);
    /// Removes the entries whose `Data` fulfils the predicate, numbers the others from 1 and counts `size` down.
    bool removeItems(QDomElement array, const std::function<bool(QDomElement&)>& predicate);

    /// Puts an element in the place of another node.
    void replace(const QDomNode& old, const QDomElement& created);
    /// The same for a child; nothing for an element with another parent.
    void replaceChild(const QDomElement& parent, const QDomElement& created, const QDomNode& old);

    void rename(QDomElement e, const QString& tag);
    void setType(QDomElement e, const QString& type);
    /// Sets an attribute that names a type, whatever it is called.
    void setType(QDomAttr attribute, const QString& type);
    void setObjectId(QDomElement e, long long id);

    /// Sets the `value` of an element.
    void setText(QDomElement e, const QString& text);
    /// Sets the `value` of the first child of that name; nothing where there is none.
    void setField(const QDomElement& object, const QString& name, const QString& text);
    void setField(const QDomElement& object, const QString& name, long long number);
    /// Makes an element a double of that value.
    void setNumber(QDomElement e, double number);
    /// Removes the exact form of a number, which its `value` replaces.
    void removeBinaryData(QDomElement e);

    /// Sets the `index` of an entry and the `size` of an array, where nothing else does.
    void setIndex(QDomElement item, long long index);
    void setSize(QDomElement array, long long size);

    /// Whether it is certain that the text of the document names types only in attributes `type`, and that the tree is
    /// the same when it is written and read again.
    bool showsTypes() const { return m_index.showsTypes(); }

    /// The ids of root objects that were removed since the last call, in order, for reports. One that was moved is among
    /// them.
    std::vector<unsigned long long> takeRemovedRootObjects() { return m_index.takeRemovedRootObjects(); }

private:
    friend class Fields;

    TypedElements elements(const QString& tag, Scope scope);
    /// Notifies the index that a child leaves its place or comes from another document.
    void takeFromItsPlace(const QDomElement& child);
    void notifyRemoval(const QDomNode& parent, const QDomNode& child);
    void applyUndeclared();
    void removeRecords(const std::function<bool(const Record&)>& goes);

    QDomDocument m_document;
    ArchiveIndex m_index;
    FieldNames m_fieldNames;
    Scope m_scope = Scope::Archive;
    std::optional<long long> m_lastId;
    std::optional<QDomElement> m_predeclarations;

    // Records to be removed, and those that were added since the first of these calls.
    QHash<long long, std::size_t> m_undeclared; ///< by id: how many records had been added at its last call
    std::vector<QDomElement> m_added;
    std::size_t m_addedBeforeLastUndeclared = 0;
};

/// The elements of that type, in order.
Elements ofType(const TypedElements& elements, const QString& type);

} // namespace Archive::Internal
