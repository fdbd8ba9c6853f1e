#pragma once

#include "Reader/Document.h"
#include "Reader/Migration.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

/// What tests of whole projects share: a saved project as a user looks at it, and how a film ought to look.
namespace Tests {

using Strings = std::vector<std::string>;

/// The samples at some of whose versions something is there that earlier ones do not have.
constexpr int always = 0;
constexpr int sinceScenes = 12;      // nested timelines
constexpr int sinceQuizzes = 21;     // and gates, phones and pitches
constexpr int sinceCollections = 35; // and LUTs

/// The one sample with every class of effect on several clips, shared ones and some that no clip lists.
constexpr int reelVersion = 3;

/// A saved project at the newest version, read the way that a user looks at it.
class Project {
public:
    explicit Project(const QByteArray& bytes) : m_document(Reader::parse(bytes, QStringLiteral("holiday"))) {}

    const Reader::Document& document() const { return m_document; }
    const nlohmann::json& root() const { return at(m_document.json().root); }
    const std::map<unsigned long long, nlohmann::json>& objects() const {
        return m_document.json().flat.objects;
    }
    const nlohmann::json& at(unsigned long long id) const { return objects().at(id); }

    /// What a reference leads to; the value itself where it is no reference.
    const nlohmann::json& follow(const nlohmann::json& value) const {
        const auto id = Serialize::Json::getReferenceObjectId(value);
        return id ? at(*id) : value;
    }
    const nlohmann::json& follow(const nlohmann::json& object, const std::string& key) const {
        return follow(object.at(key));
    }

    std::vector<const nlohmann::json*> all(const std::string& className) const {
        std::vector<const nlohmann::json*> found;
        for (const auto& [id, object] : objects()) {
            if (classOf(object) == className)
                found.push_back(&object);
        }
        return found;
    }

    const nlohmann::json& timeline(const std::string& name) const {
        for (const nlohmann::json* timeline : all("Timeline::Object")) {
            if (timeline->at("name") == name)
                return *timeline;
        }
        throw std::runtime_error("no timeline " + name);
    }

    static std::string classOf(const nlohmann::json& object) {
        return Serialize::Json::getClassName(object).value_or(std::string());
    }

    /// The part of an object that its innermost base class holds.
    const nlohmann::json& innermost(const nlohmann::json& object) const {
        const nlohmann::json* part = &object;
        for (bool isFound = true; isFound;) {
            isFound = false;
            for (const auto& [key, value] : part->items()) {
                const nlohmann::json& target = follow(value);
                if (target.is_object() && classOf(target) == key) {
                    part = &target;
                    isFound = true;
                    break;
                }
            }
        }
        return *part;
    }

private:
    Reader::Document m_document;
};

// The film as a user knows it. Lanes count the timeline's tracks from the first.

struct ExpectedClip {
    const char* name;
    int type;
    std::int64_t timestamp;
    std::int64_t duration;
    std::size_t lane;
    Strings effects; ///< an empty text for one that is not there any more
    int since = always;
    bool isOfReel = false;
};

inline bool isThere(const ExpectedClip& clip, int version) {
    return clip.isOfReel ? version == reelVersion : version >= clip.since;
}

struct ExpectedTransition {
    const char* className;
    const char* from; ///< null for none
    const char* to;
    int since = always;
};

struct ExpectedTimeline {
    const char* name;
    std::vector<int> lanes; ///< the types of the tracks
    std::vector<ExpectedClip> clips;
    std::vector<ExpectedTransition> transitions;
    int since = always;
};

void expectClips(const Project& project, const ExpectedTimeline& expected, int version);
void expectTransitions(const Project& project, const ExpectedTimeline& expected, int version);

/// The clip of that name on any timeline.
const nlohmann::json& clipNamed(const Project& project, const std::string& name);
const nlohmann::json& timingOf(const Project& project, const std::string& timeline, const std::string& name);

/// Where the last clip of a timeline ends.
std::int64_t lengthOf(const Project& project, const std::string& timeline);

/// The texts of a title's items.
Strings textsOf(const Project& project, const nlohmann::json& clip);

/// The nested value of a saved project with the ids of its objects counted in walking order.
nlohmann::json renumbered(const QByteArray& bytes);

} // namespace Tests
