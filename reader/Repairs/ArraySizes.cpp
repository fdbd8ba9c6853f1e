#include "Archive/Internal/Reading.h"
#include "Repairs/Internal/ArchiveObjects.h"
#include "Repairs/Makers.h"

using namespace Archive::Internal;

namespace Repairs {
namespace {

bool isWrong(const QDomElement& array) {
    bool isNumber = false;
    const qulonglong size = array.attribute(Words::size).toULongLong(&isNumber);
    return !isNumber || size != children(array, Words::Item).size();
}

/// Steps and the conversion read `size` in places, and take a list for empty, or a pair for something else. Nothing reads
/// that of predeclarations, which steps write wrongly.
class ArraySizes : public ArchiveRepair {
public:
    bool find(ArchiveEditor& archive, const Place&) override {
        walkProject(archive, [this](const QDomElement& e) {
            if (Archive::typeOf(e) == Words::Array && isWrong(e))
                m_arrays.push_back(e);
        });
        return !m_arrays.empty();
    }

    void repair(ArchiveEditor& archive, Changes& changes) override {
        for (const QDomElement& array : m_arrays) {
            countItems(archive, array);
            changes.note(array);
        }
        changes.describe(counted(m_arrays.size(), "list") + " got the number of the items in it");
    }

private:
    Elements m_arrays;
};

} // namespace

std::unique_ptr<ArchiveRepair> makeArraySizes() {
    return std::make_unique<ArraySizes>();
}

} // namespace Repairs
