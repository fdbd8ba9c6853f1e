#include "Adaptors/Project/V46_TransitionToClipPairAdaptor.h"

#include "Archive/Internal/Count.h"
#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <QHash>

#include <glog/logging.h>

#include <algorithm>
#include <optional>
#include <span>

using Archive::Internal::Elements;
using Archive::Internal::nextId;

namespace Words = Archive::Words;

namespace Project {
namespace {

constexpr int primaryTrackType = 16;
constexpr long long titleDuration = 6000;

struct Field {
    const char* name;
    const char* type;
    const char* value;
};

// clang-format off
constexpr Field penFields[] = {
    {"color", "uint32_t", "0"},
    {"width", "int32_t", "0"},
    {"enabled", "bool", "0"},
};
constexpr Field shadowFields[] = {
    {"enabled", "bool", "0"},
    {"color", "uint32_t", "0"},
    {"offsetX", "int32_t", "0"},
    {"offsetY", "int32_t", "0"},
    {"blurRadius", "int32_t", "0"},
};
constexpr Field itemFlagFields[] = {
    {"editable", "bool", "1"},
    {"features", "int32_t", "4"},
};
constexpr const char* itemNumberFields[] = {"textWidth", "arcRadius", "from", "to", "intro", "outro"};
constexpr Field presetHeadFields[] = {
    {"type", "int32_t", "1"},
    {"scriptId", "String", "TitleStandard"},
};
constexpr Field presetTailFields[] = {
    {"tag", "String", "SimpleText"},
    {"description", "String", "Desc SimpleText"},
    {"sourceDuration", "int64_t", "0"},
};
constexpr Field clipHeadFields[] = {
    {"type", "int32_t", "4"},
    {"name", "String", "Default name"},
    {"enabled", "bool", "1"},
};
constexpr Field clipSourceFields[] = {
    {"quiz", "ObjectRef", "0"},
    {"file", "ObjectRef", "0"},
    {"nestedTimeline", "ObjectRef", "0"},
    {"volume", "int32_t", "100"},
    {"volumeEnvelope", "ObjectRef", "0"},
    {"volumeNormalize", "bool", "0"},
    {"cropEnvelope", "ObjectRef", "0"},
    {"moveEnvelope", "ObjectRef", "0"},
    {"broken", "bool", "0"},
    {"unlimitedDuration", "bool", "1"},
};
constexpr Field clipTailFields[] = {
    {"rhythm", "ObjectRef", "0"},
    {"stabilization", "ObjectRef", "0"},
    {"mediaTrack", "int32_t", "0"},
};
// The fades are misspelled in every document from here to version 77.
constexpr Field timingTailFields[] = {
    {"transitionIn", "int64_t", "0"},
    {"transitionOut", "int64_t", "0"},
    {"fadeInDuraion", "int64_t", "0"},
    {"fadeOutDuraion", "int64_t", "0"},
    {"reversed", "bool", "0"},
    {"timingMode", "int32_t", "0"},
};
// clang-format on

constexpr Stored::V14::Transform identity{.m11 = 1.0, .m22 = 1.0, .m33 = 1.0};
constexpr Stored::V14::Transform itemTransform{
    .m11 = 0.625, .m22 = 0.625, .m31 = 343.0, .m32 = 278.0, .m33 = 1.0};

void appendFields(QDomDocument& doc, QDomElement& object, std::span<const Field> fields) {
    for (const Field& field : fields)
        object.appendChild(Archive::createTypeValue(doc, QString::fromLatin1(field.name),
                                                    QString::fromLatin1(field.type),
                                                    QString::fromLatin1(field.value)));
}

unsigned long long idIn(const QDomElement& parent, const QString& name) {
    return Archive::valueOf(parent, name).toULongLong();
}

long long numberIn(const QDomElement& parent, const QString& name) {
    return Archive::valueOf(parent, name).toLongLong();
}

long long timestampOf(const QDomElement& timing) {
    return numberIn(timing, QStringLiteral("timestamp"));
}

long long transitionOf(const QDomElement& clip) {
    return numberIn(clip, QStringLiteral("transition"));
}

long long transitionHalfOf(const QDomElement& timing) {
    return numberIn(timing, QStringLiteral("transitionHalf"));
}

long long endOf(const QDomElement& timing) {
    // Hostile times wrap instead of overflowing.
    return static_cast<long long>(
        static_cast<unsigned long long>(timestampOf(timing)) +
        static_cast<unsigned long long>(numberIn(timing, QStringLiteral("duration"))));
}

void setTime(QDomDocument& doc, QDomElement& timing, const QString& name, long long time) {
    if (timing.firstChildElement(name).isNull())
        timing.appendChild(Archive::createInt64(doc, name, time));
    else
        Archive::setValueOf(timing, name, QString::number(time));
}

/// The entries of `predeclarations`, at any depth, that matter to the search for a timeline's record: those
/// that declare a timeline, and those without `Data`, each of which is reported by every search that comes past
/// it. They are kept between searches, so that many timelines don't walk all records each.
class TimelineRecords {
public:
    void collect(const QDomElement& predeclarations);
    bool areCollected() const { return m_areCollected; }

