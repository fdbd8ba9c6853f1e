#include "Adaptors/Project/Internal/TitleClip.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/Envelopes.h"
#include "Archive/Internal/TransformedEffects.h"

using namespace Archive::Internal;

namespace Project::Internal {
namespace {

constexpr Stored::V14::Transform itemTransform{
    .m11 = 0.625, .m22 = 0.625, .m31 = 343.0, .m32 = 278.0, .m33 = 1.0};

struct TitleIds {
    long long clip, preset, item, pen, transform, envelope, shadow;
    TransformationIds defaultValue;
};

TitleIds newIds(ArchiveEditor& archive) {
    const auto next = [&archive] { return archive.nextId(); };
    return {next(), next(), next(), next(), next(), next(), next(), {next(), next()}};
}

void declareTitle(ArchiveEditor& archive, const TitleIds& ids) {
    archive.declareAs(ids.preset, "Overlay::Preset", 0, {ids.item});
    archive.declareAs(ids.item, "Overlay::Item", ids.preset,
                      {ids.pen, ids.transform, ids.envelope, ids.shadow});
    archive.declareAs(ids.pen, "Types::Pen", ids.item);
    archive.declareAs(ids.transform, transformClass, ids.item);
    archive.declareAs(ids.envelope, "TransformationEnvelope", ids.item, {ids.defaultValue.object});
    archive.declareAs(ids.shadow, "Overlay::DropShadow", ids.item);
    declareTransformation(archive, ids.defaultValue, ids.envelope);
    archive.declareAs(ids.clip, "Timeline::Clip");
}

void appendItem(ArchiveEditor& archive, const QDomElement& entry, const TitleIds& ids) {
    const QDomElement item = archive.appendObject(entry, Words::Data, "Overlay::Item", ids.item);
    archive.fields(item)
        .int32("type", 1)
        .string("text", "")
        .transform("transform", itemTransform, ids.transform);
    appendEnvelope(archive, item, "envelope", ids.envelope, ids.defaultValue, Aspect::Absent);
    archive.fields(item).string("scriptRole", "").number("editTime", 1.0);
    archive.fields(archive.appendObject(item, "outline", "Types::Pen", ids.pen))
        .uint32("color", 0)
        .int32("width", 0)
        .boolean("enabled", false);
    archive.fields(item).boolean("editable", true).int32("features", 4);
    for (const char* name : {"textWidth", "arcRadius", "from", "to", "intro", "outro"})
        archive.fields(item).number(name, 0.0);
    archive.fields(archive.appendObject(item, "dropShadow", "Overlay::DropShadow", ids.shadow))
        .boolean("enabled", false)
        .uint32("color", 0)
        .int32("offsetX", 0)
        .int32("offsetY", 0)
        .int32("blurRadius", 0);
}

void appendPreset(ArchiveEditor& archive, const QDomElement& top, const TitleIds& ids) {
    const QDomElement preset = archive.appendObject(top, Words::RootObject, "Overlay::Preset", ids.preset);
    archive.fields(preset).int32("type", 1).string("scriptId", "TitleStandard").number("scriptSpeed", 1.0);
    appendItem(archive, archive.appendItem(preset, "items"), ids);
    archive.fields(preset)
        .string("tag", "SimpleText")
        .string("description", "Desc SimpleText")
        .int64("sourceDuration", 0);
}

void appendClip(ArchiveEditor& archive, const QDomElement& top, long long timelineId, const TitleIds& ids) {
    archive.fields(archive.appendObject(top, Words::RootObject, "Timeline::Clip", ids.clip))
        .reference("timeline", timelineId)
        .int32("type", 4)
        .string("name", "Default name")
        .boolean("enabled", true)
        .reference("overlay", ids.preset)
        .reference("quiz", 0)
        .reference("file", 0)
        .reference("nestedTimeline", 0)
        .int32("volume", 100)
        .reference("volumeEnvelope", 0)
        .boolean("volumeNormalize", false)
        .reference("cropEnvelope", 0)
        .reference("moveEnvelope", 0)
        .boolean("broken", false)
        .boolean("unlimitedDuration", true)
        .int64("sourceDuration", titleDuration)
        .array("effects")
        .reference("rhythm", 0)
        .reference("stabilization", 0)
        .int32("mediaTrack", 0)
        .array("labels");
}

} // namespace

long long appendTitleClip(ArchiveEditor& archive, const QDomElement& top, long long timelineId) {
    const TitleIds ids = newIds(archive);
    declareTitle(archive, ids);
    appendPreset(archive, top, ids);
    appendClip(archive, top, timelineId, ids);
    return ids.clip;
}

} // namespace Project::Internal
