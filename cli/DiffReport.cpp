#include "DiffReport.h"

#include "FileNames.h"
#include "Phrases.h"
#include "Terminal.h"

using Phrases::clipText;
using Phrases::effectText;
using Phrases::inQuotes;
using Phrases::shortText;
using Phrases::timeText;
using Phrases::valueText;
using Reader::Difference;

namespace DiffReport {
namespace {

constexpr std::size_t longestPath = 200;

std::string inputText(const Input& input) {
    return Terminal::escaped(input.name) + " (" + Reader::formName(input.form).toStdString() +
           (input.version ? " of schema version " + std::to_string(*input.version) : "") + ')';
}

std::string clipOf(const Difference& difference) {
    return difference.clip ? clipText(difference.clip->name, difference.clip->start) : "no clip";
}

/// "a -> b"
std::string change(const std::string& before, const std::string& after) {
    return before + " -> " + after;
}

std::string timeOf(const nlohmann::json& place, const char* key) {
    return timeText(place.value(key, 0LL));
}

/// "0:00:04.000 -> 0:00:05.000, track main -> overlay, level 0 -> 1"
std::string moveText(const Difference& difference) {
    const auto& before = difference.before;
    const auto& after = difference.after;
    std::string text;
    const auto add = [&text](const std::string& part) { text += (text.empty() ? "" : ", ") + part; };
    if (before["start"] != after["start"])
        add(change(timeOf(before, "start"), timeOf(after, "start")));
    if (before["track"] != after["track"])
        add("track " + change(before["track"].get<std::string>(), after["track"].get<std::string>()));
    if (before["level"] != after["level"])
        add("level " + change(before["level"].dump(), after["level"].dump()));
    return text.empty() ? "to another track of its kind" : text;
}

/// "0:00:07.000 -> 0:00:05.000 long, start in its source 0:00:00.000 -> 0:00:01.000"
std::string trimText(const Difference& difference) {
    const auto& before = difference.before;
    const auto& after = difference.after;
    std::string text;
    if (before["duration"] != after["duration"])
        text = change(timeOf(before, "duration"), timeOf(after, "duration")) + " long";
    if (before["sourceStart"] != after["sourceStart"])
        text += (text.empty() ? "" : ", ") + std::string("start in its source ") +
                change(timeOf(before, "sourceStart"), timeOf(after, "sourceStart"));
    return text;
}

std::string fieldChange(const Difference& difference) {
    return shortText(difference.field, longestPath) + ": " +
           change(valueText(difference.before), valueText(difference.after));
}

std::string pathChange(const Difference& difference) {
    const auto text = [](const nlohmann::json& path) {
        const auto& name = path.get_ref<const std::string&>();
        return name.empty() ? "none" : shortText(name, longestPath);
    };
    return change(text(difference.before), text(difference.after));
}

/// `Timeline::Object "Holiday" (id 3)`; "the document" for what belongs to no object
std::string objectText(const Difference& difference) {
    const unsigned long long id = difference.idBefore != 0 ? difference.idBefore : difference.idAfter;
    if (id == 0)
        return "the document";
    return Phrases::classText(difference.className) +
           (difference.name.empty() ? "" : ' ' + inQuotes(difference.name)) + " (id " + std::to_string(id) +
           ')';
}

std::string lineOf(const Difference& difference) {
    using Kind = Difference::Kind;
    const std::string effect = effectText(difference.className, difference.name);
    switch (difference.kind) {
    case Kind::TimelineAdded:
        return "timeline added: " + inQuotes(difference.name);
    case Kind::TimelineRemoved:
        return "timeline removed: " + inQuotes(difference.name);
    case Kind::ClipAdded:
        return "added: " + clipOf(difference) + " (" + difference.name + ')';
    case Kind::ClipRemoved:
        return "removed: " + clipOf(difference) + " (" + difference.name + ')';
    case Kind::ClipRenamed:
        return "renamed: " + clipOf(difference) + " is " + valueText(difference.after) + " now";
    case Kind::ClipMoved:
        return "moved: " + clipOf(difference) + ": " + moveText(difference);
    case Kind::ClipTrimmed:
        return "trimmed: " + clipOf(difference) + ": " + trimText(difference);
    case Kind::MediaRelinked:
        return "relinked: " + clipOf(difference) + ": " + pathChange(difference);
    case Kind::TextChanged:
        return "text changed: " + clipOf(difference) + ": " +
               change(valueText(difference.before), valueText(difference.after));
    case Kind::EffectAdded:
        return "effect added: " + clipOf(difference) + ": " + effect;
    case Kind::EffectRemoved:
        return "effect removed: " + clipOf(difference) + ": " + effect;
    case Kind::EffectsReordered:
        return "effects reordered: " + clipOf(difference);
    case Kind::EffectChanged:
        return "effect changed: " + clipOf(difference) + ": " + effect + ' ' + fieldChange(difference);
    case Kind::ClipChanged:
        return "changed: " + clipOf(difference) + ": " + fieldChange(difference);
    case Kind::TransitionAdded:
        return "transition added: " + effect + " at " + clipOf(difference);
    case Kind::TransitionRemoved:
        return "transition removed: " + effect + " at " + clipOf(difference);
    case Kind::TransitionChanged:
        return "transition changed: " + effect + " at " + clipOf(difference) + ": " + fieldChange(difference);
    case Kind::ObjectChanged:
        return "changed: " + objectText(difference) + ": " + fieldChange(difference);
    }
    return {};
}

} // namespace

std::string text(const Result& result) {
    std::string out = inputText(result.before) + " and " + inputText(result.after);
    if (result.comparedAs && (result.before.version != result.after.version))
        out += ", compared as version " + std::to_string(*result.comparedAs);
    out += '\n';
    if (result.differences.empty())
        return out + "  no differences\n";
    for (const Difference& difference : result.differences)
        out += "  " + lineOf(difference) + '\n';
    return out + "  " + Phrases::plural(result.differences.size(), "difference") + '\n';
}

} // namespace DiffReport