    /// The place of the first record of that timeline.
    std::optional<std::size_t> find(unsigned long long timelineId) const;

    /// Adds an object to the `refs` of the record at that place.
    void addReference(QDomDocument& doc, std::size_t place, long long id);

private:
    struct Entry {
        QDomElement item;
        QDomElement data;
        unsigned long long timelineId = 0;
    };

    std::vector<Entry> m_entries;
    bool m_areCollected = false;
};

void TimelineRecords::collect(const QDomElement& predeclarations) {
    m_entries.clear();
    for (const QDomElement& item : Archive::Internal::elements(predeclarations, Words::Item)) {
        const QDomElement data = item.firstChildElement(Words::Data);
        if (data.isNull() || Archive::valueOf(data, Words::typeName) == QLatin1String("Timeline::Object"))
            m_entries.push_back({item, data, idIn(data, Words::oid)});
    }
    m_areCollected = true;
}

std::optional<std::size_t> TimelineRecords::find(unsigned long long timelineId) const {
    for (std::size_t place = 0; place < m_entries.size(); ++place) {
        if (m_entries[place].data.isNull())
            LOG(WARNING) << "Predeclaration <Data> element is null";
        else if (m_entries[place].timelineId == timelineId)
            return place;
    }
    LOG(WARNING) << "Not found timeline predeclarator element";
    return std::nullopt;
}

bool isBelow(QDomNode node, const QDomNode& root) {
    while (!node.isNull() && node != root)
        node = node.parentNode();
    return !node.isNull();
}

void TimelineRecords::addReference(QDomDocument& doc, std::size_t place, long long id) {
    const Entry found = m_entries[place];
    QDomElement data = found.data;
    QDomElement item = Archive::appendArrayElement(doc, data, Words::refs);
    // Not `Data`, as all other references of a record: later searches take this entry for one without `Data`.
    item.appendChild(Archive::createObjectRef(doc, Words::Value, id));
    const std::size_t next = place + 1;
    if (next < m_entries.size() && isBelow(m_entries[next].item, found.item))
        m_areCollected = false; // the new entry may stand behind that one
    else
        m_entries.insert(m_entries.begin() + static_cast<std::ptrdiff_t>(next), {item, {}});
}

/// A clip of the primary track.
struct PrimaryClip {
    QDomElement clip;
    QDomElement timing;
    long long timestamp;
};

struct TimelineData {
    bool hasTrailingTransition = false;
    unsigned long long primaryTrackId = 0;
    QDomElement timeline;
    std::vector<PrimaryClip> primaryClips;
    Elements timings; ///< of all clips
};

/// The ids of the trailing title, in the order in which they are given out.
struct TitleIds {
    long long clip, preset, item, pen, itemTransform, envelope, shadow, defaultValue, matrix;
};

class Impl {
public:
    explicit Impl(QDomDocument& document) : m_document(document), m_maximum(document) {}

    bool collect();
    void convert();

private:
    void collectObjects();
    void collectPrimaryTrack(const QDomElement& track);
    bool collectTimeline(const QDomElement& timeline);
    bool collectClip(TimelineData& data, const QDomElement& item);

    void buildTransitions(TimelineData& data);
    void recordTransition(QDomElement& transitions, long long id, PrimaryClip& first, PrimaryClip* second);
    void normalise(QDomElement& timing);

    void addTrailingTitle(TimelineData& data);
    void declareTitle(QDomElement& predeclarations, const TitleIds& ids, long long& maxId);
    void addPreset(const TitleIds& ids);
    QDomElement createItem(const TitleIds& ids);
    QDomElement createEnvelope(const TitleIds& ids);
    void addTitleClip(const TimelineData& data, const TitleIds& ids);
    void addTitleTiming(TimelineData& data, long long clipId, long long timingId);

