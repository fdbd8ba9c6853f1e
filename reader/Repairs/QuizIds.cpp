#include "Archive/Internal/Reading.h"
#include "Repairs/Internal/ArchiveObjects.h"
#include "Repairs/Makers.h"

using namespace Archive::Internal;

namespace Repairs {
namespace {

/// An object with an id of its own: base class parts have that of their object.
bool isObject(const QDomElement& e) {
    return e.hasAttribute(Words::objectId) && e.tagName() != Words::BaseOfObject;
}

/// Gives the answers of quizzes ids of their own. Version 40 moves questions from documents of their own into the
/// project, and what is in them keeps its ids, which the project uses as well.
class QuizIds : public ArchiveRepair {
public:
    bool find(ArchiveEditor& archive, const Place&) override {
        const Elements quizzes = archive.rootObjects("Quiz::Preset");
        if (quizzes.empty())
            return false;
        QHash<unsigned long long, std::size_t> counts;
        walkElements(
            archive.document(),
            [&](const QDomElement& e) {
                if (isObject(e))
                    ++counts[Archive::objectIdOf(e)];
            },
            [](const QDomElement&) {});
        for (const QDomElement& quiz : quizzes) {
            for (const QDomElement& item : children(quiz.firstChildElement("questions"), Words::Item)) {
                const QDomElement question = item.firstChildElement(Words::Data);
                if (hasSharedId(question, counts))
                    m_questions.push_back(question);
            }
        }
        return !m_questions.empty();
    }

    void repair(ArchiveEditor& archive, Changes& changes) override {
        for (const QDomElement& question : m_questions) {
            renumber(archive, question);
            changes.note(question);
        }
        changes.describe("the answers of " + counted(m_questions.size(), "question") +
                         " have ids of their own");
    }

private:
    static bool hasSharedId(const QDomElement& question,
                            const QHash<unsigned long long, std::size_t>& counts) {
        bool isShared = false;
        walkElements(
            question,
            [&](const QDomElement& e) {
                isShared = isShared || (isObject(e) && counts.value(Archive::objectIdOf(e)) > 1);
            },
            [](const QDomElement&) {});
        return isShared;
    }

    /// Gives new ids to all that is in a question, and rewrites the references in it that lead there.
    static void renumber(ArchiveEditor& archive, const QDomElement& question) {
        Elements inner;
        walkElements(
            question,
            [&](const QDomElement& e) {
                if (e.hasAttribute(Words::objectId) && Archive::objectIdOf(e) != 0)
                    inner.push_back(e);
            },
            [](const QDomElement&) {});
        QHash<unsigned long long, long long> ids = {{Archive::objectIdOf(question), wrappedIdOf(question)}};
        for (const QDomElement& e : inner) {
            const auto old = Archive::objectIdOf(e);
            if (!ids.contains(old))
                ids.insert(old, archive.nextId());
            archive.setObjectId(e, ids.value(old));
        }
        for (const QDomElement& reference : referencesIn(question)) {
            const auto id = ids.constFind(targetOf(reference));
            if (id != ids.constEnd())
                archive.setText(reference, QString::number(*id));
        }
    }

    Elements m_questions;
};

} // namespace

std::unique_ptr<ArchiveRepair> makeQuizIds() {
    return std::make_unique<QuizIds>();
}

} // namespace Repairs
