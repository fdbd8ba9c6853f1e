#include "Adaptors/Project/V16_PanZoomAdaptor.h"

#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/RootObjects.h"
#include "Archive/Internal/StoredDouble.h"
#include "Archive/Internal/Transforms.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <QSet>
#include <QTransform>

#include <glog/logging.h>

#include <algorithm>
#include <deque>
#include <map>
#include <vector>

namespace Words = Archive::Words;

using Archive::Internal::doubleIn;
using Archive::Internal::Elements;
using Archive::Internal::identityTransform;
using Archive::Internal::idOf;
using Stored::V14::Transform;

namespace Project {
namespace {

constexpr int opaque = 100;

/// A matrix and where it stands on the envelope, from 0 to 1.
struct KeyValue {
    double step = 0.0;
    Transform matrix;
    int opacity = opaque;
};

using KeyValues = std::deque<KeyValue>;

struct ClipTiming {
    MTime duration;
    MTime sourcePosition;
    MTime sourceDuration;
};

struct TransformationIds {
    long long value;
    long long matrix;
};

struct KeyValueIds {
    long long keyValue;
    TransformationIds transformation;
};

long long numberIn(const QDomElement& e) {
    return Archive::extractValue(e.attribute(Words::value), 0LL);
}

MTime timeIn(const QDomElement& parent, const QString& name) {
    return Archive::extractValue(Archive::valueOf(parent, name), MTime(0));
}

/// The matrix that brings the rectangle up to fill the frame.
Transform frameFilling(const QDomElement& rectangle) {
    const double right = doubleIn(rectangle, QStringLiteral("right"));
    const double bottom = doubleIn(rectangle, QStringLiteral("bottom"));
    // The width serves for both axes, and the vertical centre lies half a width above `bottom`: `top` plays no part.
    const double width = right - doubleIn(rectangle, QStringLiteral("left"));
    const QTransform scale = QTransform::fromScale(width, width);
    const QTransform move = QTransform::fromTranslate(right - width * 0.5 - 0.5, bottom - width * 0.5 - 0.5);
    // No test of invertibility: a rectangle without width becomes the identity.
    return Archive::Internal::toStored((scale * move).inverted());
}

/// Sorted by step; a key value goes ahead of those of the same step.
void insert(KeyValues& keyValues, const KeyValue& keyValue) {
    const auto place =
        std::lower_bound(keyValues.begin(), keyValues.end(), keyValue.step,
                         [](const KeyValue& present, double step) { return present.step < step; });
    keyValues.insert(place, keyValue);
}

KeyValues zoomKeyValues(const QDomElement& zoom) {
    const double partIn = doubleIn(zoom, QStringLiteral("partIn"));
    const double partOut = doubleIn(zoom, QStringLiteral("partOut"));
    const Transform matrix = frameFilling(zoom.firstChildElement(QStringLiteral("rect")));
    // Without ramps the envelope stays empty and the rectangle is lost: the clip shows the whole frame.
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
    insert(keyValues, {0.0, frameFilling(panAndZoom.firstChildElement(QStringLiteral("rectIn")))});
    insert(keyValues, {1.0, frameFilling(panAndZoom.firstChildElement(QStringLiteral("rectOut")))});
    return keyValues;
}

/// An effect ran over its clip, an envelope runs over the clip's source.
KeyValues retimed(const KeyValues& keyValues, const ClipTiming& timing) {
    const auto sourceDuration = static_cast<double>(timing.sourceDuration.count());
    // No test of the source's duration: without one the steps become infinite or undefined.
    const double factor = static_cast<double>(timing.duration.count()) / sourceDuration;
    const double start = static_cast<double>(timing.sourcePosition.count()) / sourceDuration;
    KeyValues result;
    for (KeyValue keyValue : keyValues) {
        keyValue.step = keyValue.step * factor + start;
        insert(result, keyValue);
    }
    return result;
}

class Impl {
public:
    explicit Impl(QDomDocument& document) : m_document(document), m_ids(document) {}

    bool collect();
    void removeEffects();
    void convertClips();

private:
    void collectObjects();
    void collectTimings(const QDomElement& timeline);
    void collectStaleIds();
    void prepareKeyValues();

    void convert(QDomElement& clip);
    long long convertibleEffect(const QDomElement& effects) const;
    long long addEnvelope(const KeyValues& keyValues);
    QDomElement createKeyValue(const KeyValue& keyValue, const KeyValueIds& ids);
    QDomElement createTransformation(const QString& name, const Transform& matrix, int opacity,
                                     const TransformationIds& ids);
    void predeclareEnvelope(long long id, const std::vector<KeyValueIds>& keyValues,
                            const TransformationIds& defaultValue);
    void predeclareTransformation(const TransformationIds& ids, long long parent);
    void predeclare(const QString& typeName, long long id, long long parent, const QList<long long>& refs);

