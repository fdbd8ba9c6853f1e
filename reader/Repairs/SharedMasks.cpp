#include "Archive/Internal/Reading.h"
#include "Repairs/Internal/ArchiveObjects.h"
#include "Repairs/Makers.h"

#include <QHash>

using namespace Archive::Internal;

namespace Repairs {
namespace {

constexpr const char* maskClasses[] = {"Effect::MaskHighlight", "Effect::MaskConceal"};

/// A further clip that uses a mask, and the reference in its list of effects.
struct Use {
    QDomElement clip;
    QDomElement reference;
    QDomElement mask;
};

/// Gives each further clip that uses a mask a copy of it. Version 51 moves the content of a mask to the first clip.
class SharedMasks : public ArchiveRepair {
public:
    bool find(ArchiveEditor& archive, const Place&) override {
        QHash<unsigned long long, QDomElement> masks;
        for (const auto& [object, type] : projectObjects(archive)) {
            if (isOneOf(maskClasses, type))
                masks.insert(Archive::objectIdOf(object), object);
        }
        QHash<unsigned long long, QDomElement> owners; // the first clip by mask
        for (const QDomElement& clip : archive.rootObjects("Timeline::Clip")) {
            for (const QDomElement& item : children(clip.firstChildElement("effects"), Words::Item)) {
                const QDomElement reference = item.firstChildElement(Words::Data);
                const auto id = targetOf(reference);
                if (!masks.contains(id))
                    continue;
                if (!owners.contains(id))
                    owners.insert(id, clip);
                else if (owners.value(id) != clip)
                    m_uses.push_back({clip, reference, masks.value(id)});
            }
        }
        return !m_uses.empty();
    }

    void repair(ArchiveEditor& archive, Changes& changes) override {
        for (const Use& use : m_uses) {
            const QDomElement copy = appendCopy(archive, use.mask);
            archive.setText(use.reference, QString::number(Archive::objectIdOf(copy)));
            changes.note(use.clip);
            changes.mention(copy);
        }
        changes.describe(counted(m_uses.size(), "clip") + " got a copy of the mask that " +
                         (m_uses.size() == 1 ? "it" : "they") + " shared with another clip");
    }

private:
    std::vector<Use> m_uses;
};

} // namespace

std::unique_ptr<ArchiveRepair> makeSharedMasks() {
    return std::make_unique<SharedMasks>();
}

} // namespace Repairs
