#include "Adaptors/Project/V51_MaskEffectAdaptor.h"

#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/PredeclarationEdits.h"
#include "Archive/Internal/Predeclarations.h"
#include "Archive/Internal/Transforms.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <QHash>

#include <glog/logging.h>

#include <vector>

namespace Words = Archive::Words;

using Archive::Internal::EffectObject;
using Archive::Internal::Elements;

namespace Project {
namespace {

const QString maskClass = QStringLiteral("Effect::Mask");
const QString maskTag = QStringLiteral("effect_mask");
const QString maskUniqueId = QStringLiteral("b1c2b46d-c898-4874-9619-a1c58992162c");

constexpr const char* frameBaseFields[] = {"shape", "transform", "outline"};

using EffectsById = QHash<unsigned long long, QDomElement>;

/// A clip and its mask effects, one of which may be null.
struct Group {
    QDomElement clip;
    QDomElement highlight;
    QDomElement conceal;
};

/// The mask that takes the group's place, as it grows.
struct NewMask {
    long long id;
    EffectObject levels;
    QList<long long> frameIds;
    QList<long long> replacedIds;
};

long long idOf(const QDomElement& object) {
    return static_cast<long long>(Archive::objectIdOf(object));
}

bool hasEffects(const QDomElement& clip) {
    return Archive::hasChild(clip, QStringLiteral("effects"), [](const QDomElement& effects) {
        return effects.attribute(Words::size).toLongLong() > 0;
    });
}

Group groupOf(const QDomElement& clip, const EffectsById& highlights, const EffectsById& conceals) {
    Group group{clip, {}, {}};
    // Of several of one kind the last one counts; the others stay as they are.
    Archive::iterateArray(clip.firstChildElement(QStringLiteral("effects")), [&](QDomElement& data) {
        const unsigned long long id = data.attribute(Words::value).toULongLong();
        if (const auto found = highlights.constFind(id); found != highlights.constEnd())
            group.highlight = *found;
        else if (const auto other = conceals.constFind(id); other != conceals.constEnd())
            group.conceal = *other;
    });
    return group;
}

class Impl {
public:
    explicit Impl(QDomDocument& document) : m_document(document), m_ids(document) {}

    bool parse();
    void adapt();

private:
    using Edits = Archive::Internal::PredeclarationEdits;

    void collectFrameRecords();

    void convert(Group& group, Edits& predeclares);
    NewMask createMask();
    void appendBackground(NewMask& mask, const QDomElement& highlight);
    void moveHighlightFrames(NewMask& mask, const QDomElement& highlight, Edits& predeclares);
    void moveConcealFrames(NewMask& mask, const QDomElement& conceal, Edits& predeclares);
    void addTracking(QDomElement& frame, Edits& predeclares);
    void appendFrameBase(QDomElement& frame, long long transformId);
    QDomElement frameRecord(long long frameId) const;
    void addReference(long long frameId, long long transformId);
    void appendPixelSize(QDomElement& frame, const QDomElement& conceal);
    void moveFrame(NewMask& mask, const QString& arrayName, const QDomElement& frame);
    void setParent(long long frameId, long long parent);
    void retire(NewMask& mask, const QDomElement& effect, Edits& predeclares);
    void replaceEffects(const QDomElement& clip, const NewMask& mask);

