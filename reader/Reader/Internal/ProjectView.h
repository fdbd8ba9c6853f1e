#pragma once

// Read access to the objects and fields of a project, with the same functions for both forms. Contents.cpp and
// Timeline.cpp read through it. A view must not outlive its document, and the document must not change meanwhile.
//
// Both classes have a type Value: a field, an entry of an array or an object. There is a value for "none", and every
// function takes it: fields of none are none, numbers and texts of none are missing or empty.

#include "Archive/Internal/Walk.h"
#include "Reader/Document.h"

#include <QDomElement>
#include <QHash>
#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace Reader {

/// The name of a field, ready for both forms.
struct FieldName {
    explicit FieldName(const char* name) : archive(QString::fromLatin1(name)), json(name) {}

    QString archive;
    std::string json;
};

/// An entry of a timeline's list of clips.
template <class Value>
struct ClipEntry {
    Value clip;
    Value timing;
};

/// An entry of a timeline's list of transitions.
template <class Value>
struct TransitionEntry {
    Value transition;
    Value from;
    Value to;
};

class ArchiveView {
public:
    using Value = QDomElement;

    /// `root` is the element with the reference to the project's root object.
    explicit ArchiveView(const Archive::Internal::TypedElements& rootObjects, const QDomElement& root = {});

    /// The root objects of that class, in document order.
    std::vector<Value> ofClass(const QString& className) const;
    Value root() const { return target(m_root); }

    static Value field(const Value& object, const FieldName& name) {
        return object.firstChildElement(name.archive);
    }
    /// A field of the object itself, or else of the innermost of its base class parts.
    static Value inheritedField(const Value& object, const FieldName& name);
    static std::vector<Value> items(const Value& array);
    static std::vector<ClipEntry<Value>> clipEntries(const Value& timeline);
    static std::vector<TransitionEntry<Value>> transitionEntries(const Value& timeline);

    static bool isReference(const Value& value);
    /// The object that a value refers to or is.
    Value target(const Value& value) const;
    /// The id that a reference has; 0 for none.
    static unsigned long long targetId(const Value& reference);
    static unsigned long long idOf(const Value& object);
    static std::string classOf(const Value& object);

    static bool isNone(const Value& value) { return value.isNull(); }
    static std::optional<long long> integer(const Value& value);
    static std::optional<double> real(const Value& value);
    static std::optional<bool> boolean(const Value& value);
    static std::string text(const Value& value);
    /// The path that the newest version has in that field.
    static std::string path(const Value& value);

private:
    Archive::Internal::TypedElements m_rootObjects;
    QHash<unsigned long long, QDomElement> m_objects; ///< of one id the last counts, as in the conversion
    QDomElement m_root;
};

class FlatView {
public:
    using Value = const nlohmann::json*; ///< never a null pointer

    explicit FlatView(const JsonDocument& document) : m_document(document) {}

    std::vector<Value> ofClass(const QString& className) const;
    Value root() const { return objectAt(m_document.root); }

    static Value field(Value object, const FieldName& name);
    Value inheritedField(Value object, const FieldName& name) const;
    static std::vector<Value> items(Value array);
    static std::vector<ClipEntry<Value>> clipEntries(Value timeline);
    /// The clip of an entry in a timeline's list; the entry itself where it has no timing.
    static Value clipOf(Value entry);
    static std::vector<TransitionEntry<Value>> transitionEntries(Value timeline);

    static bool isReference(Value value) { return linkTarget(*value) != 0; }
    Value target(Value value) const;
    static unsigned long long targetId(Value reference);
    static unsigned long long idOf(Value object);
    static std::string classOf(Value object);

    static bool isNone(Value value) { return value->is_null(); }
    static std::optional<long long> integer(Value value);
    static std::optional<double> real(Value value);
    static std::optional<bool> boolean(Value value);
    static std::string text(Value value);
    static std::string path(Value value) { return text(value); }

private:
    Value objectAt(unsigned long long id) const;

    const JsonDocument& m_document;
};

/// The root objects of an archive.
Archive::Internal::TypedElements rootObjectsOf(const QDomDocument& xml);

/// The archive's root objects that hold the project, by id; the later of two counts, as in the conversion.
QHash<unsigned long long, QDomElement> objectsById(const Archive::Internal::TypedElements& rootObjects);

} // namespace Reader
