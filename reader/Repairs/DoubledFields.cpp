#include "Archive/Internal/Reading.h"
#include "Repairs/Internal/ArchiveObjects.h"
#include "Repairs/Makers.h"

using namespace Archive::Internal;

namespace Repairs {
namespace {

/// Removes the second `uniqueId` of effects, which version 18 writes in place of `description`, and the second
/// `pixelSize` of mask frames, which version 51 adds. The conversion takes the last field of a name.
class DoubledFields : public ArchiveRepair {
public:
    bool find(ArchiveEditor& archive, const Place&) override {
        for (const char* name : {"uniqueId", "pixelSize"}) {
            for (const QDomElement& field : elements(archive.root(), name)) {
                if (!field.previousSiblingElement(name).isNull())
                    m_fields.push_back(field);
            }
        }
        return !m_fields.empty();
    }

    void repair(ArchiveEditor& archive, Changes& changes) override {
        for (const QDomElement& field : m_fields) {
            changes.note(field);
            const QDomElement object = field.parentNode().toElement();
            const bool isDescription = field.tagName() == QLatin1String("uniqueId") &&
                                       object.firstChildElement("description").isNull();
            if (isDescription) {
                archive.rename(field, "description");
                archive.setText(field, Archive::valueOf(object, "tag")); // as in version 60
            } else {
                archive.remove(field);
            }
        }
        changes.describe(counted(m_fields.size(), "field") + " that came twice " +
                         (m_fields.size() == 1 ? "has" : "have") + " the first value");
    }

private:
    Elements m_fields;
};

} // namespace

std::unique_ptr<ArchiveRepair> makeDoubledFields() {
    return std::make_unique<DoubledFields>();
}

} // namespace Repairs
