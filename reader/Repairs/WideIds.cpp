#include "Archive/Internal/Reading.h"
#include "Repairs/Internal/ArchiveObjects.h"
#include "Repairs/Makers.h"

#include <limits>
#include <set>

using namespace Archive::Internal;

namespace Repairs {
namespace {

/// The last steps that read ids in 32 bits lead to this version.
constexpr int lastNarrow = 24;

constexpr long long widest = std::numeric_limits<int>::max();

/// Gives new ids to objects whose ids need more than 32 bits, and rewrites all references.
class WideIds : public ArchiveRepair {
public:
    bool find(ArchiveEditor& archive, const Place& place) override {
        if (place.version >= lastNarrow)
            return false;
        walkElements(
            archive.document(),
            [this](const QDomElement& e) {
                if (e.hasAttribute(Words::objectId))
                    collect(e);
            },
            [](const QDomElement&) {});
        return !m_wide.empty();
    }

    void repair(ArchiveEditor& archive, Changes& changes) override {
        const QHash<long long, long long> ids = newIds();
        for (const QDomElement& e : m_wide) {
            archive.setObjectId(e, ids.value(wrappedIdOf(e)));
            if (e.tagName() == Words::RootObject)
                changes.note(e);
            else
                changes.mention(e);
        }
        for (const QDomElement& reference : referencesIn(archive.root())) {
            const auto id = ids.constFind(static_cast<long long>(targetOf(reference)));
            if (id != ids.constEnd())
                archive.setText(reference, QString::number(*id));
        }
        archive.invalidate(); // the index has the records, and the greatest id
        changes.describe(counted(changes.count(), "object") +
                         " whose id needs more than 32 bits got a smaller one");
    }

private:
    void collect(const QDomElement& e) {
        const long long id = wrappedIdOf(e);
        if (id < 0 || id > widest)
            m_wide.push_back(e);
        else
            m_used.insert(id);
    }

    /// Maps old ids to new ones. The order stays the same, because version 69 takes the timeline with the lowest id for
    /// the main one. New ids are greater than all ids in use; if there are too few of these, unused ones are taken.
    QHash<long long, long long> newIds() const {
        std::set<unsigned long long> old;
        for (const QDomElement& e : m_wide)
            old.insert(Archive::objectIdOf(e));
        const long long greatest = m_used.empty() ? 0 : *m_used.rbegin();
        long long last = widest - greatest > static_cast<long long>(old.size()) ? greatest : 0;
        QHash<long long, long long> ids;
        for (const unsigned long long id : old) {
            do
                ++last;
            while (m_used.count(last) > 0);
            ids.insert(static_cast<long long>(id), last);
        }
        return ids;
    }

    Elements m_wide;
    std::set<long long> m_used;
};

} // namespace

std::unique_ptr<ArchiveRepair> makeWideIds() {
    return std::make_unique<WideIds>();
}

} // namespace Repairs