    QDomDocument& m_document;
    QDomElement m_archive;
    std::vector<TimelineData> m_timelines;
    // Of several objects in one role the last in the document counts, and timelines are taken from the last
    // to the first.
    QHash<unsigned long long, QDomElement> m_objects;
    QHash<unsigned long long, unsigned long long> m_primaryTracks; ///< track by timeline
    QDomElement m_predeclarator;
    Elements m_timelineObjects;
    Elements m_clips;
    TimelineRecords m_records;
    Archive::Internal::RenewedMaximum m_maximum;
    bool m_isFlat = true; ///< each root object stands directly in the archive
};

bool Impl::collect() {
    m_archive = m_document.firstChildElement(Words::Archive);
    if (m_archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return false;
    }
    collectObjects();
    for (auto timeline = m_timelineObjects.rbegin(); timeline != m_timelineObjects.rend(); ++timeline) {
        if (!collectTimeline(*timeline))
            return false;
    }
    return !m_timelines.empty();
}

void Impl::collectObjects() {
    for (const auto& [object, type] : Archive::Internal::typedElements(m_archive, Words::RootObject)) {
        m_objects[Archive::objectIdOf(object)] = object;
        m_isFlat = m_isFlat && object.parentNode() == m_archive;
        if (type == Words::Predeclarator)
            m_predeclarator = object;
        else if (type == QLatin1String("Timeline::Object"))
            m_timelineObjects.push_back(object);
        else if (type == QLatin1String("Timeline::Track"))
            collectPrimaryTrack(object);
        else if (type == QLatin1String("Timeline::Clip"))
            m_clips.push_back(object);
    }
    if (!m_isFlat)
        m_maximum.distrust(); // objects may go with a `transitionHalf` around them
}

void Impl::collectPrimaryTrack(const QDomElement& track) {
    if (numberIn(track, Words::type) == primaryTrackType)
        m_primaryTracks[idIn(track, QStringLiteral("timeline"))] = Archive::objectIdOf(track);
}

bool Impl::collectTimeline(const QDomElement& timeline) {
    const QDomElement clips = timeline.firstChildElement(QStringLiteral("clips"));
    if (clips.isNull()) {
        LOG(ERROR) << "Not found timeline <clips> element";
        return true;
    }
    const Elements items = Archive::Internal::elements(clips, Words::Item);
    if (items.empty())
        return true;
    const auto track = m_primaryTracks.constFind(Archive::objectIdOf(timeline));
    if (track == m_primaryTracks.constEnd()) {
        LOG(ERROR) << "Not found timeline primary track";
        return true;
    }
    TimelineData data;
    data.primaryTrackId = *track;
    data.timeline = timeline;
    for (const QDomElement& item : items) {
        if (!collectClip(data, item))
            return false; // the whole document stays as it is
    }
    m_timelines.push_back(std::move(data));
    return true;
}

bool Impl::collectClip(TimelineData& data, const QDomElement& item) {
    const QDomElement clip = m_objects.value(idIn(item, Words::Key));
    const QDomElement timing = item.firstChildElement(Words::Value);
    if (timing.isNull()) {
        LOG(WARNING) << "Not found element for timeline clip timing";
        return false;
    }
    if (clip.isNull()) {
        LOG(WARNING) << "Not found element for timeline clip";
        return false;
    }
    data.timings.push_back(timing);
    if (idIn(timing, QStringLiteral("track")) == data.primaryTrackId)
        data.primaryClips.push_back({clip, timing, timestampOf(timing)});
    return true;
}

void Impl::convert() {
    for (TimelineData& data : m_timelines) {
        buildTransitions(data);
        if (data.hasTrailingTransition)
            addTrailingTitle(data);
        for (QDomElement& timing : data.timings)
            normalise(timing);
    }
    // Clips of other tracks and of skipped timelines lose their transition too, without a trace.
    for (QDomElement& clip : m_clips)
        Archive::removeFirstChild(clip, QStringLiteral("transition"));
}

void Impl::buildTransitions(TimelineData& data) {
    auto& clips = data.primaryClips;
    if (clips.empty())
        return;
    QDomElement transitions = Archive::createArray(m_document, QStringLiteral("transitions"), 0);
    data.timeline.appendChild(transitions);
    std::stable_sort(clips.begin(), clips.end(), [](const PrimaryClip& left, const PrimaryClip& right) {
        return left.timestamp < right.timestamp;
    });
    for (std::size_t number = 0; number < clips.size(); ++number) {
        const long long id = transitionOf(clips[number].clip);
        if (id == 0)
            continue;
        const bool isLast = number + 1 == clips.size();
        data.hasTrailingTransition = isLast;
        recordTransition(transitions, id, clips[number], isLast ? nullptr : &clips[number + 1]);
    }
}

void Impl::recordTransition(QDomElement& transitions, long long id, PrimaryClip& first, PrimaryClip* second) {
    // The half-length of the left clip serves for both.
    const long long half = transitionHalfOf(first.timing);
    setTime(m_document, first.timing, QStringLiteral("transitionOut"), half);
    if (second)
        setTime(m_document, second->timing, QStringLiteral("transitionIn"), half);

    QDomElement item = Archive::appendArrayElement(m_document, transitions);
    item.appendChild(Archive::createObjectRef(m_document, Words::Key, id));
    QDomElement pair = Archive::appendArrayElement(m_document, item, Words::Value);
    const auto idOf = [](const QDomElement& clip) {
        return static_cast<long long>(Archive::objectIdOf(clip));
    };
    pair.appendChild(Archive::createObjectRef(m_document, Words::First, idOf(first.clip)));
    pair.appendChild(Archive::createObjectRef(m_document, Words::Second, second ? idOf(second->clip) : 0));
}

void Impl::normalise(QDomElement& timing) {
    Archive::removeFirstChild(timing, QStringLiteral("transitionHalf"));
    for (const QString& name : {QStringLiteral("transitionIn"), QStringLiteral("transitionOut")}) {
        if (timing.firstChildElement(name).isNull())
            timing.appendChild(Archive::createInt64(m_document, name, 0));
    }
}

/// Puts a title behind the last clip, for its transition to lead to. The pair is not completed with it: its
/// `Second` stays 0, and so does the `transitionIn` of the title.
void Impl::addTrailingTitle(TimelineData& data) {
    if (m_predeclarator.isNull())
        return; // without the report that a missing record gets
    QDomElement predeclarations = m_predeclarator.firstChildElement(Words::predeclarations);
    if (!m_records.areCollected() || !m_isFlat)
        m_records.collect(predeclarations);
    const auto record = m_records.find(Archive::objectIdOf(data.timeline));
    if (!record)
        return;

    long long maxId = m_maximum.take();
    TitleIds ids{};
    for (long long TitleIds::*id :
         {&TitleIds::clip, &TitleIds::preset, &TitleIds::item, &TitleIds::pen, &TitleIds::itemTransform,
          &TitleIds::envelope, &TitleIds::shadow, &TitleIds::defaultValue, &TitleIds::matrix})
        ids.*id = nextId(maxId);
    declareTitle(predeclarations, ids, maxId);
    const auto timelineId = static_cast<long long>(Archive::objectIdOf(data.timeline));
    const long long timingId = Archive::addPredeclaration(
        predeclarations, m_document, QStringLiteral("Timeline::ClipTiming"), timelineId, maxId, -1, {});
    m_records.addReference(m_document, *record, timingId);
    addPreset(ids);
    addTitleClip(data, ids);
    addTitleTiming(data, ids.clip, timingId);
    m_maximum.added(maxId);
}

void Impl::declareTitle(QDomElement& predeclarations, const TitleIds& ids, long long& maxId) {
    const auto declare = [&](const char* typeName, long long id, long long parent,
                             const QList<long long>& refs) {
        Archive::addPredeclaration(predeclarations, m_document, QString::fromLatin1(typeName), parent, maxId,
                                   id, refs);
    };
    declare("Overlay::Preset", ids.preset, 0, {ids.item});
    declare("Overlay::Item", ids.item, ids.preset, {ids.pen, ids.itemTransform, ids.envelope, ids.shadow});
    declare("Types::Pen", ids.pen, ids.item, {});
    declare("Types::Transform", ids.itemTransform, ids.item, {});
    declare("TransformationEnvelope", ids.envelope, ids.item, {ids.defaultValue});
    declare("Overlay::DropShadow", ids.shadow, ids.item, {});
    declare("Transformation::Object", ids.defaultValue, ids.envelope, {ids.matrix});
    declare("Types::Transform", ids.matrix, ids.defaultValue, {});
    declare("Timeline::Clip", ids.clip, 0, {});
}

void Impl::addPreset(const TitleIds& ids) {
    QDomElement preset =
        Archive::createObject(m_document, Words::RootObject, QStringLiteral("Overlay::Preset"), ids.preset);
    appendFields(m_document, preset, presetHeadFields);
    preset.appendChild(Archive::createDouble(m_document, QStringLiteral("scriptSpeed"), 1.0));
    Archive::appendArrayElement(m_document, preset, QStringLiteral("items")).appendChild(createItem(ids));
    appendFields(m_document, preset, presetTailFields);
    m_archive.appendChild(preset);
}

QDomElement Impl::createItem(const TitleIds& ids) {
    QDomElement item =
        Archive::createObject(m_document, Words::Data, QStringLiteral("Overlay::Item"), ids.item);
    item.appendChild(Archive::createInt32(m_document, QStringLiteral("type"), 1));
    item.appendChild(Archive::createString(m_document, QStringLiteral("text"), QStringLiteral("")));
    item.appendChild(
        Archive::value2element(m_document, QStringLiteral("transform"), itemTransform, ids.itemTransform));
    item.appendChild(createEnvelope(ids));
    item.appendChild(Archive::createString(m_document, QStringLiteral("scriptRole"), QStringLiteral("")));
    item.appendChild(Archive::createDouble(m_document, QStringLiteral("editTime"), 1.0));
    QDomElement outline =
        Archive::createObject(m_document, QStringLiteral("outline"), QStringLiteral("Types::Pen"), ids.pen);
    appendFields(m_document, outline, penFields);
    item.appendChild(outline);
    appendFields(m_document, item, itemFlagFields);
    for (const char* name : itemNumberFields)
        item.appendChild(Archive::createDouble(m_document, QString::fromLatin1(name), 0.0));
    QDomElement shadow = Archive::createObject(m_document, QStringLiteral("dropShadow"),
                                               QStringLiteral("Overlay::DropShadow"), ids.shadow);
    appendFields(m_document, shadow, shadowFields);
    item.appendChild(shadow);
    return item;
}

QDomElement Impl::createEnvelope(const TitleIds& ids) {
    QDomElement defaultValue =
        Archive::createObject(m_document, QStringLiteral("defaultValue"),
                              QStringLiteral("Transformation::Object"), ids.defaultValue);
    defaultValue.appendChild(
        Archive::value2element(m_document, QStringLiteral("matrix"), identity, ids.matrix));
    defaultValue.appendChild(Archive::createInt32(m_document, QStringLiteral("opacity"), 100));
    QDomElement envelope = Archive::createObject(m_document, QStringLiteral("envelope"),
                                                 QStringLiteral("TransformationEnvelope"), ids.envelope);
    envelope.appendChild(defaultValue);
    envelope.appendChild(Archive::createArray(m_document, QStringLiteral("keyValues"), 0));
    return envelope;
}

void Impl::addTitleClip(const TimelineData& data, const TitleIds& ids) {
    QDomElement clip =
        Archive::createObject(m_document, Words::RootObject, QStringLiteral("Timeline::Clip"), ids.clip);
    clip.appendChild(Archive::createObjectRef(m_document, QStringLiteral("timeline"),
                                              static_cast<long long>(Archive::objectIdOf(data.timeline))));
    appendFields(m_document, clip, clipHeadFields);
    clip.appendChild(Archive::createObjectRef(m_document, QStringLiteral("overlay"), ids.preset));
    appendFields(m_document, clip, clipSourceFields);
    clip.appendChild(Archive::createInt64(m_document, QStringLiteral("sourceDuration"), titleDuration));
    clip.appendChild(Archive::createArray(m_document, QStringLiteral("effects"), 0));
    appendFields(m_document, clip, clipTailFields);
    clip.appendChild(Archive::createArray(m_document, QStringLiteral("labels"), 0));
    m_archive.appendChild(clip);
}

void Impl::addTitleTiming(TimelineData& data, long long clipId, long long timingId) {
    const QDomElement& last = data.primaryClips.back().timing;
    QDomElement timing =
        Archive::createObject(m_document, Words::Value, QStringLiteral("Timeline::ClipTiming"), timingId);
    timing.appendChild(Archive::createObjectRef(m_document, QStringLiteral("track"),
                                                static_cast<long long>(data.primaryTrackId)));
    timing.appendChild(Archive::createInt32(m_document, QStringLiteral("trackLevel"), 0));
    timing.appendChild(Archive::createInt64(m_document, QStringLiteral("timestamp"), endOf(last)));
    timing.appendChild(Archive::createInt64(m_document, QStringLiteral("sourceDuration"), titleDuration));
    timing.appendChild(Archive::createInt64(m_document, QStringLiteral("sourcePosition"), 0));
    timing.appendChild(Archive::createInt64(m_document, QStringLiteral("duration"), transitionHalfOf(last)));
    appendFields(m_document, timing, timingTailFields);

    QDomElement clips = data.timeline.firstChildElement(QStringLiteral("clips"));
    QDomElement item = Archive::appendArrayElement(m_document, clips);
    item.appendChild(Archive::createObjectRef(m_document, Words::Key, clipId));
    item.appendChild(timing);
}

} // namespace

void V46_TransitionToClipPairAdaptor::adapt(QDomDocument& document) {
    Impl impl(document);
    if (impl.collect())
        impl.convert();
}

} // namespace Project
