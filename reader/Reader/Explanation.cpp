#include "Reader/Explanation.h"

#include "Archive/Internal/JsonValues.h"
#include "Reader/AdaptorTable.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <utility>

using nlohmann::json;

namespace Reader {
namespace {

constexpr std::size_t mostExamples = 3;

std::string nameOfClip(unsigned long long id, const ObjectGraph& graph) {
    const GraphObject* clip = graph.find(id);
    if (!clip || !clip->fields.contains("name") || !clip->fields["name"].is_string())
        return {};
    return clip->fields["name"].get<std::string>();
}

/// The sentence of an adaptor; the conversion is in no table.
std::string summaryOf(const std::string& className) {
    const AdaptorRow* row = findAdaptor(className);
    return row ? std::string(row->summary) : "Converts the archive to JSON.";
}

/// Collects what changed in the fields of objects, by class and field.
class FieldChanges {
public:
    using Example = FieldChange::Example;

    void add(FieldChange::Kind kind, const std::string& className, const std::string& field,
             const Example& object, json before, json after) {
        FieldChange& change = m_changes[{className, field, kind}];
        if (change.count++ >= mostExamples)
            return;
        change.examples.push_back(
            {object.id, object.clip, object.clipName, std::move(before), std::move(after)});
    }

    std::vector<FieldChange> take() {
        std::vector<FieldChange> result;
        for (auto& [key, change] : m_changes) {
            std::tie(change.className, change.field, change.kind) = key;
            result.push_back(std::move(change));
        }
        return result;
    }

private:
    std::map<std::tuple<std::string, std::string, FieldChange::Kind>, FieldChange> m_changes;
};

/// Both values as they are shown: of two lists of objects only the items that are not in both.
std::pair<json, json> shownChange(const json& before, const ObjectGraph& graphBefore, const json& after,
                                  const ObjectGraph& graphAfter) {
    const auto holdsObjects = [](const json& value) {
        return value.is_array() && !value.empty() && value.front().is_object();
    };
    if (!holdsObjects(before) || !holdsObjects(after))
        return {shown(before, graphBefore), shown(after, graphAfter)};
    const auto textOf = [](const json& item, const ObjectGraph& graph) {
        return shown(item, graph).dump(-1, ' ', false, json::error_handler_t::replace);
    };
    std::map<std::string, int> surplus; // of items before over those after
    for (const json& item : before)
        ++surplus[textOf(item, graphBefore)];
    for (const json& item : after)
        --surplus[textOf(item, graphAfter)];
    json removed = json::array();
    json added = json::array();
    for (const json& item : before) {
        if (int& count = surplus[textOf(item, graphBefore)]; count > 0 && count-- > 0)
            removed.push_back(item);
    }
    for (const json& item : after) {
        if (int& count = surplus[textOf(item, graphAfter)]; count < 0 && count++ < 0)
            added.push_back(item);
    }
    if (removed.empty() && added.empty())
        return {shown(before, graphBefore), shown(after, graphAfter)}; // another order
    return {shown(removed, graphBefore), shown(added, graphAfter)};
}

/// Adds what is different in an object, and gives whether anything is.
bool compareFields(const GraphObject& before, const ObjectGraph& graphBefore, const GraphObject& after,
                   const ObjectGraph& graphAfter, const FieldChange::Example& example,
                   FieldChanges& changes) {
    bool isChanged = before.className != after.className;
    if (isChanged)
        changes.add(FieldChange::Kind::Changed, after.className, "class", example, before.className,
                    after.className);
    for (const auto& [key, value] : before.fields.items()) {
        const auto other = after.fields.find(key);
        if (other != after.fields.end() && Archive::Internal::areEqual(value, *other))
            continue;
        isChanged = true;
        if (other == after.fields.end())
            changes.add(FieldChange::Kind::Removed, after.className, key, example, shown(value, graphBefore),
                        {});
        else {
            auto [valueBefore, valueAfter] = shownChange(value, graphBefore, *other, graphAfter);
            changes.add(FieldChange::Kind::Changed, after.className, key, example, std::move(valueBefore),
                        std::move(valueAfter));
        }
    }
    for (const auto& [key, value] : after.fields.items()) {
        if (before.fields.contains(key))
            continue;
        isChanged = true;
        changes.add(FieldChange::Kind::Added, after.className, key, example, {}, shown(value, graphAfter));
    }
    return isChanged;
}

} // namespace

std::string_view nameOf(FieldChange::Kind kind) {
    constexpr std::array<std::string_view, 3> names = {"added", "removed", "changed"};
    return names[static_cast<std::size_t>(kind)];
}

void Explanation::note(const MigrationPart& part, const Document& document) {
    if (part.kind == MigrationPart::Kind::Comparison)
        return;
    State after = stateOf(document);
    if (part.kind == MigrationPart::Kind::Adaptor) {
        StepEffect effect = compare(after);
        effect.className = part.name;
        effect.summary = summaryOf(part.name);
        m_steps.push_back(std::move(effect));
    }
    m_last = std::move(after);
}

Explanation::State Explanation::stateOf(const Document& document) {
    State state;
    state.objects = reachable(readObjects(document));
    state.clips = clipsOfObjects(state.objects);
    for (const auto& [id, object] : state.objects.objects)
        m_hasFoundClip =
            m_hasFoundClip || (object.className == "Timeline::Clip" && isWantedClip(id, state.objects));
    return state;
}

bool Explanation::isWantedClip(unsigned long long id, const ObjectGraph& graph) const {
    return std::to_string(id) == m_clip || nameOfClip(id, graph) == m_clip;
}

bool Explanation::isWanted(unsigned long long id, const State& after) const {
    if (m_clip.empty())
        return true;
    const auto isOwn = [&](const State& state) {
        const auto clip = state.clips.find(id);
        return clip != state.clips.end() && isWantedClip(clip->second, state.objects);
    };
    return isOwn(m_last) || isOwn(after);
}

StepEffect Explanation::compare(const State& after) const {
    StepEffect effect;
    FieldChanges changes;
    for (const auto& [id, object] : m_last.objects.objects) {
        if (!after.objects.find(id) && isWanted(id, after))
            ++effect.removed[object.className];
    }
    for (const auto& [id, object] : after.objects.objects) {
        if (!isWanted(id, after))
            continue;
        const GraphObject* before = m_last.objects.find(id);
        if (!before) {
            ++effect.added[object.className];
            continue;
        }
        const auto clip = after.clips.find(id);
        FieldChange::Example example{id};
        if (clip != after.clips.end()) {
            example.clip = clip->second;
            example.clipName = nameOfClip(clip->second, after.objects);
        }
        if (compareFields(*before, m_last.objects, object, after.objects, example, changes))
            ++effect.changed[object.className];
    }
    effect.fields = changes.take();
    return effect;
}

} // namespace Reader
