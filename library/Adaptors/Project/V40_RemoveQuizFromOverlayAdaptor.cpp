#include "Adaptors/Project/V40_RemoveQuizFromOverlayAdaptor.h"

#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/Outline.h"
#include "Archive/Internal/Predeclarations.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Internal/XmlText.h"
#include "Archive/Xml.h"

#include <QMap>

#include <algorithm>

#include <glog/logging.h>

namespace Words = Archive::Words;
using Archive::valueOf;
using Archive::Internal::children;
using Archive::Internal::elements;
using Archive::Internal::Elements;

namespace Project {
namespace {

constexpr int quizClipType = 32;
constexpr int quizPresetType = 4;

int typeFieldOf(const QDomElement& object) {
    return valueOf(object, Words::type).toInt();
}

bool isQuizClip(const QDomElement& clip) {
    return typeFieldOf(clip) == quizClipType;
}

/// The texts of a preset's items, in order; an item without one counts with an empty text.
QStringList itemTexts(const QDomElement& preset) {
    QStringList texts;
    for (const QDomElement& item : elements(preset.firstChildElement(QStringLiteral("items")), Words::Item)) {
        const QDomElement data = item.firstChildElement(Words::Data);
        if (Archive::typeOf(data) == QLatin1String("Overlay::Item"))
            texts.append(valueOf(data, QStringLiteral("text")));
    }
    return texts;
}

struct Quiz {
    QDomElement preset;
    long long id = 0;
    Elements questions;
    QList<long long> questionIds;
};

class Impl {
public:
    explicit Impl(QDomDocument& document) : m_document(document), m_ids(document) {}

    bool collect();
    void convert();

private:
    void collectRemovals();
    void convertQuizClip(QDomElement& clip);
    Quiz createQuiz(const QDomElement& overlay);
    void moveQuestion(const QString& text, QDomElement& item, Quiz& quiz);
    void declare(const Quiz& quiz);

    QDomDocument m_document;
    Archive::Internal::ObjectIds m_ids;
    QDomElement m_archive;
    QDomElement m_predeclarations;
    Elements m_clips;
    QMap<long long, QDomElement> m_overlays; ///< quiz presets by id
    QSet<long long> m_removals;              ///< objects that lose their predeclaration
};

bool Impl::collect() {
    m_archive = Archive::Internal::soleArchive(m_document);
    if (m_archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found or is not unique";
        return false;
    }
    for (const auto& [object, type] : Archive::Internal::typedElements(m_archive, Words::RootObject)) {
        if (type == Words::Predeclarator)
            m_predeclarations = object.firstChildElement(Words::predeclarations);
        else if (type == QLatin1String("Timeline::Clip"))
            m_clips.push_back(object);
        else if (type == QLatin1String("Overlay::Preset") && typeFieldOf(object) == quizPresetType)
            m_overlays.insert(object.attribute(Words::objectId).toLongLong(), object);
    }
    collectRemovals();
    // Now and not at the first new object: what hides ids behind it may stand in a text that changes before.
    if (std::any_of(m_clips.begin(), m_clips.end(), isQuizClip))
        m_ids.greatest();
    return true;
}

void Impl::collectRemovals() {
    for (auto it = m_overlays.cbegin(); it != m_overlays.cend(); ++it)
        m_removals.insert(it.key());
    // One pass forward: what an entry before its referrer declares stays.
    const auto records = Archive::Internal::recordsOf(m_predeclarations);
    for (const auto& record : *records) {
        if (!m_removals.contains(record.id))
            continue;
        for (const QDomElement& ref : children(record.data.firstChildElement(Words::refs), Words::Item))
            m_removals.insert(valueOf(ref, Words::Data).toLongLong());
    }
}

void Impl::convert() {
    for (QDomElement& clip : m_clips) {
        clip.appendChild(Archive::createObjectRef(m_document, QStringLiteral("quiz"), 0));
        if (isQuizClip(clip))
            convertQuizClip(clip);
    }
    // Quiz presets that no clip uses stay, without a predeclaration.
    Archive::Internal::removePredeclares(m_predeclarations, m_removals);
}

void Impl::convertQuizClip(QDomElement& clip) {
    const QString overlayName = QStringLiteral("overlay");
    const QDomElement overlay = m_overlays.value(valueOf(clip, overlayName).toLongLong());
    Archive::setValueOf(clip, overlayName, QStringLiteral("0"));
    const Quiz quiz = createQuiz(overlay);
    // Of several clips that share a preset only the first finds it in the archive: the quizzes of the others are
    // referred to and declared, but stand nowhere.
    Archive::Internal::replaceChild(m_archive, quiz.preset, overlay);
    for (const QDomElement& question : quiz.questions)
        Archive::Internal::Outline::adopted(question);
    Archive::setValueOf(clip, QStringLiteral("quiz"), QString::number(quiz.id));
    declare(quiz);
}

Quiz Impl::createQuiz(const QDomElement& overlay) {
    if (typeFieldOf(overlay) != quizPresetType) {
        LOG(ERROR) << "Need quiz overlay preset";
        return {};
    }
    const QStringList texts = itemTexts(overlay);
    Quiz quiz;
    quiz.id = m_ids.next();
    quiz.preset =
        Archive::createObject(m_document, Words::RootObject, QStringLiteral("Quiz::Preset"), quiz.id);
    QDomElement questions = Archive::createArray(m_document, QStringLiteral("questions"), texts.size());
    long long index = 0;
    for (const QString& text : texts) {
        QDomElement item = Archive::createArrayItem(m_document, ++index);
        moveQuestion(text, item, quiz);
        questions.appendChild(item);
    }
    quiz.preset.appendChild(questions);
    for (const QString& name : {QStringLiteral("tag"), QStringLiteral("description")})
        quiz.preset.appendChild(Archive::createString(m_document, name, valueOf(overlay, name)));
    return quiz;
}

void Impl::moveQuestion(const QString& text, QDomElement& item, Quiz& quiz) {
    QDomDocument inner; // has to live until the question has moved out of it
    Archive::Internal::parseXml(inner, text);
    Elements questions = Archive::Internal::rootObjects(inner, QStringLiteral("Quiz::Question"));
    if (questions.empty()) {
        LOG(ERROR) << "Quiz question not found";
        return;
    }
    QDomElement& question = questions.front();
    const long long id = m_ids.next();
    quiz.questionIds.append(id);
    question.setTagName(Words::Data);
    question.setAttribute(Words::objectId, QString::number(id));
    item.appendChild(question);
    quiz.questions.push_back(question);
}

void Impl::declare(const Quiz& quiz) {
    long long& greatest = m_ids.greatest();
    // Without a quiz, id 0, the record declares a fresh id that nothing has.
    Archive::addPredeclaration(m_predeclarations, m_document, QStringLiteral("Quiz::Preset"), 0, greatest,
                               quiz.id, quiz.questionIds);
    for (const long long questionId : quiz.questionIds)
        Archive::addPredeclaration(m_predeclarations, m_document, QStringLiteral("Quiz::Question"), quiz.id,
                                   greatest, questionId, {});
}

} // namespace

void V40_RemoveQuizFromOverlayAdaptor::adapt(QDomDocument& document) {
    Impl impl(document);
    if (impl.collect())
        impl.convert();
}

} // namespace Project
