#include "Adaptors/Project/V56_ResourceTableAdaptor.h"

#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/RootObjects.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

using namespace Archive::Internal;
namespace Words = Archive::Words;

namespace Project {
namespace {

void insertReference(QDomDocument& document, QDomElement& content, long long id) {
    if (content.isNull())
        return;
    // Behind a null element is at the end.
    content.insertAfter(Archive::createObjectRef(document, QStringLiteral("resourceTable"), id),
                        content.firstChildElement(QStringLiteral("userCollection")));
}

void insertBehindLast(const TypedElements& objects, const QDomElement& table, QDomElement& archive) {
    QDomNode place = objects.last();
    while (!place.isNull() && place.parentNode() != archive)
        place = place.parentNode();
    archive.insertAfter(table, place);
}

} // namespace

void V56_ResourceTableAdaptor::adapt(QDomDocument& document) {
    QDomElement archive = soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    // A table that is there already is not looked for: the content gets another.
    const auto objects = typedElements(archive, Words::RootObject);
    QDomElement predeclarations = predeclarationsAmong(objects);
    QDomElement content = lastOfType(objects, QStringLiteral("Project::Content"));
    long long maxId = maxObjectId(document);
    NewRootObject table =
        declareRootObject(document, predeclarations, QStringLiteral("ResourceTable::Object"), maxId);
    insertReference(document, content, table.id);
    table.element.appendChild(Archive::createArray(document, QStringLiteral("resource2fileInfo"), 0));
    insertBehindLast(objects, table.element, archive);
}

} // namespace Project
