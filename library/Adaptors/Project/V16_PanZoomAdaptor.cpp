#include "Adaptors/Project/V16_PanZoomAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Envelopes.h"
#include "Archive/Internal/Reading.h"
#include "Archive/Internal/Transforms.h"

#include <algorithm>

using namespace Archive::Internal;
using Stored::V14::Transform;

namespace Project {
namespace {

/// A matrix and its position in the envelope: 0 is the start, 1 the end.
struct KeyValue {
    double step;
    Transform matrix;
};

using KeyValues = std::vector<KeyValue>;

/// All times are in milliseconds.
struct ClipTiming {
    long long duration = 0;
    long long sourcePosition = 0;
    long long sourceDuration = 0;
};

struct KeyValueIds {
    long long keyValue;
    TransformationIds value;
};

/// The matrix that enlarges the rectangle to the whole frame. Quirk: the width is used for both axes, and the
/// vertical centre is half a width above `bottom`; `top` is not read.
Transform frameFilling(const QDomElement& rectangle) {
    const double right = doubleIn(rectangle, "right");
    const double bottom = doubleIn(rectangle, "bottom");
    const double width = right - doubleIn(rectangle, "left");
    const ScaleAndMove placement(width, width, right - width * 0.5 - 0.5, bottom - width * 0.5 - 0.5);
    return placement.inverse(); // the identity if the width is 0
}

/// Inserts a key value by step. Quirk: it is placed before those of the same step.
void insert(KeyValues& keyValues, const KeyValue& keyValue) {
    const auto place = std::ranges::lower_bound(keyValues, keyValue.step, {}, &KeyValue::step);
    keyValues.insert(place, keyValue);
}

/// Quirk: if there are no ramps, there are no key values, and the rectangle is lost: the clip shows the whole
/// frame.
KeyValues zoomKeyValues(const QDomElement& zoom) {
    const double partIn = doubleIn(zoom, "partIn");
    const double partOut = doubleIn(zoom, "partOut");
    const Transform matrix = frameFilling(childOf(zoom, "rect"));
    KeyValues keyValues;
    if (partIn > 0.0) {
        insert(keyValues, {0.0, identityTransform});
        insert(keyValues, {partIn, matrix});
    }
    if (partOut > 0.0) {
        insert(keyValues, {1.0 - partOut, matrix});
        insert(keyValues, {1.0, identityTransform});
    }
    return keyValues;
}

KeyValues panAndZoomKeyValues(const QDomElement& panAndZoom) {
    KeyValues keyValues;
    insert(keyValues, {0.0, frameFilling(childOf(panAndZoom, "rectIn"))});
    insert(keyValues, {1.0, frameFilling(childOf(panAndZoom, "rectOut"))});
    return keyValues;
}

/// Converts steps relative to the clip, as in effects, to steps relative to the clip's source, as in
/// envelopes. Quirk: if the source has no duration, the steps are infinite or NaN.
KeyValues retimed(const KeyValues& keyValues, const ClipTiming& timing) {
    const auto sourceDuration = static_cast<double>(timing.sourceDuration);
    const double factor = static_cast<double>(timing.duration) / sourceDuration;
    const double start = static_cast<double>(timing.sourcePosition) / sourceDuration;
    KeyValues result;
    for (const KeyValue& keyValue : keyValues)
        insert(result, {keyValue.step * factor + start, keyValue.matrix});
    return result;
}

QList<long long> targetsOf(const QDomElement& entry) {
    QList<long long> targets;
    for (const QDomElement& data : children(entry, Words::Data))
        targets.append(int64Of(data));
    return targets;
}

class EnvelopeConversion {
public:
    explicit EnvelopeConversion(ArchiveEditor& archive) : m_archive(archive) {}

    void collectEffects();
    void collectTimings();
    void removeEffects();
    void convertClip(const QDomElement& clip);

private:
    void collectEffect(const QDomElement& effect, const KeyValues& keyValues);
    long long convertibleEffect(const QDomElement& effects) const;
    long long appendCropEnvelope(const KeyValues& keyValues);
    void appendKeyValue(const QDomElement& list, const KeyValue& keyValue, const KeyValueIds& ids);
    void declareEnvelope(long long id, const std::vector<KeyValueIds>& keyValues,
                         const TransformationIds& defaultValue);

