#include "Archive/Internal/Reading.h"
#include "Repairs/Internal/ArchiveObjects.h"
#include "Repairs/Makers.h"

#include <cmath>

using namespace Archive::Internal;

namespace Repairs {
namespace {

struct Field {
    const char* className;
    const char* name;
};

/// The numbers of masks that version 51 reads from the text.
constexpr Field fields[] = {
    {"Effect::MaskHighlight", "opacity"},
    {"Effect::MaskHighlight", "smoothness"},
    {"Effect::MaskConceal", "pixelSize"},
};

/// Writes numbers with all digits where a step reads the text, which has six, instead of the exact number beside it.
class RoundedNumbers : public ArchiveRepair {
public:
    bool find(ArchiveEditor& archive, const Place&) override {
        for (const Field& field : fields) {
            for (const QDomElement& effect : archive.rootObjects(field.className)) {
                const QDomElement number = effect.firstChildElement(field.name);
                const double exact = Archive::readValue(number, textOf(number).toDouble());
                const bool isExact = textOf(number).toDouble() == exact;
                if (!isExact && std::isfinite(exact) && number.hasAttribute(Words::binaryData))
                    m_numbers.push_back(number);
            }
        }
        return !m_numbers.empty();
    }

    void repair(ArchiveEditor& archive, Changes& changes) override {
        for (const QDomElement& number : m_numbers) {
            archive.setText(number, QString::number(Archive::readValue(number, 0.0), 'g', 17));
            changes.note(number);
        }
        changes.describe(counted(m_numbers.size(), "number") + " of masks kept all digits");
    }

private:
    Elements m_numbers;
};

} // namespace

std::unique_ptr<ArchiveRepair> makeRoundedNumbers() {
    return std::make_unique<RoundedNumbers>();
}

} // namespace Repairs
