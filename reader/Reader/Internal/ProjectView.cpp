#include "Reader/Internal/ProjectView.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/FlatObjects.h"
#include "Archive/Xml.h"
#include "Reader/Contents.h"

using Archive::Internal::TypedElements;
using nlohmann::json;
namespace Words = Archive::Words;

namespace Reader {
namespace {

const FieldName clipsField("clips");
const FieldName transitionsField("transitions");

const json none;

using Archive::Internal::memberOf;

/// The base class part that a member of an object is: its key is the class of the object that it refers to.
const json* basePartOf(const json& object, const FlatView& view) {
    if (!object.is_object())
        return nullptr;
    for (const auto& [key, value] : object.items()) {
        if (key.find("::") == std::string::npos)
            continue;
        const json* part = view.target(&value);
        if (Serialize::Json::classNameOf(*part) && *Serialize::Json::classNameOf(*part) == key)
            return part;
    }
    return nullptr;
}

} // namespace

// Archives

ArchiveView::ArchiveView(const TypedElements& rootObjects, const QDomElement& root)
    : m_rootObjects(rootObjects), m_objects(objectsById(rootObjects)), m_root(root) {}

std::vector<QDomElement> ArchiveView::ofClass(const QString& className) const {
    return Archive::Internal::ofType(m_rootObjects, className);
}

QDomElement ArchiveView::inheritedField(const QDomElement& object, const FieldName& name) {
    const QDomElement own = field(object, name);
    return own.isNull() ? field(Archive::findRootBaseOfObject(object), name) : own;
}

std::vector<QDomElement> ArchiveView::items(const QDomElement& array) {
    std::vector<QDomElement> values;
    for (const QDomElement& item : Archive::Internal::children(array, Words::Item))
        values.push_back(item.firstChildElement(Words::Data));
    return values;
}

std::vector<ClipEntry<QDomElement>> ArchiveView::clipEntries(const QDomElement& timeline) {
    std::vector<ClipEntry<QDomElement>> entries;
    for (const QDomElement& item : Archive::Internal::children(field(timeline, clipsField), Words::Item)) {
        const QDomElement key = item.firstChildElement(Words::Key);
        entries.push_back(
            {key.isNull() ? item.firstChildElement(Words::Data) : key, item.firstChildElement(Words::Value)});
    }
    return entries;
}

std::vector<TransitionEntry<QDomElement>> ArchiveView::transitionEntries(const QDomElement& timeline) {
    std::vector<TransitionEntry<QDomElement>> entries;
    for (const QDomElement& item :
         Archive::Internal::children(field(timeline, transitionsField), Words::Item)) {
        const QDomElement pair = Archive::Internal::childAt(item, {Words::Value, Words::Item});
        entries.push_back({item.firstChildElement(Words::Key), pair.firstChildElement(Words::First),
                           pair.firstChildElement(Words::Second)});
    }
    return entries;
}

bool ArchiveView::isReference(const QDomElement& value) {
    return Archive::typeOf(value) == Words::ObjectRef;
}

QDomElement ArchiveView::target(const QDomElement& value) const {
    return value.hasAttribute(Words::value) ? m_objects.value(targetId(value)) : value;
}

unsigned long long ArchiveView::targetId(const QDomElement& reference) {
    return reference.attribute(Words::value).toULongLong();
}

unsigned long long ArchiveView::idOf(const QDomElement& object) {
    return Archive::objectIdOf(object);
}

std::string ArchiveView::classOf(const QDomElement& object) {
    return Archive::typeOf(object).toStdString();
}

std::optional<long long> ArchiveView::integer(const QDomElement& value) {
    return value.isNull() ? std::nullopt : std::optional(value.attribute(Words::value).toLongLong());
}

std::optional<double> ArchiveView::real(const QDomElement& value) {
    if (value.isNull())
        return std::nullopt;
    return value.hasAttribute(Words::binaryData) ? Archive::readValue(value, 0.0)
                                                 : value.attribute(Words::value).toDouble();
}

std::optional<bool> ArchiveView::boolean(const QDomElement& value) {
    return value.isNull() ? std::nullopt : std::optional(value.attribute(Words::value).toInt() != 0);
}

std::string ArchiveView::text(const QDomElement& value) {
    return value.attribute(Words::value).toStdString();
}

std::string ArchiveView::path(const QDomElement& value) {
    // Up to version 47 a path that moves with the project stands beside the other; "/media/" is a folder beside it.
    QString portable = value.attribute(QStringLiteral("portablePath"));
    if (portable.startsWith(QLatin1String("/media/")))
        portable.prepend(QLatin1Char('.'));
    return portable.isEmpty() ? text(value) : portable.toStdString();
}

// JSON

std::vector<const json*> FlatView::ofClass(const QString& className) const {
    const std::string name = className.toStdString();
    std::vector<const json*> found;
    for (const auto& [id, object] : m_document.flat.objects) {
        if (classOf(&object) == name)
            found.push_back(&object);
    }
    return found;
}

const json* FlatView::field(const json* object, const FieldName& name) {
    return &memberOf(*object, name.json);
}

const json* FlatView::inheritedField(const json* object, const FieldName& name) const {
    const json* value = field(object, name);
    // As many levels as there are objects: base class parts may hold each other in a broken document.
    std::size_t levels = m_document.flat.objects.size();
    while (value->is_null() && levels-- > 0) {
        const json* part = basePartOf(*object, *this);
        if (!part || part == object)
            break;
        object = part;
        value = field(object, name);
    }
    return value;
}

std::vector<const json*> FlatView::items(const json* array) {
    std::vector<const json*> values;
    if (array->is_structured()) {
        for (const json& value : *array)
            values.push_back(&value);
    }
    return values;
}

std::vector<ClipEntry<const json*>> FlatView::clipEntries(const json* timeline) {
    std::vector<ClipEntry<const json*>> entries;
    for (const json* entry : items(field(timeline, clipsField)))
        entries.push_back({clipOf(entry), &memberOf(*entry, "timing")});
    return entries;
}

const json* FlatView::clipOf(const json* entry) {
    const json& clip = memberOf(*entry, "clip");
    return clip.is_null() ? entry : &clip;
}

std::vector<TransitionEntry<const json*>> FlatView::transitionEntries(const json* timeline) {
    std::vector<TransitionEntry<const json*>> entries;
    for (const json* entry : items(field(timeline, transitionsField)))
        entries.push_back(
            {&memberOf(*entry, "transition"), &memberOf(*entry, "clipFrom"), &memberOf(*entry, "clipTo")});
    return entries;
}

const json* FlatView::objectAt(unsigned long long id) const {
    const auto object = m_document.flat.objects.find(id);
    return object == m_document.flat.objects.end() ? &none : &object->second;
}

const json* FlatView::target(const json* value) const {
    return isClassObject(*value) ? value : objectAt(targetId(value));
}

unsigned long long FlatView::targetId(const json* reference) {
    return Serialize::Json::getAnyObjectId(*reference).value_or(0);
}

unsigned long long FlatView::idOf(const json* object) {
    return Serialize::Json::getObjectId(*object).value_or(0);
}

std::string FlatView::classOf(const json* object) {
    const std::string* name = Serialize::Json::classNameOf(*object);
    return name ? *name : std::string();
}

std::optional<long long> FlatView::integer(const json* value) {
    return value->is_number_integer() ? std::optional(value->get<long long>()) : std::nullopt;
}

std::optional<double> FlatView::real(const json* value) {
    return value->is_number() ? std::optional(value->get<double>()) : std::nullopt;
}

std::optional<bool> FlatView::boolean(const json* value) {
    return value->is_boolean() ? std::optional(value->get<bool>()) : std::nullopt;
}

std::string FlatView::text(const json* value) {
    return value->is_string() ? value->get<std::string>() : std::string();
}

TypedElements rootObjectsOf(const QDomDocument& xml) {
    return TypedElements(Archive::Internal::typedElements(xml, Words::RootObject));
}

QHash<unsigned long long, QDomElement> objectsById(const TypedElements& rootObjects) {
    QHash<unsigned long long, QDomElement> objects;
    for (const auto& [e, type] : rootObjects) {
        if (!isDeclaring(type))
            objects.insert(Archive::objectIdOf(e), e);
    }
    return objects;
}

} // namespace Reader