    QDomDocument& m_document;
    Elements m_clips;
    QDomElement m_archive;
    QDomElement m_predeclarations;
    Elements m_zoomEffects;
    Elements m_panAndZoomEffects;
    QSet<long long> m_staleIds;
    Archive::Internal::ObjectIds m_ids;
    std::map<long long, KeyValues> m_keyValuesByEffect;
    std::map<long long, ClipTiming> m_timingByClip;
};

bool Impl::collect() {
    m_archive = Archive::Internal::soleArchive(m_document);
    if (m_archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return false;
    }
    collectObjects();
    collectStaleIds();
    prepareKeyValues();
    if (!m_keyValuesByEffect.empty())
        m_ids.greatest(); // the ids of the objects that are about to go count as well
    return true;
}

void Impl::collectObjects() {
    for (const auto& [object, type] : Archive::Internal::typedElements(m_archive, Words::RootObject)) {
        if (type == Words::Predeclarator)
            m_predeclarations = Archive::Internal::firstDescendant(object, Words::predeclarations);
        else if (type == QLatin1String("Effect::Zoom"))
            m_zoomEffects.push_back(object);
        else if (type == QLatin1String("Effect::PanAndZoom"))
            m_panAndZoomEffects.push_back(object);
        else if (type == QLatin1String("Timeline::Clip"))
            m_clips.push_back(object);
        else if (type == QLatin1String("Timeline::Object"))
            collectTimings(object);
    }
}

void Impl::collectTimings(const QDomElement& timeline) {
    // Items of all depths, also those of an array within a timing.
    const QDomElement clips = timeline.firstChildElement(QStringLiteral("clips"));
    for (const QDomElement& item : Archive::Internal::elements(clips, Words::Item)) {
        const QDomElement timing = item.firstChildElement(Words::Value);
        m_timingByClip[numberIn(item.firstChildElement(Words::Key))] = {
            timeIn(timing, QStringLiteral("duration")), timeIn(timing, QStringLiteral("sourcePosition")),
            timeIn(timing, QStringLiteral("sourceDuration"))};
    }
}

void Impl::collectStaleIds() {
    for (const QDomElement& effect : m_zoomEffects)
        m_staleIds.insert(idOf(effect));
    for (const QDomElement& effect : m_panAndZoomEffects)
        m_staleIds.insert(idOf(effect));
    // One pass forward: of an object referred to whose record stands before the reference, nothing more is taken.
    const auto records = Archive::Internal::recordsOf(m_predeclarations);
    for (const auto& record : *records) {
        if (!m_staleIds.contains(record.id))
            continue;
        for (const QDomElement& entry :
             Archive::Internal::children(record.data.firstChildElement(Words::refs), Words::Item)) {
            for (const QDomElement& target : Archive::Internal::children(entry, Words::Data))
                m_staleIds.insert(numberIn(target));
        }
    }
}

void Impl::prepareKeyValues() {
    for (const QDomElement& effect : m_zoomEffects)
        m_keyValuesByEffect[idOf(effect)] = zoomKeyValues(effect);
    for (const QDomElement& effect : m_panAndZoomEffects)
        m_keyValuesByEffect[idOf(effect)] = panAndZoomKeyValues(effect);
}

void Impl::removeEffects() {
    Archive::Internal::removePredeclares(m_predeclarations, m_staleIds);
    for (const QDomElement& effect : m_zoomEffects)
        Archive::Internal::removeChild(m_archive, effect);
    for (const QDomElement& effect : m_panAndZoomEffects)
        Archive::Internal::removeChild(m_archive, effect);
}

void Impl::convertClips() {
    for (QDomElement& clip : m_clips)
        convert(clip);
}

void Impl::convert(QDomElement& clip) {
    QDomElement effects = clip.firstChildElement(QStringLiteral("effects"));
    const long long id = convertibleEffect(effects);
    if (id == 0)
        return;
    // Only this one: the entry of a second zoom stays, although its object has gone.
    Archive::removeItemsFromList(effects, [id](QDomElement& data) { return numberIn(data) == id; });
    const auto timing = m_timingByClip.find(idOf(clip));
    // Kept with the effect: a second clip that shares it times the new steps once more.
    KeyValues& keyValues = m_keyValuesByEffect[id];
    keyValues = retimed(keyValues, timing == m_timingByClip.end() ? ClipTiming() : timing->second);
    clip.appendChild(
        Archive::createObjectRef(m_document, QStringLiteral("cropEnvelope"), addEnvelope(keyValues)));
}

/// The first entry that refers to a prepared effect decides alone; 0 where there is none or its id is 0.
long long Impl::convertibleEffect(const QDomElement& effects) const {
    for (const QDomElement& item : Archive::Internal::children(effects, Words::Item)) {
        const long long id = numberIn(item.firstChildElement(Words::Data));
        if (m_keyValuesByEffect.count(id) != 0)
            return id;
    }
    return 0;
}

long long Impl::addEnvelope(const KeyValues& keyValues) {
    const long long id = m_ids.next();
    QDomElement list = Archive::createArray(m_document, QStringLiteral("keyValues"), 0);
    std::vector<KeyValueIds> keyValueIds;
    for (const KeyValue& keyValue : keyValues) {
        keyValueIds.push_back({m_ids.next(), {m_ids.next(), m_ids.next()}});
        Archive::appendArrayElement(m_document, list)
            .appendChild(createKeyValue(keyValue, keyValueIds.back()));
    }
    const TransformationIds defaultIds = {m_ids.next(), m_ids.next()};
    QDomElement envelope =
        Archive::createObject(m_document, Words::RootObject, QStringLiteral("TransformationEnvelope"), id);
    envelope.appendChild(
        createTransformation(QStringLiteral("defaultValue"), identityTransform, opaque, defaultIds));
    envelope.appendChild(list);
    m_archive.appendChild(envelope);
    predeclareEnvelope(id, keyValueIds, defaultIds);
    return id;
}

QDomElement Impl::createKeyValue(const KeyValue& keyValue, const KeyValueIds& ids) {
    QDomElement data = Archive::createObject(m_document, Words::Data,
                                             QStringLiteral("AnimationTransformationKeyValue"), ids.keyValue);
    // Four decimals, as the matrices have them.
    QDomElement step = Archive::createTypeValue(m_document, QStringLiteral("step"), QStringLiteral("double"),
                                                QString::number(keyValue.step, 'f', 4));
    step.setAttribute(Words::binaryData, Archive::serializeValue(keyValue.step));
    data.appendChild(step);
    data.appendChild(
        createTransformation(QStringLiteral("value"), keyValue.matrix, keyValue.opacity, ids.transformation));
    return data;
}

QDomElement Impl::createTransformation(const QString& name, const Transform& matrix, int opacity,
                                       const TransformationIds& ids) {
    QDomElement object =
        Archive::createObject(m_document, name, QStringLiteral("Transformation::Object"), ids.value);
    object.appendChild(Archive::value2element(m_document, QStringLiteral("matrix"), matrix, ids.matrix));
    object.appendChild(Archive::createInt32(m_document, QStringLiteral("opacity"), opacity));
    object.appendChild(Archive::createBool(m_document, QStringLiteral("aspect"), true));
    return object;
}

void Impl::predeclareEnvelope(long long id, const std::vector<KeyValueIds>& keyValues,
                              const TransformationIds& defaultValue) {
    predeclareTransformation(defaultValue, id);
    QList<long long> refs;
    for (const KeyValueIds& ids : keyValues)
        refs.append(ids.keyValue);
    refs.append(defaultValue.value);
    predeclare(QStringLiteral("TransformationEnvelope"), id, 0, refs);
    for (const KeyValueIds& ids : keyValues) {
        predeclare(QStringLiteral("AnimationTransformationKeyValue"), ids.keyValue, id,
                   {ids.transformation.value});
        predeclareTransformation(ids.transformation, ids.keyValue);
    }
}

void Impl::predeclareTransformation(const TransformationIds& ids, long long parent) {
    predeclare(QStringLiteral("Transformation::Object"), ids.value, parent, {ids.matrix});
    predeclare(QStringLiteral("Types::Transform"), ids.matrix, ids.value, {});
}

void Impl::predeclare(const QString& typeName, long long id, long long parent, const QList<long long>& refs) {
    Archive::addPredeclaration(m_predeclarations, m_document, typeName, parent, m_ids.greatest(), id, refs);
}

} // namespace

void V16_PanZoomAdaptor::adapt(QDomDocument& document) {
    Impl impl(document);
    if (!impl.collect())
        return;
    impl.removeEffects();
    impl.convertClips();
}

} // namespace Project
