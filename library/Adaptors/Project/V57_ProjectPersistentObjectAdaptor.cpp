#include "Adaptors/Project/V57_ProjectPersistentObjectAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"

using namespace Archive::Internal;

namespace Project {
namespace {

QDomElement newTable(ArchiveEditor& archive) {
    const QString type = "ResourceTable::Object";
    const QDomElement table = archive.newObject(Words::RootObject, type, archive.declare(type));
    archive.fields(table).array("resource2fileInfo");
    return table;
}

/// Sets the parent in the records of these objects.
void setParent(ArchiveEditor& archive, const QList<long long>& ids, long long parent) {
    // Quirk: entries of `refs` are searched as well. They count as records of the object 0.
    for (const Record& record : archive.recordsAtAnyDepth(archive.predeclarations())) {
        if (ids.contains(record.id))
            archive.setField(record.data, Words::poid, parent);
    }
}

/// Moves a root object into `parent` as its field `name`.
void embed(ArchiveEditor& archive, const QDomElement& object, const QString& name,
           const QDomElement& parent) {
    archive.rename(object, name);
    archive.append(parent, object);
}

} // namespace

void V57_ProjectPersistentObjectAdaptor::convert(ArchiveEditor& archive) {
    const QDomElement content = archive.lastRootObject("Project::Content");
    QDomElement table = archive.lastRootObject("ResourceTable::Object");
    if (table.isNull())
        table = newTable(archive);

    const QString type = "Project::PersistentObject";
    const QList<long long> ids = {wrappedIdOf(content), wrappedIdOf(table)};
    const long long rootId = archive.declare(type, 0, ids);
    setParent(archive, ids, rootId);
    archive.removeField(content, "resourceTable");
    const QDomElement root = archive.newObject(Words::RootObject, type, rootId);
    embed(archive, content, "content", root);
    embed(archive, table, "resourceTable", root);
    archive.append(archive.root(), root);
    archive.setField(archive.root(), Words::RootRef, rootId);
}

} // namespace Project