    QDomDocument& m_document;
    QDomElement m_archive;
    QDomElement m_predeclarations;
    std::vector<Group> m_groups;
    QHash<long long, QDomElement> m_frameRecords;
    Archive::Internal::ObjectIds m_ids;
};

bool Impl::parse() {
    m_archive = m_document.firstChildElement(Words::Archive);
    if (m_archive.isNull()) {
        LOG(WARNING) << "<Archive> element not found";
        return false;
    }
    Elements clips;
    EffectsById highlights;
    EffectsById conceals;
    for (const QDomElement& object : Archive::Internal::children(m_archive, Words::RootObject)) {
        const QString type = Archive::typeOf(object);
        if (type == Words::Predeclarator) {
            m_predeclarations = object.firstChildElement(Words::predeclarations);
            collectFrameRecords();
        } else if (type == QLatin1String("Timeline::Clip")) {
            if (hasEffects(object))
                clips.push_back(object);
        } else if (type == QLatin1String("Effect::MaskHighlight")) {
            highlights[Archive::objectIdOf(object)] = object;
        } else if (type == QLatin1String("Effect::MaskConceal")) {
            conceals[Archive::objectIdOf(object)] = object;
        }
    }
    if (m_predeclarations.isNull()) {
        LOG(WARNING) << "Predeclarations list not found";
        return false;
    }
    for (const QDomElement& clip : clips) {
        Group group = groupOf(clip, highlights, conceals);
        if (!group.highlight.isNull() || !group.conceal.isNull())
            m_groups.push_back(std::move(group));
    }
    return true;
}

void Impl::collectFrameRecords() {
    const auto records = Archive::Internal::recordsOf(m_predeclarations);
    for (const auto& record : *records) {
        const QString typeName = Archive::valueOf(record.data, Words::typeName);
        // Both names: conceal frames are declared as highlight frames.
        if (typeName == QLatin1String("Effect::FrameHighlight") ||
            typeName == QLatin1String("Effect::FrameConceal"))
            m_frameRecords[record.id] = record.data;
    }
}

void Impl::adapt() {
    Edits predeclares(m_document, m_predeclarations);
    for (Group& group : m_groups)
        convert(group, predeclares);
    predeclares.finish();
}

void Impl::convert(Group& group, Edits& predeclares) {
    NewMask mask = createMask();
    if (!group.highlight.isNull()) {
        appendBackground(mask, group.highlight);
        moveHighlightFrames(mask, group.highlight, predeclares);
        retire(mask, group.highlight, predeclares);
    }
    if (!group.conceal.isNull()) {
        moveConcealFrames(mask, group.conceal, predeclares);
        retire(mask, group.conceal, predeclares);
    }
    replaceEffects(group.clip, mask);
    predeclares.add(maskClass, 0, m_ids.greatest(), mask.id, mask.frameIds);
    m_archive.appendChild(mask.levels.root);
}

NewMask Impl::createMask() {
    const long long id = m_ids.next();
    NewMask mask{id,
                 Archive::Internal::createEffectObject(m_document, maskClass,
                                                       QStringLiteral("Effect::VideoEffect"), id),
                 {},
                 {}};
    Archive::Internal::appendStrings(
        m_document, mask.levels.object,
        {{"id", maskUniqueId}, {"uniqueId", maskUniqueId}, {"tag", maskTag}, {"description", QString()}});
    mask.levels.object.appendChild(Archive::createDouble(m_document, QStringLiteral("intensity"), 1.0));
    return mask;
}

void Impl::appendBackground(NewMask& mask, const QDomElement& highlight) {
    // From the readable texts, not from `binaryData`: only six digits of a number come through.
    const int method = Archive::valueOf(highlight, QStringLiteral("method")).toInt();
    const double opacity = Archive::valueOf(highlight, QStringLiteral("opacity")).toDouble();
    const double smoothness = Archive::valueOf(highlight, QStringLiteral("smoothness")).toDouble();
    QDomElement& root = mask.levels.root;
    root.appendChild(Archive::createInt32(m_document, QStringLiteral("backgroundFill"), method));
    root.appendChild(Archive::createDouble(m_document, QStringLiteral("backgroundOpacity"), opacity));
    root.appendChild(Archive::createDouble(m_document, QStringLiteral("backgroundSmoothness"), smoothness));
}

void Impl::moveHighlightFrames(NewMask& mask, const QDomElement& highlight, Edits& predeclares) {
    Archive::iterateArray(highlight.firstChildElement(QStringLiteral("frames")), [&](QDomElement& frame) {
        mask.frameIds.append(idOf(frame));
        addTracking(frame, predeclares);
        moveFrame(mask, QStringLiteral("highlightFrames"), frame);
    });
}

void Impl::moveConcealFrames(NewMask& mask, const QDomElement& conceal, Edits& predeclares) {
    Archive::iterateArray(conceal.firstChildElement(QStringLiteral("frames")), [&](QDomElement& frame) {
        mask.frameIds.append(idOf(frame));
        addTracking(frame, predeclares);
        appendPixelSize(frame, conceal);
        moveFrame(mask, QStringLiteral("concealFrames"), frame);
    });
}

void Impl::addTracking(QDomElement& frame, Edits& predeclares) {
    const long long frameId = idOf(frame);
    const long long transformId =
        predeclares.add(QStringLiteral("Types::Transform"), frameId, m_ids.greatest(), -1, {});
    if (!frame.isNull())
        appendFrameBase(frame, transformId);
    addReference(frameId, transformId);
}

void Impl::appendFrameBase(QDomElement& frame, long long transformId) {
    QDomElement base =
        Archive::createObject(m_document, Words::BaseOfObject, QStringLiteral("Effect::Frame"), idOf(frame));
    for (const char* name : frameBaseFields) {
        const QDomElement field = frame.firstChildElement(QString::fromLatin1(name));
        if (!field.isNull())
            base.appendChild(field);
    }
    base.appendChild(Archive::createString(m_document, QStringLiteral("trackingId"), QString()));
    base.appendChild(Archive::value2element(m_document, QStringLiteral("trackingTransform"),
                                            Archive::Internal::identityTransform, transformId));
    frame.appendChild(base); // last, not first as base class parts stand elsewhere
}

QDomElement Impl::frameRecord(long long frameId) const {
    const QDomElement record = m_frameRecords.value(frameId);
    // One line each time it is wanted, so two for a frame.
    if (record.isNull())
        LOG(WARNING) << "Cannot find predeclaration for OID = " << frameId;
    return record;
}

void Impl::addReference(long long frameId, long long transformId) {
    const QDomElement record = frameRecord(frameId);
    if (record.isNull())
        return;
    QDomElement refs = record.firstChildElement(Words::refs);
    if (!refs.isNull())
        Archive::appendArrayElement(m_document, refs)
            .appendChild(Archive::createObjectRef(m_document, Words::Data, transformId));
}

void Impl::appendPixelSize(QDomElement& frame, const QDomElement& conceal) {
    // The effect's, which as a rule has none: a second `pixelSize` of 0 behind the frame's own.
    const double pixelSize = Archive::valueOf(conceal, QStringLiteral("pixelSize")).toDouble();
    if (!frame.isNull())
        frame.appendChild(Archive::createDouble(m_document, QStringLiteral("pixelSize"), pixelSize));
}

void Impl::moveFrame(NewMask& mask, const QString& arrayName, const QDomElement& frame) {
    const long long frameId = idOf(frame);
    QDomElement item = Archive::appendArrayElement(m_document, mask.levels.root, arrayName);
    if (!frame.isNull())
        item.appendChild(frame);
    setParent(frameId, mask.id);
}

void Impl::setParent(long long frameId, long long parent) {
    const QDomElement record = frameRecord(frameId);
    if (record.isNull())
        return;
    if (record.firstChildElement(Words::poid).isNull()) {
        LOG(WARNING) << "Cannot find predeclaration poid element for OID = " << frameId;
        return;
    }
    Archive::setValueOf(record, Words::poid, QString::number(parent));
}

void Impl::retire(NewMask& mask, const QDomElement& effect, Edits& predeclares) {
    predeclares.remove(idOf(effect));
    mask.replacedIds.append(idOf(effect));
    Archive::Internal::removeChild(m_archive, effect);
}

void Impl::replaceEffects(const QDomElement& clip, const NewMask& mask) {
    QDomElement effects = clip.firstChildElement(QStringLiteral("effects"));
    // A text that is no number found the effect of id 0, but is not taken away with it.
    Archive::removeItemsFromList(effects, [&mask](QDomElement& data) {
        return mask.replacedIds.contains(Archive::extractValue(data.attribute(Words::value), -1LL));
    });
    Archive::appendArrayElement(m_document, effects)
        .appendChild(Archive::createObjectRef(m_document, Words::Data, mask.id));
}

} // namespace

void V51_MaskEffectAdaptor::adapt(QDomDocument& document) {
    Impl impl(document);
    if (!impl.parse()) {
        LOG(WARNING) << "Cannot parse project";
        return;
    }
    impl.adapt();
}

} // namespace Project
