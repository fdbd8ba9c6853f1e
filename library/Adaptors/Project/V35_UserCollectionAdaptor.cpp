#include "Adaptors/Project/V35_UserCollectionAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"

#include <glog/logging.h>

using namespace Archive::Internal;

namespace Project {
namespace {

constexpr long long unknownId = -1;

struct Found {
    QDomElement predeclarations;
    long long timelineId = unknownId;

    bool isComplete() const { return !predeclarations.isNull() && timelineId != unknownId; }
};

/// Quirk: the search ends as soon as both are found. Of several objects of a type, the last one before that
/// is used.
Found find(ArchiveEditor& archive) {
    Found found;
    for (const auto& [object, type] : archive.rootObjects()) {
        if (type == Words::Predeclarator)
            found.predeclarations = object.firstChildElement(Words::predeclarations);
        else if (type == QLatin1String("Timeline::Object"))
            found.timelineId = idOf(object);
        if (found.isComplete())
            break;
    }
    return found;
}

} // namespace

void V35_UserCollectionAdaptor::convert(ArchiveEditor& archive) {
    const Found found = find(archive);
    if (!found.isComplete()) {
        LOG(ERROR) << "Can't adapt user collection";
        return;
    }
    archive.setPredeclarations(found.predeclarations);
    const long long contentId = archive.declare("Project::Content");
    const long long collectionId = archive.declare("EditorCollection::UserObject");
    archive.fields(archive.appendRootObject("Project::Content", contentId))
        .reference("timeline", found.timelineId)
        .reference("userCollection", collectionId);
    archive.fields(archive.appendRootObject("EditorCollection::UserObject", collectionId)).array("items");
    archive.setField(archive.root(), Words::RootRef, contentId);
}

} // namespace Project
