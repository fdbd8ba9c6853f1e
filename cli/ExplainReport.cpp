#include "ExplainReport.h"

#include "JsonReport.h"
#include "Phrases.h"
#include "Summary.h"

#include <algorithm>

using Phrases::valueText;
using Reader::FieldChange;
using Reader::StepEffect;

namespace ExplainReport {
namespace {

/// "6 Timeline::Clip, 2 Effect::Blur"
std::string countsText(const Reader::ObjectCounts& counts) {
    std::string text;
    for (const auto& [className, count] : counts)
        text += (text.empty() ? "" : ", ") + std::to_string(count) + ' ' + Phrases::classText(className);
    return text;
}

std::string exampleText(const FieldChange& change, const FieldChange::Example& example) {
    std::string text;
    switch (change.kind) {
    case FieldChange::Kind::Added:
        text = valueText(example.after);
        break;
    case FieldChange::Kind::Removed:
        text = valueText(example.before);
        break;
    case FieldChange::Kind::Changed:
        text = valueText(example.before) + " -> " + valueText(example.after);
        break;
    }
    const std::string object = "id " + std::to_string(example.id);
    return text + " (" +
           (example.clip == 0 ? object : "clip " + Phrases::inQuotes(example.clipName) + ", " + object) + ')';
}

std::string fieldText(const FieldChange& change) {
    std::string text = "    " + Phrases::classText(change.className) + '.' +
                       Phrases::shortText(change.field) + ' ' + std::string(nameOf(change.kind)) + " in " +
                       Phrases::plural(change.count, "object") + '\n';
    for (const std::string& example : examplesOf(change))
        text += "      " + example + '\n';
    return text;
}

std::string stepText(const StepEffect& step) {
    std::string text = '\n' + Terminal::escaped(step.className) + ": " + step.summary + '\n';
    if (step.changedNothing())
        return text + "  changed nothing\n";
    if (!step.added.empty())
        text += "  added:   " + countsText(step.added) + '\n';
    if (!step.removed.empty())
        text += "  removed: " + countsText(step.removed) + '\n';
    if (!step.changed.empty())
        text += "  changed: " + countsText(step.changed) + '\n';
    for (const FieldChange& change : step.fields)
        text += fieldText(change);
    return text;
}

} // namespace

std::vector<std::string> examplesOf(const FieldChange& change) {
    const auto isSame = [&](const FieldChange::Example& example) {
        return example.before == change.examples.front().before &&
               example.after == change.examples.front().after;
    };
    const bool areSame = std::all_of(change.examples.begin(), change.examples.end(), isSame);
    std::vector<std::string> texts;
    for (const FieldChange::Example& example : change.examples) {
        texts.push_back(exampleText(change, example));
        if (areSame)
            break;
    }
    return texts;
}

std::string text(const Result& result, const Terminal::Colours& colours) {
    const Reader::MigrationReport& report = result.report;
    std::string out = Terminal::escaped(result.input) + ": " +
                      Reader::formName(report.formBefore).toStdString() + " of schema version " +
                      std::to_string(report.from) + '\n' + Texts::opening(report, colours) +
                      Texts::repairs(report.repairs);
    std::size_t unchanged = 0;
    for (const StepEffect& step : result.steps) {
        if (step.changedNothing() && !result.isOneStep)
            ++unchanged;
        else
            out += stepText(step);
    }
    if (!result.isOneStep)
        out += '\n' + Phrases::plural(unchanged, unchanged < result.steps.size() ? "other step" : "step") +
               " changed nothing\n";
    return out;
}

} // namespace ExplainReport
