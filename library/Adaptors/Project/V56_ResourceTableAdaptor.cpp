#include "Adaptors/Project/V56_ResourceTableAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"

using namespace Archive::Internal;

namespace Project {
namespace {

/// Inserts a table after the child of the archive that is or contains the last root object.
void insertBehindLast(ArchiveEditor& archive, const QDomElement& table) {
    const TypedElements objects = archive.rootObjects();
    QDomNode previous;
    if (!objects.isEmpty())
        previous = objects.last().element;
    while (!previous.isNull() && previous.parentNode() != archive.root())
        previous = previous.parentNode();
    archive.placeBehind(archive.root(), table, previous);
}

} // namespace

void V56_ResourceTableAdaptor::convert(ArchiveEditor& archive) {
    // Quirk: an existing table is not used, and the content gets a second reference.
    const QString type = "ResourceTable::Object";
    const long long id = archive.declare(type);
    const QDomElement content = archive.lastRootObject("Project::Content");
    archive.fieldsBehind(content, childOf(content, "userCollection")).reference("resourceTable", id);

    const QDomElement table = archive.newObject(Words::RootObject, type, id);
    archive.fields(table).array("resource2fileInfo");
    insertBehindLast(archive, table);
}

} // namespace Project
