#include "support/Film.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

using nlohmann::json;

namespace Tests {
namespace {

/// The classes of a clip's effects that a sample of that version has.
Strings effectsSince(const ExpectedClip& clip, int version) {
    Strings effects;
    for (const std::string& name : clip.effects) {
        const bool isLate = (name == "Lut" && version < sinceCollections) ||
                            ((name == "AudioNoiseGate" || name == "AudioPhone" || name == "AudioPitch") &&
                             version < sinceQuizzes && !clip.isOfReel);
        if (!isLate)
            effects.push_back(name.empty() ? name : "Effect::" + name);
    }
    return effects;
}

/// The type of a clip in a sample of that version: before there were scenes, a scene was a video.
int typeSince(const ExpectedClip& clip, int version) {
    if (clip.type == 0)
        return version < sinceScenes ? 1 : 64;
    return clip.type;
}

Strings effectsOf(const Project& project, const json& clip) {
    Strings names;
    for (const json& effect : clip.at("effects"))
        names.push_back(Project::classOf(project.follow(effect)));
    return names;
}

/// The nested value of a saved project in which objects are numbered anew, depth-first.
class Renumbered {
public:
    static json of(const QByteArray& bytes) {
        json value = json::parse(bytes.toStdString());
        Renumbered numbers;
        numbers.count(value);
        numbers.replace(value);
        return value;
    }

private:
    static constexpr const char* reference = "@meta_reference";

    void count(json& value) {
        if (!value.is_structured())
            return;
        if (value.is_object() && value.contains("@meta")) {
            json& id = value["@meta"]["object_id"];
            id = m_numbers.emplace(id.get<unsigned long long>(), m_numbers.size() + 1).first->second;
        }
        for (json& member : value)
            count(member);
    }
    void replace(json& value) {
        if (!value.is_structured())
            return;
        if (value.is_object() && value.contains(reference)) {
            value[reference] = m_numbers.at(value[reference].get<unsigned long long>());
            return;
        }
        for (json& member : value)
            replace(member);
    }

    std::map<unsigned long long, unsigned long long> m_numbers;
};

} // namespace

void expectClips(const Project& project, const ExpectedTimeline& expected, int version) {
    const json& timeline = project.timeline(expected.name);
    std::vector<unsigned long long> lanes;
    std::vector<int> types;
    for (const json& track : timeline.at("tracks")) {
        lanes.push_back(Serialize::Json::getAnyObjectId(track).value());
        types.push_back(project.at(lanes.back()).at("type").get<int>());
    }
    EXPECT_EQ(types, expected.lanes);
    ASSERT_EQ(std::set(lanes.begin(), lanes.end()).size(), lanes.size());

    std::map<std::string, const json*> entries;
    for (const json& entry : timeline.at("clips")) {
        const std::string name = project.follow(entry, "clip").at("name");
        EXPECT_TRUE(entries.emplace(name, &entry).second) << name << " is there twice";
    }
    std::size_t count = 0;
    for (const ExpectedClip& clip : expected.clips) {
        if (!isThere(clip, version))
            continue;
        ++count;
        SCOPED_TRACE(clip.name);
        const auto entry = entries.find(clip.name);
        if (entry == entries.end()) {
            ADD_FAILURE() << "the clip is lost";
            continue;
        }
        const json& object = project.follow(*entry->second, "clip");
        const json& timing = project.follow(*entry->second, "timing");
        EXPECT_EQ(object.at("type"), typeSince(clip, version));
        EXPECT_EQ(timing.at("timestamp"), clip.timestamp);
        EXPECT_EQ(timing.at("duration"), clip.duration);
        const auto lane = std::find(lanes.begin(), lanes.end(),
                                    Serialize::Json::getAnyObjectId(timing.at("track")).value_or(0));
        EXPECT_EQ(static_cast<std::size_t>(lane - lanes.begin()), clip.lane);
        EXPECT_EQ(effectsOf(project, object), effectsSince(clip, version));
        EXPECT_EQ(Serialize::Json::getAnyObjectId(object.at("timeline")),
                  Serialize::Json::getObjectId(timeline));
    }
    EXPECT_EQ(entries.size(), count);
}

void expectTransitions(const Project& project, const ExpectedTimeline& expected, int version) {
    const auto nameOf = [&](const json& clip) -> std::string {
        return clip.is_null() ? "none" : project.follow(clip).at("name").get<std::string>();
    };
    Strings found;
    for (const json& entry : project.timeline(expected.name).at("transitions"))
        found.push_back(Project::classOf(project.follow(entry, "transition")) + ' ' +
                        nameOf(entry.at("clipFrom")) + " to " + nameOf(entry.at("clipTo")));
    Strings wanted;
    for (const ExpectedTransition& transition : expected.transitions) {
        if (version >= transition.since)
            wanted.push_back(std::string(transition.className) + ' ' +
                             (transition.from ? transition.from : "none") + " to " +
                             (transition.to ? transition.to : "none"));
    }
    EXPECT_EQ(found, wanted);
}

const json& clipNamed(const Project& project, const std::string& name) {
    for (const json* clip : project.all("Timeline::Clip")) {
        if (clip->at("name") == name)
            return *clip;
    }
    throw std::runtime_error("no clip " + name);
}

const json& timingOf(const Project& project, const std::string& timeline, const std::string& name) {
    for (const json& entry : project.timeline(timeline).at("clips")) {
        if (project.follow(entry, "clip").at("name") == name)
            return project.follow(entry, "timing");
    }
    throw std::runtime_error("no timing of " + name);
}

std::int64_t lengthOf(const Project& project, const std::string& timeline) {
    std::int64_t length = 0;
    for (const json& entry : project.timeline(timeline).at("clips")) {
        const json& timing = project.follow(entry, "timing");
        length = std::max(length, timing.at("timestamp").get<std::int64_t>() +
                                      timing.at("duration").get<std::int64_t>());
    }
    return length;
}

Strings textsOf(const Project& project, const json& clip) {
    Strings texts;
    for (const json& item : project.follow(clip, "overlay").at("items")) {
        const std::string encoded = project.follow(item).at("encodedText");
        texts.push_back(QByteArray::fromBase64(QByteArray::fromStdString(encoded)).toStdString());
    }
    return texts;
}

json renumbered(const QByteArray& bytes) {
    return Renumbered::of(bytes);
}

} // namespace Tests
