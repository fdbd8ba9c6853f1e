#include "Adaptors/Project/V51_MaskEffectAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/Reading.h"
#include "Archive/Internal/TransformedEffects.h"
#include "Archive/Internal/Transforms.h"

#include <glog/logging.h>

using namespace Archive::Internal;

namespace Project {
namespace {

constexpr const char* maskClass = "Effect::Mask";
constexpr const char* maskUniqueId = "b1c2b46d-c898-4874-9619-a1c58992162c";

constexpr const char* frameBaseFields[] = {"shape", "transform", "outline"};

/// A clip and its mask effects, one of which may be null.
struct Group {
    QDomElement clip;
    QDomElement highlight;
    QDomElement conceal;
};

/// The mask that replaces the effects of a group, not yet complete.
struct NewMask {
    long long id;
    EffectObject levels;
    QList<long long> frameIds;
    QList<long long> replacedIds;
};

bool hasEffects(const QDomElement& clip) {
    return Archive::hasChild(clip, "effects", [](const QDomElement& effects) {
        return effects.attribute(Words::size).toLongLong() > 0;
    });
}

class MaskMerge {
public:
    explicit MaskMerge(ArchiveEditor& archive)
        : m_archive(archive), m_top(archive.document().firstChildElement(Words::Archive)) {}

    /// False if there is no archive or it has no predeclarations.
    bool collect();
    void convert();

private:
    void collectFrameRecords();
    void collectGroup(const QDomElement& clip);

    void convertGroup(const Group& group);
    NewMask newMask();
    void appendBackground(const NewMask& mask, const QDomElement& highlight);
    void moveHighlightFrames(NewMask& mask, const QDomElement& highlight);
    void moveConcealFrames(NewMask& mask, const QDomElement& conceal);
    void appendTracking(const QDomElement& frame);
    void moveFrame(NewMask& mask, const QString& arrayName, const QDomElement& frame);
    QDomElement frameRecord(long long frameId) const;
    void setParent(long long frameId, long long parent);
    void removeEffect(NewMask& mask, const QDomElement& effect);
    void replaceReferences(const QDomElement& clip, const NewMask& mask);

