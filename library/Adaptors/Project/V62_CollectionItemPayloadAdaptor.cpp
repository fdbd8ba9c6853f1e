#include "Adaptors/Project/V62_CollectionItemPayloadAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"

#include <QHash>

using namespace Archive::Internal;

namespace Project {
namespace {

struct Download {
    QString url;
    long long size = 0;
};

// Classes of objects that have no file of their own.
constexpr const char* typesWithoutResource[] = {
    "Overlay::Preset",
    "Quiz::Preset",
    "Theme::Object",
    "Envelope::TransformationPreset",
};

constexpr const char* itemClass = "Collection::Item";

bool isPersistentItem(const QString& className) {
    return className.startsWith(QLatin1String("Collection::PersistentItem"));
}

class PayloadConversion {
public:
    explicit PayloadConversion(ArchiveEditor& archive) : m_archive(archive) {}

    void collectDownloads() {
        for (const auto& [object, type] : m_archive.rootObjects()) {
            if (type == QLatin1String("Import::Object"))
                m_downloads[wrappedIdOf(object)] = takeDownload(object);
            else if (type.startsWith(QLatin1String("Effect::")))
                m_downloads[wrappedIdOf(object)] = takeDownload(Archive::findRootBaseOfObject(object));
            else if (type.startsWith(QLatin1String("Transition::")))
                appendEmptyPath(Archive::findRootBaseOfObject(object));
            else if (isOneOf(typesWithoutResource, type))
                appendEmptyPath(object);
        }
    }

    void convertItems() {
        for (const auto& [object, type] : m_archive.rootObjects()) {
            if (type == Words::Predeclarator)
                renameRecords(object.firstChildElement(Words::predeclarations));
            else if (isPersistentItem(type))
                convertItem(object);
        }
    }

private:
    /// Removes URL and size from an object and renames the path of its file, which it keeps.
    Download takeDownload(const QDomElement& holder) {
        Download download = {textIn(holder, "remoteUrl"), int64In(holder, "remoteSize")};
        m_archive.removeField(holder, "remoteUrl");
        m_archive.removeField(holder, "remoteSize");
        m_archive.rename(childOf(holder, "location"), "resourcePath");
        return download;
    }

    void appendEmptyPath(const QDomElement& object) {
        m_archive.fields(object).string("resourcePath", QString());
    }

    void renameRecords(const QDomElement& predeclarations) {
        for (const Record& record : m_archive.recordsAtAnyDepth(predeclarations)) {
            if (isPersistentItem(Archive::valueOf(record.data, Words::typeName)) &&
                Archive::typeOf(record.data) == Words::Predeclare)
                m_archive.setField(record.data, Words::typeName, itemClass);
        }
    }

    void convertItem(const QDomElement& object) {
        m_archive.setType(object, itemClass);
        const QDomElement item = childOf(object, "item");
        const long long id = int64Of(item);
        m_archive.fieldsInsteadOf(item).reference("payload", id);
        const Download download = m_downloads.value(id);
        m_archive.fields(object).string("downloadUrl", download.url).int64("remoteSize", download.size);
    }

    ArchiveEditor& m_archive;
    QHash<long long, Download> m_downloads; ///< by the id of the object
};

} // namespace

void V62_CollectionItemPayloadAdaptor::convert(ArchiveEditor& archive) {
    PayloadConversion conversion(archive);
    conversion.collectDownloads();
    conversion.convertItems();
}

} // namespace Project
