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

/// Types for tests of whole projects: access to a saved project, and the expected content of a film.
namespace Tests {

using Strings = std::vector<std::string>;

/// The versions from which the samples contain further things.
constexpr int always = 0;
constexpr int sinceScenes = 12;      // nested timelines
constexpr int sinceQuizzes = 21;     // also noise gates, phone and pitch effects
constexpr int sinceCollections = 35; // also LUTs

/// The version of the sample with every class of effect: on several clips, shared by clips, and listed by no
/// clip.
constexpr int reelVersion = 3;

/// A saved project at the newest version, with access by names.
class Project {
public:
    explicit Project(const QByteArray& bytes) : m_document(Reader::parse(bytes, QStringLiteral("holiday"))) {}

    const Reader::Document& document() const { return m_document; }
    const nlohmann::json& root() const { return at(m_document.json().root); }
    const std::map<unsigned long long, nlohmann::json>& objects() const {
        return m_document.json().flat.objects;
    }
    const nlohmann::json& at(unsigned long long id) const { return objects().at(id); }

    /// The object that a reference refers to; the value itself if it is no reference.
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

    /// The innermost base class part of an object.
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

// The visible content of a film. Lanes are the timeline's tracks by number, from the first.

struct ExpectedClip {
    const char* name;
    int type;
    std::int64_t timestamp;
    std::int64_t duration;
    std::size_t lane;
    Strings effects; ///< an empty text for one that was removed
    int since = always;
    bool isOfReel = false;
};

inline bool isThere(const ExpectedClip& clip, int version) {
    return clip.isOfReel ? version == reelVersion : version >= clip.since;
}

struct ExpectedTransition {
    const char* className;
    const char* from; ///< null if there is none
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

/// The nested value of a saved project in which objects are numbered anew, depth-first.
nlohmann::json renumbered(const QByteArray& bytes);

} // namespace Tests
