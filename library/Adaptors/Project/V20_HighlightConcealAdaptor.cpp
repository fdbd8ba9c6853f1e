#include "Adaptors/Project/V20_HighlightConcealAdaptor.h"

#include "Archive/Internal/ArchiveEditor.h"
#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/Reading.h"
#include "Archive/Internal/TransformedEffects.h"
#include "Archive/Internal/Transforms.h"

#include <map>

using namespace Archive::Internal;

namespace Project {
namespace {

struct Kind {
    const char* effectClass;
    const char* frameClass;
    const char* number;
    const char* tag;
};

// clang-format off
constexpr Kind highlight = {"Effect::MaskHighlight", "Effect::FrameHighlight", "64", "effect_mask_highlight"};
constexpr Kind conceal   = {"Effect::MaskConceal",   "Effect::FrameConceal",   "63", "effect_mask_conceal"};
// clang-format on

constexpr const char* oldFields[] = {
    "rect", "maskType", "frameType", "borderType", "width", "invertType", "opacity", "presetId",
};

constexpr double pixelSize = 0.5;

/// The fields of an "Effect::Mask".
struct Mask {
    explicit Mask(const QDomElement& effect);

    const Kind& kind() const { return isInverted ? highlight : conceal; }

    int maskType;
    int frameType;
    bool hasOutline;
    bool isInverted;
    double width;
    double opacity;
    Stored::V14::Transform transform; ///< the position of its rectangle in the frame
};

/// The matrix that reduces the whole frame to the rectangle. Each axis has its own scale.
ScaleAndMove placement(const QDomElement& rect) {
    const double left = doubleIn(rect, "left");
    const double top = doubleIn(rect, "top");
    const double right = doubleIn(rect, "right");
    const double bottom = doubleIn(rect, "bottom");
    return {right - left, bottom - top, (right + left) * 0.5 - 0.5, (bottom + top) * 0.5 - 0.5};
}

Mask::Mask(const QDomElement& effect)
    : maskType(int32In(effect, "maskType")), frameType(int32In(effect, "frameType")),
      hasOutline(int32In(effect, "borderType") == 0), isInverted(int32In(effect, "invertType") != 0),
      width(doubleIn(effect, "width")), opacity(doubleIn(effect, "opacity")),
      transform(placement(childOf(effect, "rect")).matrix()) {}

void renameEffect(ArchiveEditor& archive, const QDomElement& effect, const Kind& kind) {
    const QDomElement object = innerBase(effect);
    archive.setField(object, "id", kind.number);
    archive.setField(object, "uniqueId", kind.number);
    archive.setField(object, "tag", kind.tag);
    archive.setType(effect, kind.effectClass);
}

void addOpacityAndSmoothness(Fields fields, const Mask& mask) {
    fields.number("opacity", mask.opacity).number("smoothness", mask.hasOutline ? 0.0 : mask.width);
}

/// Adds the list of frames with a single frame, which is returned.
QDomElement appendFrame(ArchiveEditor& archive, const QDomElement& effect, const Kind& kind,
                        long long frameId) {
    const QDomElement frames = archive.fields(effect).array("frames").last();
    return archive.appendObject(archive.appendItem(frames), Words::Data, kind.frameClass, frameId);
}

/// A highlight has method, opacity and smoothness in the effect, a conceal has them in the frame.
void addFields(ArchiveEditor& archive, const QDomElement& effect, const Mask& mask, long long frameId,
               long long transformId) {
    if (mask.isInverted) {
        addOpacityAndSmoothness(archive.fields(effect), mask);
        archive.fields(effect).int32("method", mask.maskType);
    }
    const QDomElement frame = appendFrame(archive, effect, mask.kind(), frameId);
    if (!mask.isInverted)
        archive.fields(frame).int32("method", mask.maskType);
    archive.fields(frame).int32("shape", mask.frameType).transform("transform", mask.transform, transformId);
    if (!mask.isInverted)
        addOpacityAndSmoothness(archive.fields(frame), mask);
    archive.fields(frame).boolean("outline", mask.hasOutline);
    if (!mask.isInverted)
        archive.fields(frame).number("pixelSize", pixelSize);
}

void convertMask(ArchiveEditor& archive, const QDomElement& effect, long long effectId) {
    const Mask mask(effect);
    archive.undeclare(effectId);
    archive.undeclare(wrappedIdOf(childOf(effect, "rect")));
    renameEffect(archive, effect, mask.kind());
    for (const char* field : oldFields)
        archive.removeField(effect, field);

    const long long frameId = archive.nextId();
    const long long transformId = archive.nextId();
    addFields(archive, effect, mask, frameId, transformId);

    archive.declareAs(effectId, mask.kind().effectClass, 0, {frameId});
    // Quirk: a conceal frame is declared as a highlight frame, too, unlike the type of its object.
    archive.declareAs(frameId, highlight.frameClass, effectId, {transformId});
    archive.declareAs(transformId, transformClass, frameId);

    archive.append(archive.root(), effect); // moves it to the end
}

} // namespace

void V20_HighlightConcealAdaptor::convert(ArchiveEditor& archive) {
    QDomElement predeclarator = archive.lastRootObject(Words::Predeclarator);
    // Quirk: the records are those in the first descendant of that name, not in the first child.
    archive.setPredeclarations(firstDescendant(predeclarator, Words::predeclarations));
    std::map<unsigned long long, QDomElement>
        effects; // by id, the order of conversion; if an id occurs twice, the last one
    for (const QDomElement& effect : archive.rootObjects("Effect::Mask"))
        effects[Archive::objectIdOf(effect)] = effect;
    if (!effects.empty())
        archive.startIds(); // so that ids of removed objects are not used again
    for (const auto& [id, effect] : effects)
        convertMask(archive, effect, static_cast<long long>(id));
}

} // namespace Project
