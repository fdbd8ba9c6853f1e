#include "Adaptors/Project/V60_CollectionItemDescriptionAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/FlatEditor.h"
#include "Archive/Internal/Reading.h"
#include "Archive/Xml.h"

#include <QSet>

#include <optional>
#include <set>
#include <string>

using namespace Archive::Internal;

namespace Project {
namespace {

// Quirk: the two forms differ: each has another condition for converting imports, and only the JSON form
// excludes effects and transitions of the themes.

void describe(ArchiveEditor& archive, const QDomElement& object) {
    archive.setField(object, "description", textIn(object, "tag"));
}

/// The ids that theme items refer to, as texts.
QSet<QString> themeIds(ArchiveEditor& archive) {
    QSet<QString> ids;
    for (const QDomElement& item : archive.rootObjects("Collection::PersistentItem::Import::Object")) {
        if (textIn(item, "collectionId") == QLatin1String("Themes"))
            ids.insert(textIn(item, "item"));
    }
    return ids;
}

void describeBaseParts(ArchiveEditor& archive) {
    for (const auto& [part, type] : archive.baseParts()) {
        if (type == QLatin1String("Effect::Object") || type == QLatin1String("Transition::Object"))
            describe(archive, part);
    }
}

void describeRootObjects(ArchiveEditor& archive, const QString& type, const QSet<QString>& excluded) {
    for (const QDomElement& object : archive.rootObjects(type)) {
        if (!excluded.contains(object.attribute(Words::objectId)))
            describe(archive, object);
    }
}

/// Quirk: an item without a reference excludes all objects without an id.
using ExcludedIds = std::set<std::optional<unsigned long long>>;

ExcludedIds themeIds(FlatEditor& editor) {
    ExcludedIds ids;
    for (const auto& item : editor.objects("Collection::PersistentItem::Import::Object")) {
        if (memberOf(*item.object, "collectionId").get<std::string>() == "Themes")
            ids.insert(Serialize::Json::getReferenceObjectId(memberOf(*item.object, "item")));
    }
    return ids;
}

void describeObjects(FlatEditor& editor, const std::set<std::string>& classes, const ExcludedIds& excluded) {
    for (const auto& [id, object] : editor.objects(classes)) {
        if (excluded.count(Serialize::Json::getObjectId(*object)) == 0)
            (*object)["description"] = memberOf(*object, "tag").get<std::string>();
    }
}

} // namespace

void V60_CollectionItemDescriptionAdaptor::convert(ArchiveEditor& archive) {
    const QSet<QString> excluded = themeIds(archive);
    describeBaseParts(archive);
    describeRootObjects(archive, "Overlay::Preset", excluded);
    if (archive.lastRootObject("Project::PersistentObject").isNull())
        describeRootObjects(archive, "Import::Object", excluded);
}

void V60_CollectionItemDescriptionAdaptor::convert(FlatEditor& editor) {
    const ExcludedIds excluded = themeIds(editor);
    std::set<std::string> classes = {"Effect::Object", "Transition::Object", "Overlay::Preset"};
    if (editor.objects("Project::Content").empty())
        classes.insert("Import::Object");
    describeObjects(editor, classes, excluded);
}

} // namespace Project
