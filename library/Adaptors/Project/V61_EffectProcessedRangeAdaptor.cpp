#include "Adaptors/Project/V61_EffectProcessedRangeAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/FlatEditor.h"
#include "Archive/Internal/Reading.h"

#include <QHash>

using namespace Archive::Internal;

namespace Project {
namespace {

constexpr const char* effectClass = "Effect::Object";
constexpr const char* rangeClass = "Types::Range";

// From 0 to -1, which means the end: the whole clip.
constexpr int rangeFrom = 0;
constexpr int rangeTo = -1;

/// Effects by id; if an id occurs twice, the last one.
QHash<long long, QDomElement> collectEffects(ArchiveEditor& archive) {
    QHash<long long, QDomElement> effects;
    for (const QDomElement& effect : archive.baseParts(effectClass))
        effects[idOf(effect)] = effect;
    return effects;
}

void appendRange(ArchiveEditor& archive, const QDomElement& effect, long long id) {
    const QDomElement range = archive.appendObject(effect, "processedRange", rangeClass, id);
    archive.fields(range).time("from", MTime(rangeFrom)).time("to", MTime(rangeTo));
}

} // namespace

void V61_EffectProcessedRangeAdaptor::convert(ArchiveEditor& archive) {
    const auto effects = collectEffects(archive);
    const auto records = archive.records(); // a snapshot: records of the ranges are added below
    // Quirk: an effect with two records gets two ranges, an effect without a record gets none.
    for (const Record& record : records) {
        const QDomElement effect = effects.value(record.id);
        if (effect.isNull())
            continue;
        const long long id = archive.declare(rangeClass, record.id);
        appendRange(archive, effect, id);
        archive.prependReference(record.data.firstChildElement(Words::refs), id);
    }
}

void V61_EffectProcessedRangeAdaptor::convert(FlatEditor& editor) {
    Serialize::Json::FlatObject& document = editor.document();
    for (const auto& selected : editor.objects(effectClass)) {
        nlohmann::json* range = document.createObject(rangeClass);
        (*range)["from"] = rangeFrom;
        (*range)["to"] = rangeTo;
        (*selected.object)["processedRange"] = document.createRef(range);
    }
}

} // namespace Project
