#include "Archive/Internal/Reading.h"
#include "Repairs/Internal/ArchiveObjects.h"
#include "Repairs/Makers.h"

#include <QSet>

using namespace Archive::Internal;

namespace Repairs {
namespace {

constexpr int quizClipType = 32;

/// Gives each quiz clip that shares its preset a copy. Version 40 makes a quiz of the preset for the first clip, and
/// nothing is left for the others.
class SharedQuizzes : public ArchiveRepair {
public:
    bool find(ArchiveEditor& archive, const Place&) override {
        for (const QDomElement& preset : archive.rootObjects("Overlay::Preset"))
            m_presets.insert(Archive::objectIdOf(preset), preset);
        const Elements clips = archive.rootObjects("Timeline::Clip");
        QSet<unsigned long long> used;
        for (const bool isQuiz : {false, true}) { // titles keep their own preset
            for (const QDomElement& clip : clips) {
                const auto preset = uint64In(clip, "overlay");
                if ((int32In(clip, "type") == quizClipType) != isQuiz || !m_presets.contains(preset))
                    continue;
                if (isQuiz && used.contains(preset))
                    m_clips.push_back(clip);
                used.insert(preset);
            }
        }
        return !m_clips.empty();
    }

    void repair(ArchiveEditor& archive, Changes& changes) override {
        for (const QDomElement& clip : m_clips) {
            const QDomElement copy = appendCopy(archive, m_presets.value(uint64In(clip, "overlay")));
            archive.setField(clip, "overlay", QString::number(Archive::objectIdOf(copy)));
            changes.note(clip);
            changes.mention(copy);
        }
        changes.describe(counted(m_clips.size(), "quiz clip") + " got a copy of the preset that " +
                         (m_clips.size() == 1 ? "it" : "they") + " shared with another clip");
    }

private:
    QHash<unsigned long long, QDomElement> m_presets;
    Elements m_clips;
};

} // namespace

std::unique_ptr<ArchiveRepair> makeSharedQuizzes() {
    return std::make_unique<SharedQuizzes>();
}

} // namespace Repairs
