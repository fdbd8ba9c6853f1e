#include "Archive/Internal/Predeclarations.h"

#include "Archive/Internal/ArrayItems.h"
#include "Archive/Internal/Outline.h"
#include "Archive/Xml.h"

namespace Archive::Internal {

QDomElement predeclarationsAmong(const TypedElements& rootObjects) {
    QDomElement predeclarations;
    for (const auto& [object, type] : rootObjects) {
        if (type == Words::Predeclarator)
            predeclarations = object.firstChildElement(Words::predeclarations);
    }
    return predeclarations;
}

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

std::shared_ptr<const Records> recordsOf(const QDomElement& predeclarations) {
    if (Outline* outline = Outline::of(predeclarations))
        return outline->records(predeclarations);
    return readRecords(predeclarations);
}

void collectReferenced(const Records& records, QSet<long long>& ids,
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

bool removeRecords(QDomElement& predeclarations, const std::function<bool(const Record&)>& goes) {
    auto records = recordsOf(predeclarations);
    const std::size_t numbered = Outline::numberedEntries(predeclarations);
    Elements victims;
    std::size_t left = 0;
    for (const Record& record : *records) {
        if (goes(record)) {
            victims.push_back(record.item);
            continue;
        }
        QDomElement item = record.item;
        const bool hasPlace = ++left + victims.size() <= numbered;
        if (!hasPlace)
            setIndex(item, static_cast<long long>(left)); // also where nothing goes in the end
        else if (!victims.empty())
            item.setAttribute(Words::index, QString::number(left)); // it is known to differ
    }
    records.reset(); // else what is kept of them would be copied to be changed
    const bool isChanged = removeItems(predeclarations, victims);
    Outline::numbered(predeclarations, left);
    return isChanged;
}

bool removePredeclares(QDomElement& predeclarations, const QSet<long long>& ids) {
    if (ids.isEmpty())
        return false; // no call, no renumbering
    return removeRecords(predeclarations, [&ids](const Record& record) { return ids.contains(record.id); });
}

} // namespace Archive::Internal
