#include "Archive/Internal/Predeclarations.h"

#include "Archive/Xml.h"

namespace Archive::Internal {

long long declaredId(const QDomElement& record) {
    return valueOf(record, Words::oid).toLongLong();
}

Record recordIn(const QDomElement& item) {
    const QDomElement data = item.firstChildElement(Words::Data);
    return {item, data, declaredId(data)};
}

std::shared_ptr<Records> readRecords(const QDomElement& predeclarations) {
    auto records = std::make_shared<Records>();
    for (const QDomElement& item : children(predeclarations, Words::Item))
        records->push_back(recordIn(item));
    return records;
}

void collectReferenced(const RecordList& records, QSet<long long>& ids,
                       const std::function<QList<long long>(const QDomElement& entry)>& targetsOf) {
    for (const Record& record : records) {
        if (!ids.contains(record.id))
            continue;
        for (const QDomElement& entry : children(record.data.firstChildElement(Words::refs), Words::Item)) {
            for (const long long target : targetsOf(entry))
                ids.insert(target);
        }
    }
}

} // namespace Archive::Internal