    ArchiveEditor& m_archive;
    QDomElement m_top;
    QHash<unsigned long long, QDomElement>
        m_highlights; ///< by id, as the next two; if an id occurs twice, the last one
    QHash<unsigned long long, QDomElement> m_conceals;
    QHash<long long, QDomElement> m_frameRecords;
    std::vector<Group> m_groups;
};

bool MaskMerge::collect() {
    if (m_top.isNull()) {
        LOG(WARNING) << "<Archive> element not found";
        return false;
    }
    Elements clips;
    m_archive.setPredeclarations({});
    // Quirk: only objects that are children of the archive are read.
    for (const QDomElement& object : children(m_top, Words::RootObject)) {
        const QString type = Archive::typeOf(object);
        if (type == Words::Predeclarator) {
            m_archive.setPredeclarations(object.firstChildElement(Words::predeclarations));
            collectFrameRecords();
        } else if (type == QLatin1String("Timeline::Clip")) {
            if (hasEffects(object))
                clips.push_back(object);
        } else if (type == QLatin1String("Effect::MaskHighlight")) {
            m_highlights[Archive::objectIdOf(object)] = object;
        } else if (type == QLatin1String("Effect::MaskConceal")) {
            m_conceals[Archive::objectIdOf(object)] = object;
        }
    }
    if (m_archive.predeclarations().isNull()) {
        LOG(WARNING) << "Predeclarations list not found";
        return false;
    }
    for (const QDomElement& clip : clips)
        collectGroup(clip);
    return true;
}

void MaskMerge::collectFrameRecords() {
    const auto records = m_archive.records();
    for (const Record& record : records) {
        const QString typeName = Archive::valueOf(record.data, Words::typeName);
        // Quirk: both names, because conceal frames may be declared as highlight frames.
        if (typeName == QLatin1String("Effect::FrameHighlight") ||
            typeName == QLatin1String("Effect::FrameConceal"))
            m_frameRecords[record.id] = record.data;
    }
}

void MaskMerge::collectGroup(const QDomElement& clip) {
    Group group{clip, {}, {}};
    // Quirk: of several effects of one kind the last one is converted; the others stay unchanged.
    Archive::iterateArray(childOf(clip, "effects"), [&](const QDomElement& data) {
        const unsigned long long id = textOf(data).toULongLong();
        if (m_highlights.contains(id))
            group.highlight = m_highlights.value(id);
        else if (m_conceals.contains(id))
            group.conceal = m_conceals.value(id);
    });
    if (!group.highlight.isNull() || !group.conceal.isNull())
        m_groups.push_back(group);
}

void MaskMerge::convert() {
    for (const Group& group : m_groups)
        convertGroup(group);
}

void MaskMerge::convertGroup(const Group& group) {
    const Subject subject(m_archive, group.clip);
    NewMask mask = newMask();
    if (!group.highlight.isNull()) {
        appendBackground(mask, group.highlight);
        moveHighlightFrames(mask, group.highlight);
        removeEffect(mask, group.highlight);
    }
    if (!group.conceal.isNull()) {
        moveConcealFrames(mask, group.conceal);
        removeEffect(mask, group.conceal);
    }
    replaceReferences(group.clip, mask);
    m_archive.declareAs(mask.id, maskClass, 0, mask.frameIds);
    m_archive.append(m_top, mask.levels.root);
}

NewMask MaskMerge::newMask() {
    const long long id = m_archive.nextId();
    const EffectObject levels = newEffect(m_archive, maskClass, "Effect::VideoEffect", id);
    m_archive.fields(levels.object)
        .string("id", maskUniqueId)
        .string("uniqueId", maskUniqueId)
        .string("tag", "effect_mask")
        .string("description", "")
        .number("intensity", 1.0);
    return {id, levels, {}, {}};
}

/// Quirk: numbers are read from `value`, not from `binaryData`, so only six digits are kept.
void MaskMerge::appendBackground(const NewMask& mask, const QDomElement& highlight) {
    m_archive.fields(mask.levels.root)
        .int32("backgroundFill", int32In(highlight, "method"))
        .number("backgroundOpacity", textIn(highlight, "opacity").toDouble())
        .number("backgroundSmoothness", textIn(highlight, "smoothness").toDouble());
}

void MaskMerge::moveHighlightFrames(NewMask& mask, const QDomElement& highlight) {
    Archive::iterateArray(childOf(highlight, "frames"), [&](const QDomElement& frame) {
        moveFrame(mask, "highlightFrames", frame);
        appendTracking(frame);
    });
}

void MaskMerge::moveConcealFrames(NewMask& mask, const QDomElement& conceal) {
    Archive::iterateArray(childOf(conceal, "frames"), [&](const QDomElement& frame) {
        moveFrame(mask, "concealFrames", frame);
        appendTracking(frame);
        // Quirk: the `pixelSize` of the effect, which normally has none: so a second one of 0 follows the
        // frame's own.
        m_archive.fields(frame).number("pixelSize", textIn(conceal, "pixelSize").toDouble());
    });
}

/// Appends the base class part of frames and moves the old fields that belong there. Quirk: an entry without
/// a frame gets the records as well.
void MaskMerge::appendTracking(const QDomElement& frame) {
    const long long frameId = wrappedIdOf(frame);
    const long long transformId = m_archive.declare(transformClass, frameId);
    if (!frame.isNull()) {
        // Quirk: it is the last child; other base class parts are the first.
        const QDomElement base = m_archive.appendObject(frame, Words::BaseOfObject, "Effect::Frame", frameId);
        for (const char* name : frameBaseFields)
            m_archive.append(base, frame.firstChildElement(name));
        m_archive.fields(base)
            .string("trackingId", "")
            .transform("trackingTransform", identityTransform, transformId);
    }
    m_archive.appendReference(frameRecord(frameId).firstChildElement(Words::refs), transformId);
}

void MaskMerge::moveFrame(NewMask& mask, const QString& arrayName, const QDomElement& frame) {
    const long long frameId = wrappedIdOf(frame);
    mask.frameIds.append(frameId);
    m_archive.append(m_archive.appendItem(mask.levels.root, arrayName), frame);
    setParent(frameId, mask.id);
}

/// Quirk: logs each search for a missing record: twice for a frame.
QDomElement MaskMerge::frameRecord(long long frameId) const {
    const QDomElement record = m_frameRecords.value(frameId);
    if (record.isNull())
        LOG(WARNING) << "Cannot find predeclaration for OID = " << frameId;
    return record;
}

void MaskMerge::setParent(long long frameId, long long parent) {
    const QDomElement record = frameRecord(frameId);
    if (!record.isNull() && record.firstChildElement(Words::poid).isNull())
        LOG(WARNING) << "Cannot find predeclaration poid element for OID = " << frameId;
    m_archive.setField(record, Words::poid, parent);
}

void MaskMerge::removeEffect(NewMask& mask, const QDomElement& effect) {
    const long long id = wrappedIdOf(effect);
    m_archive.undeclare(id);
    mask.replacedIds.append(id);
    m_archive.removeFrom(m_top, effect);
}

void MaskMerge::replaceReferences(const QDomElement& clip, const NewMask& mask) {
    const QDomElement effects = childOf(clip, "effects");
    // Quirk: a text that is no number refers to the effect of id 0, but its entry is not removed.
    m_archive.removeItems(effects, [&mask](QDomElement& data) {
        return mask.replacedIds.contains(Archive::extractValue(textOf(data), -1LL));
    });
    m_archive.appendReference(effects, mask.id);
}

} // namespace

void V51_MaskEffectAdaptor::convert(ArchiveEditor& archive) {
    MaskMerge merge(archive);
    if (merge.collect())
        merge.convert();
    else
        LOG(WARNING) << "Cannot parse project";
}

} // namespace Project
