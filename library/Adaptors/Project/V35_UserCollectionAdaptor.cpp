#include "Adaptors/Project/V35_UserCollectionAdaptor.h"

#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/RootObjects.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

using namespace Archive::Internal;
namespace Words = Archive::Words;

namespace Project {
namespace {

constexpr long long unknownId = -1;

struct Found {
    QDomElement predeclarations;
    long long timelineId = unknownId;

    bool isComplete() const { return !predeclarations.isNull() && timelineId != unknownId; }
};

/// Looks no further than it must: of several objects of a type, the last before both are known counts.
Found find(const QDomElement& archive) {
    Found found;
    for (const auto& [object, type] : Archive::Internal::typedElements(archive, Words::RootObject)) {
        if (type == Words::Predeclarator)
            found.predeclarations = object.firstChildElement(Words::predeclarations);
        else if (type == QLatin1String("Timeline::Object"))
            found.timelineId = object.attribute(Words::objectId).toLongLong();
        if (found.isComplete())
            break;
    }
    return found;
}

} // namespace

void V35_UserCollectionAdaptor::adapt(QDomDocument& document) {
    QDomElement archive = soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    Found found = find(archive);
    if (!found.isComplete()) {
        LOG(ERROR) << "Can't adapt user collection";
        return;
    }
    long long maxId = maxObjectId(document);
    NewRootObject content =
        declareRootObject(document, found.predeclarations, QStringLiteral("Project::Content"), maxId);
    NewRootObject collection = declareRootObject(document, found.predeclarations,
                                                 QStringLiteral("EditorCollection::UserObject"), maxId);
    content.element.appendChild(
        Archive::createObjectRef(document, QStringLiteral("timeline"), found.timelineId));
    content.element.appendChild(
        Archive::createObjectRef(document, QStringLiteral("userCollection"), collection.id));
    collection.element.appendChild(Archive::createArray(document, QStringLiteral("items"), 0));
    archive.appendChild(content.element);
    archive.appendChild(collection.element);
    Archive::setValueOf(archive, Words::RootRef, QString::number(content.id));
}

} // namespace Project
