#include "Adaptors/Project/V57_ProjectPersistentObjectAdaptor.h"

#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/Outline.h"
#include "Archive/Internal/Predeclarations.h"
#include "Archive/Internal/RootObjects.h"
#include "Archive/Xml.h"

#include <glog/logging.h>

using namespace Archive::Internal;
namespace Words = Archive::Words;

namespace Project {
namespace {

QDomElement makeTable(QDomDocument& document, QDomElement& predeclarations, long long& maxId) {
    QDomElement table =
        declareRootObject(document, predeclarations, QStringLiteral("ResourceTable::Object"), maxId).element;
    table.appendChild(Archive::createArray(document, QStringLiteral("resource2fileInfo"), 0));
    return table;
}

/// The records of both objects name the new root as parent. The entries of `refs` are met too and declare nothing.
void setParent(const QDomElement& predeclarations, const QList<long long>& ids, long long parent) {
    for (const QDomElement& item : elements(predeclarations, Words::Item)) {
        const QDomElement record = item.firstChildElement(Words::Data);
        if (ids.contains(declaredId(record)))
            Archive::setValueOf(record, Words::poid, QString::number(parent));
    }
}

/// Moves a root object into `parent` as its field `name`.
void embed(QDomElement object, const QString& name, QDomElement& parent) {
    if (object.isNull())
        return;
    Outline::removed(object);
    object.setTagName(name);
    parent.appendChild(object);
}

} // namespace

void V57_ProjectPersistentObjectAdaptor::adapt(QDomDocument& document) {
    QDomElement archive = soleArchive(document);
    if (archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return;
    }
    const QString resourceTable = QStringLiteral("resourceTable");
    const auto objects = typedElements(archive, Words::RootObject);
    QDomElement predeclarations = predeclarationsAmong(objects);
    QDomElement content = lastOfType(objects, QStringLiteral("Project::Content"));
    QDomElement table = lastOfType(objects, QStringLiteral("ResourceTable::Object"));
    long long maxId = maxObjectId(document);
    if (table.isNull())
        table = makeTable(document, predeclarations, maxId);

    const QList<long long> ids = {static_cast<long long>(Archive::objectIdOf(content)),
                                  static_cast<long long>(Archive::objectIdOf(table))};
    NewRootObject root =
        declareRootObject(document, predeclarations, QStringLiteral("Project::PersistentObject"), maxId, ids);
    setParent(predeclarations, ids, root.id);
    Archive::removeFirstChild(content, resourceTable);
    embed(content, QStringLiteral("content"), root.element);
    embed(table, resourceTable, root.element);
    archive.appendChild(root.element);
    Archive::setValueOf(archive, Words::RootRef, QString::number(root.id));
}

} // namespace Project
