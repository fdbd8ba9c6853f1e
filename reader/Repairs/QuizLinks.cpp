#include "Archive/Internal/FlatObjects.h"
#include "Archive/Internal/JsonFields.h"
#include "Repairs/FlatTimelines.h"
#include "Repairs/Makers.h"

using Archive::Internal::memberOf;
using nlohmann::json;
using Serialize::Json::getAnyObjectId;

namespace Repairs {
namespace {

/// Ends links and transitions of clips to quiz clips. Version 69 removes the quiz clips, and with them only the links
/// in which they follow another clip.
class QuizLinks : public JsonRepair {
public:
    bool find(Reader::JsonDocument& document, const Place&) override {
        for (const unsigned long long id : timelinesWithQuizzes(document)) {
            json& timeline = document.flat.objects.at(id);
            Damage damage{id, quizzesOf(document, timeline)};
            if (!damage.quizzes.empty() &&
                (hasLink(document, timeline, damage.quizzes) || hasTransition(timeline, damage.quizzes)))
                m_damages.push_back(std::move(damage));
        }
        return !m_damages.empty();
    }

    void repair(Reader::JsonDocument& document, Changes& changes) override {
        std::size_t links = 0;
        std::size_t transitions = 0;
        for (const Damage& damage : m_damages) {
            json& timeline = document.flat.objects.at(damage.timeline);
            if (auto* list = Archive::Internal::listOf(timeline, "links"))
                links += std::erase_if(*list, [&](const json& link) {
                    const bool leads = leadsToQuiz(document, link, damage.quizzes);
                    if (leads)
                        noteSlave(document, link, changes);
                    return leads;
                });
            if (auto* list = Archive::Internal::listOf(timeline, "transitions")) {
                for (json& transition : *list)
                    transitions += endAtQuiz(document, transition, damage.quizzes, changes);
            }
        }
        changes.describe(counted(links, "link") + " and " + counted(transitions, "transition") +
                         " to quiz clips ended; the clips at the other end keep their times");
    }

private:
    using Ids = std::set<unsigned long long>;

    struct Damage {
        unsigned long long timeline;
        Ids quizzes;
    };

    static Ids quizzesOf(Reader::JsonDocument& document, const json& timeline) {
        Ids ids;
        for (const TimelineClip& clip : clipsOf(document, timeline)) {
            if (clip.clip && numberIn(*clip.clip, "type") == quizClip)
                ids.insert(clip.id);
        }
        return ids;
    }

    static bool isOneOf(const json& reference, const Ids& ids) {
        const auto id = getAnyObjectId(reference);
        return id && ids.count(*id) > 0;
    }

    /// Whether a link makes a clip follow a quiz.
    static bool leadsToQuiz(const Reader::JsonDocument& document, const json& entry, const Ids& quizzes) {
        const json& link = memberOf(entry, "link");
        const auto id = Serialize::Json::getReferenceObjectId(link);
        const auto object = id ? document.flat.objects.find(*id) : document.flat.objects.end();
        const json& master =
            memberOf(object == document.flat.objects.end() ? link : object->second, "master");
        return isOneOf(master, quizzes) && !isOneOf(memberOf(entry, "slave"), quizzes);
    }

    static bool hasLink(const Reader::JsonDocument& document, const json& timeline, const Ids& quizzes) {
        for (const json& entry : Archive::Internal::entriesOf(timeline, "links")) {
            if (leadsToQuiz(document, entry, quizzes))
                return true;
        }
        return false;
    }

    static bool hasTransition(const json& timeline, const Ids& quizzes) {
        for (const json& entry : Archive::Internal::entriesOf(timeline, "transitions")) {
            if (isOneOf(memberOf(entry, "clipFrom"), quizzes) || isOneOf(memberOf(entry, "clipTo"), quizzes))
                return true;
        }
        return false;
    }

    static void noteSlave(Reader::JsonDocument& document, const json& entry, Changes& changes) {
        const auto id = getAnyObjectId(memberOf(entry, "slave")).value_or(0);
        const auto clip = document.flat.objects.find(id);
        changes.note(id, clip == document.flat.objects.end() ? json() : clip->second);
    }

    static std::size_t endAtQuiz(Reader::JsonDocument& document, json& transition, const Ids& quizzes,
                                 Changes& changes) {
        std::size_t ended = 0;
        for (const char* end : {"clipFrom", "clipTo"}) {
            const json clip = memberOf(transition, end);
            if (!isOneOf(clip, quizzes))
                continue;
            const auto id = getAnyObjectId(clip).value();
            changes.note(id, document.flat.objects.at(id));
            transition[end] = nullptr;
            ended = 1;
        }
        return ended;
    }

    std::vector<Damage> m_damages;
};

} // namespace

std::unique_ptr<JsonRepair> makeQuizLinks() {
    return std::make_unique<QuizLinks>();
}

} // namespace Repairs
