#pragma once

#include "Reader/MigrationOptions.h"
#include "Reader/ObjectGraph.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace Reader {

/// What one step changed in a field of all objects of a class.
struct FieldChange {
    enum class Kind { Added, Removed, Changed };

    struct Example {
        unsigned long long id;
        unsigned long long clip = 0; ///< the clip that the object belongs to; 0 for none
        std::string clipName = {};
        nlohmann::json before = {}; ///< of lists that changed only the items that are not in both
        nlohmann::json after = {};
    };

    Kind kind;
    std::string className;
    std::string field;
    std::size_t count = 0;         ///< of objects
    std::vector<Example> examples; ///< of the first few
};

/// The kind as a word for programs, such as "added".
std::string_view nameOf(FieldChange::Kind kind);

/// What one step did to a project.
struct StepEffect {
    std::string className; ///< of the adaptor
    std::string summary;   ///< its one sentence
    ObjectCounts added;    ///< objects by class
    ObjectCounts removed;
    ObjectCounts changed;
    std::vector<FieldChange> fields; ///< of objects that were there before, by class and name

    bool changedNothing() const { return added.empty() && removed.empty() && changed.empty(); }
};

/// Compares the project before and after each step. MigrationOptions::watch calls note(). Only what references lead to
/// from the root object counts.
///
/// Threads: belongs to the thread of its migration.
class Explanation {
public:
    /// With `clip` only what belongs to the clips of that name or id counts; empty for everything.
    explicit Explanation(std::string clip = {}) : m_clip(std::move(clip)) {}

    void note(const MigrationPart& part, const Document& document);

    /// All steps that ran, in order.
    const std::vector<StepEffect>& steps() const { return m_steps; }
    /// Whether the project had such a clip at any time.
    bool hasFoundClip() const { return m_hasFoundClip; }

private:
    /// A project with the clip of each object.
    struct State {
        ObjectGraph objects;
        std::unordered_map<unsigned long long, unsigned long long> clips;
    };

    State stateOf(const Document& document);
    bool isWanted(unsigned long long id, const State& after) const;
    bool isWantedClip(unsigned long long id, const ObjectGraph& graph) const;
    StepEffect compare(const State& after) const;

    std::string m_clip;
    bool m_hasFoundClip = false;
    State m_last;
    std::vector<StepEffect> m_steps;
};

} // namespace Reader
