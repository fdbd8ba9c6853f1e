#include "Adaptors/Project/V60_CollectionItemDescriptionAdaptor.h"

#include "Archive/Internal/FlatObjects.h"
#include "Archive/Internal/RootObjects.h"
#include "Archive/Xml.h"

#include <QSet>

#include <optional>
#include <set>
#include <string>

using namespace Archive::Internal;
using nlohmann::json;
using Serialize::Json::FlatObject;
namespace Words = Archive::Words;

namespace Project {
namespace {

// The two forms differ in how they tell whether imports take part, and in that only the JSON form spares effects
// and transitions of the themes. Documents of both kinds are about, so both stay.

void describe(const QDomElement& object) {
    Archive::setValueOf(object, QStringLiteral("description"),
                        Archive::valueOf(object, QStringLiteral("tag")));
}

/// The ids that theme items refer to, as texts.
QSet<QString> themeIds(const TypedElements& objects) {
    QSet<QString> ids;
    for (const QDomElement& item :
         ofType(objects, QStringLiteral("Collection::PersistentItem::Import::Object"))) {
        if (Archive::valueOf(item, QStringLiteral("collectionId")) == QLatin1String("Themes"))
            ids.insert(Archive::valueOf(item, QStringLiteral("item")));
    }
    return ids;
}

void describeBaseParts(const QDomDocument& document) {
    for (const auto& [part, type] : typedElements(document, Words::BaseOfObject)) {
        if (type == QLatin1String("Effect::Object") || type == QLatin1String("Transition::Object"))
            describe(part);
    }
}

void describeRootObjects(const TypedElements& objects, const QString& type, const QSet<QString>& excluded) {
    for (const QDomElement& object : ofType(objects, type)) {
        if (!excluded.contains(object.attribute(Words::objectId)))
            describe(object);
    }
}

/// An item without a reference excludes objects without an id.
using ExcludedIds = std::set<std::optional<unsigned long long>>;

ExcludedIds themeIds(FlatObject& document) {
    ExcludedIds ids;
    for (const auto& item : selectObjects(document, "Collection::PersistentItem::Import::Object")) {
        if (memberOf(*item.object, "collectionId").get<std::string>() == "Themes")
            ids.insert(Serialize::Json::getReferenceObjectId(memberOf(*item.object, "item")));
    }
    return ids;
}

void describeObjects(FlatObject& document, const std::set<std::string>& classes,
                     const ExcludedIds& excluded) {
    for (auto& [id, object] : document.objects) {
        const std::string* name = Serialize::Json::classNameOf(object);
        if (name && classes.count(*name) > 0 && excluded.count(Serialize::Json::getObjectId(object)) == 0)
            object["description"] = memberOf(object, "tag").get<std::string>();
    }
}

} // namespace

void V60_CollectionItemDescriptionAdaptor::adapt(QDomDocument& document) {
    const auto objects = typedElements(document, Words::RootObject);
    const QSet<QString> excluded = themeIds(objects);
    const bool hasPersistentRoot = !lastOfType(objects, QStringLiteral("Project::PersistentObject")).isNull();
    describeBaseParts(document);
    describeRootObjects(objects, QStringLiteral("Overlay::Preset"), excluded);
    if (!hasPersistentRoot)
        describeRootObjects(objects, QStringLiteral("Import::Object"), excluded);
}

void V60_CollectionItemDescriptionAdaptor::adapt(FlatObject& document) {
    const ExcludedIds excluded = themeIds(document);
    std::set<std::string> classes = {"Effect::Object", "Transition::Object", "Overlay::Preset"};
    if (!document.firstObjectByClassName("Project::Content"))
        classes.insert("Import::Object");
    describeObjects(document, classes, excluded);
}

} // namespace Project
