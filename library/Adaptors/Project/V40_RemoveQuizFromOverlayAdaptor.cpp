#include "Adaptors/Project/V40_RemoveQuizFromOverlayAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Reading.h"
#include "Archive/Internal/XmlText.h"

#include <QMap>

#include <glog/logging.h>

#include <algorithm>

using namespace Archive::Internal;

namespace Project {
namespace {

constexpr int quizClipType = 32;
constexpr int quizPresetType = 4;

bool isQuizClip(const QDomElement& clip) {
    return int32In(clip, Words::type) == quizClipType;
}

bool isQuizPreset(const QDomElement& preset) {
    return int32In(preset, Words::type) == quizPresetType;
}

/// The texts of a preset's items, in order. Quirk: an item without a text counts as one with an empty text.
QStringList itemTexts(const QDomElement& preset) {
    QStringList texts;
    for (const QDomElement& item : elements(childOf(preset, "items"), Words::Item)) {
        const QDomElement data = item.firstChildElement(Words::Data);
        if (Archive::typeOf(data) == QLatin1String("Overlay::Item"))
            texts.append(textIn(data, "text"));
    }
    return texts;
}

/// A new quiz, not yet in the tree. If there is none, `preset` is null and `id` is 0.
struct Quiz {
    QDomElement preset;
    long long id = 0;
    QList<long long> questionIds;
};

/// Replaces the quiz presets that clips use by quizzes.
class QuizConversion {
public:
    explicit QuizConversion(ArchiveEditor& archive) : m_archive(archive), m_root(archive.root()) {}

    void collectPresets();
    void collectRemovals();
    void convertClips();
    void removeRecords() { m_archive.undeclare(m_removals); }

private:
    void convertClip(const QDomElement& clip);
    Quiz newQuiz(const QDomElement& overlay);
    void moveQuestion(const QString& text, const QDomElement& item, Quiz& quiz);
    void declare(const Quiz& quiz);

    ArchiveEditor& m_archive;
    const QDomElement m_root; ///< stored, because a question may add another `Archive` to the document
    QMap<long long, QDomElement> m_presets; ///< quiz presets by id
    QSet<long long> m_removals;             ///< objects that lose their record
};

void QuizConversion::collectPresets() {
    for (const QDomElement& preset : m_archive.rootObjects("Overlay::Preset")) {
        if (isQuizPreset(preset))
            m_presets.insert(idOf(preset), preset);
    }
}

void QuizConversion::collectRemovals() {
    for (const long long id : m_presets.keys())
        m_removals.insert(id);
    collectReferenced(m_archive.records(), m_removals,
                      [](const QDomElement& entry) { return QList<long long>{int64In(entry, Words::Data)}; });
}

void QuizConversion::convertClips() {
    const Elements clips = m_archive.rootObjects("Timeline::Clip");
    // Now, not at the first new object: the scan for ids stops at invalid text, and the change below may
    // remove that.
    if (std::any_of(clips.begin(), clips.end(), isQuizClip))
        m_archive.startIds();
    for (const QDomElement& clip : clips) {
        m_archive.fields(clip).reference("quiz", 0LL);
        if (isQuizClip(clip))
            convertClip(clip);
    }
}

void QuizConversion::convertClip(const QDomElement& clip) {
    const Subject subject(m_archive, clip);
    const QDomElement overlay = m_presets.value(int64In(clip, "overlay"));
    m_archive.setField(clip, "overlay", "0");
    const Quiz quiz = newQuiz(overlay);
    // Quirk: of several clips that share a preset only the first finds it in the archive. The quizzes of the
    // others are referred to and declared, but are missing in the document.
    m_archive.replaceIn(m_root, quiz.preset, overlay);
    m_archive.setField(clip, "quiz", quiz.id);
    declare(quiz);
}

Quiz QuizConversion::newQuiz(const QDomElement& overlay) {
    if (!isQuizPreset(overlay)) {
        LOG(ERROR) << "Need quiz overlay preset";
        return {};
    }
    Quiz quiz;
    quiz.id = m_archive.nextId();
    quiz.preset = m_archive.newObject(Words::RootObject, "Quiz::Preset", quiz.id);
    const QDomElement questions = m_archive.fields(quiz.preset).array("questions").last();
    for (const QString& text : itemTexts(overlay))
        moveQuestion(text, m_archive.appendItem(questions), quiz);
    m_archive.fields(quiz.preset)
        .string("tag", textIn(overlay, "tag"))
        .string("description", textIn(overlay, "description"));
    return quiz;
}

/// Moves the question out of a text, which is an XML document of its own.
void QuizConversion::moveQuestion(const QString& text, const QDomElement& item, Quiz& quiz) {
    QDomDocument inner; // must exist until the question was moved
    parseXml(inner, text);
    const Elements questions = rootObjects(inner, "Quiz::Question");
    if (questions.empty()) {
        LOG(ERROR) << "Quiz question not found";
        return;
    }
    const QDomElement& question = questions.front();
    const long long id = m_archive.nextId();
    quiz.questionIds.append(id);
    m_archive.rename(question, Words::Data);
    m_archive.setObjectId(question, id);
    m_archive.append(item, question);
}

void QuizConversion::declare(const Quiz& quiz) {
    // Quirk: if there is no quiz, the record declares a new id that no object has.
    m_archive.declareAs(quiz.id, "Quiz::Preset", 0, quiz.questionIds);
    for (const long long questionId : quiz.questionIds)
        m_archive.declareAs(questionId, "Quiz::Question", quiz.id);
}

} // namespace

void V40_RemoveQuizFromOverlayAdaptor::convert(ArchiveEditor& archive) {
    if (archive.root().isNull()) {
        LOG(ERROR) << "<Archive> element not found or is not unique";
        return;
    }
    archive.beginStep(Scope::Archive);
    QuizConversion conversion(archive);
    conversion.collectPresets();
    conversion.collectRemovals();
    conversion.convertClips();
    conversion.removeRecords(); // Quirk: also records of quiz presets that no clip uses, though these stay
}

} // namespace Project
