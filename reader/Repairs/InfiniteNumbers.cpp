#include "Archive/Internal/Reading.h"
#include "Repairs/Internal/ArchiveObjects.h"
#include "Repairs/Makers.h"

#include <cmath>
#include <limits>

using namespace Archive::Internal;

namespace Repairs {
namespace {

constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

/// Replaces numbers that are not finite by their text if that is a number, else by 0. JSON can't hold them.
class InfiniteNumbers : public ArchiveRepair {
public:
    bool find(ArchiveEditor& archive, const Place&) override {
        walkElements(
            archive.root(),
            [this](const QDomElement& e) {
                if (Archive::typeOf(e) == QLatin1String("double") &&
                    std::isnan(Archive::readValue(e, noNumber)))
                    m_numbers.push_back(e);
            },
            [](const QDomElement&) {});
        return !m_numbers.empty();
    }

    void repair(ArchiveEditor& archive, Changes& changes) override {
        for (const QDomElement& number : m_numbers) {
            const double text = textOf(number).toDouble();
            archive.setNumber(number, std::isfinite(text) ? text : 0.0);
            changes.note(number);
        }
        changes.describe(counted(m_numbers.size(), "number") +
                         " that JSON can't hold became the number of its text, or 0");
    }

private:
    Elements m_numbers;
};

} // namespace

std::unique_ptr<ArchiveRepair> makeInfiniteNumbers() {
    return std::make_unique<InfiniteNumbers>();
}

} // namespace Repairs