    ArchiveEditor& m_archive;
    Elements m_effects;
    QSet<long long> m_staleIds;              ///< ids of the effects and of the objects that they refer to
    QHash<long long, KeyValues> m_keyValues; ///< by effect
    QHash<long long, ClipTiming> m_timings;  ///< by clip
};

void EnvelopeConversion::collectEffects() {
    for (const QDomElement& effect : m_archive.rootObjects("Effect::Zoom"))
        collectEffect(effect, zoomKeyValues(effect));
    for (const QDomElement& effect : m_archive.rootObjects("Effect::PanAndZoom"))
        collectEffect(effect, panAndZoomKeyValues(effect));
    collectReferenced(m_archive.records(), m_staleIds, targetsOf);
    if (!m_effects.empty())
        m_archive.startIds(); // so that ids of removed objects are not used again
}

void EnvelopeConversion::collectEffect(const QDomElement& effect, const KeyValues& keyValues) {
    m_effects.push_back(effect);
    m_staleIds.insert(idOf(effect));
    m_keyValues[idOf(effect)] = keyValues;
}

void EnvelopeConversion::collectTimings() {
    for (const QDomElement& timeline : m_archive.rootObjects("Timeline::Object")) {
        // Quirk: items at any depth are read, also those of an array in a timing.
        for (const QDomElement& item : elements(childOf(timeline, "clips"), Words::Item)) {
            const QDomElement timing = item.firstChildElement(Words::Value);
            m_timings[int64In(item, Words::Key)] = {int64In(timing, "duration"),
                                                    int64In(timing, "sourcePosition"),
                                                    int64In(timing, "sourceDuration")};
        }
    }
}

void EnvelopeConversion::removeEffects() {
    m_archive.undeclare(m_staleIds);
    for (const QDomElement& effect : m_effects)
        m_archive.removeFrom(m_archive.root(), effect);
}

void EnvelopeConversion::convertClip(const QDomElement& clip) {
    const QDomElement effects = childOf(clip, "effects");
    const long long effectId = convertibleEffect(effects);
    if (effectId == 0)
        return;
    // Quirk: the entry of a second zoom stays, although its object is removed.
    m_archive.removeItems(effects, [&](QDomElement& data) { return int64Of(data) == effectId; });
    // Quirk: the new steps are stored for the effect. A second clip that shares it converts them once more.
    KeyValues& keyValues = m_keyValues[effectId];
    keyValues = retimed(keyValues, m_timings.value(idOf(clip)));
    const long long envelopeId = appendCropEnvelope(keyValues);
    m_archive.fields(clip).reference("cropEnvelope", envelopeId);
}

/// The id in the first entry that refers to a zoom; 0 if there is none.
long long EnvelopeConversion::convertibleEffect(const QDomElement& effects) const {
    for (const QDomElement& item : children(effects, Words::Item)) {
        const long long id = int64In(item, Words::Data);
        if (m_keyValues.contains(id))
            return id;
    }
    return 0;
}

long long EnvelopeConversion::appendCropEnvelope(const KeyValues& keyValues) {
    const long long id = m_archive.nextId();
    std::vector<KeyValueIds> keyValueIds;
    for (std::size_t count = 0; count < keyValues.size(); ++count)
        keyValueIds.push_back({m_archive.nextId(), {m_archive.nextId(), m_archive.nextId()}});
    const TransformationIds defaultValue{m_archive.nextId(), m_archive.nextId()};

    const QDomElement list =
        appendEnvelope(m_archive, m_archive.root(), Words::RootObject, id, defaultValue, Aspect::Present);
    for (std::size_t number = 0; number < keyValues.size(); ++number)
        appendKeyValue(list, keyValues[number], keyValueIds[number]);
    declareEnvelope(id, keyValueIds, defaultValue);
    return id;
}

void EnvelopeConversion::appendKeyValue(const QDomElement& list, const KeyValue& keyValue,
                                        const KeyValueIds& ids) {
    const QDomElement data = m_archive.appendObject(m_archive.appendItem(list), Words::Data,
                                                    "AnimationTransformationKeyValue", ids.keyValue);
    m_archive.fields(data).decimal("step", keyValue.step);
    appendTransformation(m_archive, data, "value", keyValue.matrix, ids.value, Aspect::Present);
}

void EnvelopeConversion::declareEnvelope(long long id, const std::vector<KeyValueIds>& keyValues,
                                         const TransformationIds& defaultValue) {
    declareTransformation(m_archive, defaultValue, id);
    QList<long long> refs;
    for (const KeyValueIds& ids : keyValues)
        refs.append(ids.keyValue);
    refs.append(defaultValue.object);
    m_archive.declareAs(id, "TransformationEnvelope", 0, refs);
    for (const KeyValueIds& ids : keyValues) {
        m_archive.declareAs(ids.keyValue, "AnimationTransformationKeyValue", id, {ids.value.object});
        declareTransformation(m_archive, ids.value, ids.keyValue);
    }
}

} // namespace

void V16_PanZoomAdaptor::convert(ArchiveEditor& archive) {
    // Quirk: the records are those in the first descendant of that name, not in the first child.
    const QDomElement predeclarator = archive.lastRootObject(Words::Predeclarator);
    archive.setPredeclarations(firstDescendant(predeclarator, Words::predeclarations));
    const Elements clips = archive.rootObjects("Timeline::Clip");
    EnvelopeConversion conversion(archive);
    conversion.collectEffects();
    conversion.collectTimings();
    conversion.removeEffects();
    for (const QDomElement& clip : clips)
        conversion.convertClip(clip);
}

} // namespace Project
