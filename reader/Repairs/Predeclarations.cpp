#include "Archive/Internal/Reading.h"
#include "Repairs/Internal/ArchiveObjects.h"
#include "Repairs/Makers.h"

#include <QSet>

using namespace Archive::Internal;

namespace Repairs {
namespace {

/// Behind steps only these count: the conversion names the parts of entries by their classes.
bool isKeyOfEntries(const QString& type) {
    return type == QLatin1String("Timeline::Clip") || type.startsWith(QLatin1String("Transition::"));
}

struct Damage {
    QDomElement object;
    Elements records; ///< of its id, those of its class first
};

/// Gives each root object exactly one record, of its class.
class Predeclarations : public ArchiveRepair {
public:
    bool find(ArchiveEditor& archive, const Place& place) override {
        const bool isComplete = place.before == loading;
        QHash<long long, std::vector<Record>> records;
        for (const Record& record : archive.records())
            records[record.id].push_back(record);
        QSet<long long> known;
        for (const auto& [object, type] : projectObjects(archive)) {
            const long long id = idOf(object);
            if (id == 0 || known.contains(id) || (!isComplete && !isKeyOfEntries(type)))
                continue;
            known.insert(id);
            inspect(object, type, records.value(id), isComplete);
        }
        m_isListMissing = archive.predeclarations().isNull() && !m_damages.empty();
        return !m_damages.empty();
    }

    void repair(ArchiveEditor& archive, Changes& changes) override {
        if (m_isListMissing)
            addList(archive);
        Elements removals;
        for (const Damage& damage : m_damages) {
            changes.note(damage.object);
            const QString type = Archive::typeOf(damage.object);
            if (damage.records.empty()) {
                archive.declareAs(idOf(damage.object), type);
                continue;
            }
            archive.settingFields(damage.records.front()).string(Words::typeName, type);
            for (std::size_t more = 1; more < damage.records.size(); ++more)
                removals.push_back(damage.records[more].parentNode().toElement());
        }
        removeItems(archive, removals);
        archive.invalidate(); // the index has the records
        changes.describe(counted(m_damages.size(), "object") + " now " +
                         (m_damages.size() == 1 ? "has one predeclaration" : "have one predeclaration each") +
                         ", of the right class");
    }

private:
    void inspect(const QDomElement& object, const QString& type, const std::vector<Record>& records,
                 bool isComplete) {
        Damage damage{object, {}};
        for (const bool isOwn : {true, false}) {
            for (const Record& record : records) {
                if ((Archive::valueOf(record.data, Words::typeName) == type) == isOwn)
                    damage.records.push_back(record.data);
            }
        }
        // Of several records the last one counts in the conversion.
        const bool isRight =
            !records.empty() && Archive::valueOf(records.back().data, Words::typeName) == type;
        if (!isRight || (isComplete && records.size() > 1))
            m_damages.push_back(damage);
    }

    /// The predeclarations come first in an archive.
    static void addList(ArchiveEditor& archive) {
        QDomElement predeclarator = archive.lastRootObject(Words::Predeclarator);
        if (predeclarator.isNull()) {
            predeclarator = archive.appendRootObject(Words::Predeclarator, archive.nextId());
            const QDomElement top = archive.root();
            archive.placeBefore(top, predeclarator, top.firstChildElement(Words::RootObject));
        }
        archive.fields(predeclarator).array(Words::predeclarations);
        archive.setPredeclarations(predeclarator.firstChildElement(Words::predeclarations));
    }

    std::vector<Damage> m_damages;
    bool m_isListMissing = false;
};

} // namespace

std::unique_ptr<ArchiveRepair> makePredeclarations() {
    return std::make_unique<Predeclarations>();
}

} // namespace Repairs
