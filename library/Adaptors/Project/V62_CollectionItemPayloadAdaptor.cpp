#include "Adaptors/Project/V62_CollectionItemPayloadAdaptor.h"

#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <QHash>

#include <algorithm>

using namespace Archive::Internal;
namespace Words = Archive::Words;

namespace Project {
namespace {

struct Download {
    QString url;
    long long size = 0;
};

using Downloads = QHash<long long, Download>;

// Objects that have never had a file of their own.
// clang-format off
constexpr const char* typesWithoutResource[] = {
    "Overlay::Preset",
    "Quiz::Preset",
    "Theme::Object",
    "Envelope::TransformationPreset",
};
// clang-format on

const QString resourcePath = QStringLiteral("resourcePath");
const QString remoteSize = QStringLiteral("remoteSize");

bool isPersistentItem(const QString& className) {
    return className.startsWith(QLatin1String("Collection::PersistentItem"));
}

bool isWithoutResource(const QString& type) {
    return std::any_of(std::begin(typesWithoutResource), std::end(typesWithoutResource),
                       [&](const char* name) { return type == QLatin1String(name); });
}

/// Takes the download out of its holder, which keeps where the file lies.
Download takeDownload(QDomElement holder) {
    const QString remoteUrl = QStringLiteral("remoteUrl");
    Download download = {Archive::valueOf(holder, remoteUrl),
                         Archive::valueOf(holder, remoteSize).toLongLong()};
    Archive::removeFirstChild(holder, remoteUrl);
    Archive::removeFirstChild(holder, remoteSize);
    QDomElement location = holder.firstChildElement(QStringLiteral("location"));
    if (!location.isNull())
        location.setTagName(resourcePath);
    return download;
}

Downloads collect(QDomDocument& document, const TypedElements& objects) {
    Downloads downloads;
    const auto take = [&](const QDomElement& object, const QDomElement& holder) {
        downloads[static_cast<long long>(Archive::objectIdOf(object))] = takeDownload(holder);
    };
    const auto addEmptyPath = [&](QDomElement object) {
        object.appendChild(Archive::createString(document, resourcePath, QString()));
    };
    for (auto [object, type] : objects) {
        if (type == QLatin1String("Import::Object"))
            take(object, object);
        else if (type.startsWith(QLatin1String("Effect::")))
            take(object, Archive::findRootBaseOfObject(object));
        else if (type.startsWith(QLatin1String("Transition::")))
            addEmptyPath(Archive::findRootBaseOfObject(object));
        else if (isWithoutResource(type))
            addEmptyPath(object);
    }
    return downloads;
}

void renameRecords(const QDomElement& predeclarations) {
    for (const QDomElement& item : elements(predeclarations, Words::Item)) {
        const QDomElement record = item.firstChildElement(Words::Data);
        if (Archive::typeOf(record) == Words::Predeclare &&
            isPersistentItem(Archive::valueOf(record, Words::typeName)))
            Archive::setValueOf(record, Words::typeName, QStringLiteral("Collection::Item"));
    }
}

void convertItem(QDomDocument& document, QDomElement& object, const Downloads& downloads) {
    setType(object, QStringLiteral("Collection::Item"));
    const QDomElement item = object.firstChildElement(QStringLiteral("item"));
    const long long id = item.attribute(Words::value).toLongLong();
    if (!item.isNull())
        replaceChild(object, Archive::createObjectRef(document, QStringLiteral("payload"), id), item);
    const Download download = downloads.value(id);
    object.appendChild(Archive::createString(document, QStringLiteral("downloadUrl"), download.url));
    object.appendChild(Archive::createInt64(document, remoteSize, download.size));
}

} // namespace

void V62_CollectionItemPayloadAdaptor::adapt(QDomDocument& document) {
    const auto objects = typedElements(document, Words::RootObject);
    const Downloads downloads = collect(document, objects);
    for (auto [object, type] : objects) {
        if (type == Words::Predeclarator)
            renameRecords(object.firstChildElement(Words::predeclarations));
        else if (isPersistentItem(type))
            convertItem(document, object, downloads);
    }
}

} // namespace Project
