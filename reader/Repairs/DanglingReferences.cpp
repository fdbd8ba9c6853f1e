#include "Archive/Internal/Reading.h"
#include "Repairs/Internal/ArchiveObjects.h"
#include "Repairs/Makers.h"

#include <QSet>

using namespace Archive::Internal;

namespace Repairs {
namespace {

/// The item of a list that is of no use without the object that the reference names; a null element if there is none.
QDomElement itemOf(const QDomElement& reference) {
    const QString tag = reference.tagName();
    const QDomElement parent = reference.parentNode().toElement();
    if (parent.tagName() == Words::Item)
        return tag == Words::Data || tag == Words::Key || tag == Words::Value ? parent : QDomElement();
    const QDomElement item = parent.parentNode().toElement();
    const bool isLink = tag == QLatin1String("master") && item.tagName() == Words::Item;
    return isLink ? item : QDomElement();
}

/// Clears references to objects that are missing: lists lose the item, fields refer to nothing. A clip or a track
/// belongs to the timeline that lists it.
class DanglingReferences : public ArchiveRepair {
public:
    bool find(ArchiveEditor& archive, const Place&) override {
        const auto objects = objectsById(archive);
        walkProject(archive, [&](const QDomElement& e) {
            const auto id = Archive::typeOf(e) == Words::ObjectRef ? targetOf(e) : 0;
            if (id != 0 && !objects.contains(id))
                m_references.push_back(e);
        });
        return !m_references.empty();
    }

    void repair(ArchiveEditor& archive, Changes& changes) override {
        collectOwners(archive);
        Elements items;
        QSet<const void*> known;
        for (const QDomElement& reference : m_references) {
            changes.note(reference);
            const QDomElement item = itemOf(reference);
            if (item.isNull())
                archive.setText(reference, QString::number(ownerFor(reference)));
            else if (!known.contains(identityOf(item)))
                items.push_back(item);
            known.insert(identityOf(item));
        }
        removeItems(archive, items);
        changes.describe(counted(m_references.size(), "reference") + " to objects that are missing " +
                         (m_references.size() == 1 ? "was" : "were") + " cleared");
    }

private:
    void collectOwners(ArchiveEditor& archive) {
        for (const QDomElement& timeline : archive.rootObjects("Timeline::Object")) {
            const auto id = Archive::objectIdOf(timeline);
            for (const unsigned long long clip : clipIds(timeline))
                m_owners.insert(clip, id);
            for (const QDomElement& item : children(timeline.firstChildElement("tracks"), Words::Item))
                m_owners.insert(uint64In(item, Words::Data), id);
        }
    }

    /// The timeline, for the field `timeline` of a clip or a track that one lists; else 0.
    unsigned long long ownerFor(const QDomElement& reference) const {
        const QDomElement object = reference.parentNode().toElement();
        const bool isOwner =
            reference.tagName() == QLatin1String("timeline") && object.tagName() == Words::RootObject;
        return isOwner ? m_owners.value(Archive::objectIdOf(object)) : 0;
    }

    Elements m_references;
    QHash<unsigned long long, unsigned long long> m_owners; ///< timeline by clip or track
};

} // namespace

std::unique_ptr<ArchiveRepair> makeDanglingReferences() {
    return std::make_unique<DanglingReferences>();
}

} // namespace Repairs
