#include "Adaptors/Project/V20_HighlightConcealAdaptor.h"

#include "Archive/Internal/EffectObject.h"
#include "Archive/Internal/ObjectIds.h"
#include "Archive/Internal/Outline.h"
#include "Archive/Internal/PredeclarationEdits.h"
#include "Archive/Internal/StoredDouble.h"
#include "Archive/Internal/Transforms.h"
#include "Archive/Internal/Walk.h"
#include "Archive/Xml.h"

#include <QTransform>

#include <glog/logging.h>

#include <map>

namespace Words = Archive::Words;

using Archive::Internal::doubleIn;
using Archive::Internal::PredeclarationEdits;

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

struct Mask {
    int maskType = 0;
    int frameType = 0;
    int outline = 0;
    int invertType = 0;
    double width = 0.0;
    double opacity = 0.0;
    double left = 0.0;
    double top = 0.0;
    double right = 0.0;
    double bottom = 0.0;
};

struct MaskEffect {
    QDomElement element;
    Mask mask;
};

int intIn(const QDomElement& parent, const QString& name) {
    return Archive::valueOf(parent, name).toInt();
}

Mask readMask(const QDomElement& effect) {
    const QDomElement rect = effect.firstChildElement(QStringLiteral("rect"));
    Mask mask;
    mask.maskType = intIn(effect, QStringLiteral("maskType"));
    mask.frameType = intIn(effect, QStringLiteral("frameType"));
    mask.outline = intIn(effect, QStringLiteral("borderType")) == 0 ? 1 : 0;
    mask.invertType = intIn(effect, QStringLiteral("invertType"));
    mask.width = doubleIn(effect, QStringLiteral("width"));
    mask.opacity = doubleIn(effect, QStringLiteral("opacity"));
    mask.left = doubleIn(rect, QStringLiteral("left"));
    mask.top = doubleIn(rect, QStringLiteral("top"));
    mask.right = doubleIn(rect, QStringLiteral("right"));
    mask.bottom = doubleIn(rect, QStringLiteral("bottom"));
    return mask;
}

/// The rectangle's place in the frame: not inverted, and width and height scale apart.
Stored::V14::Transform placement(const Mask& mask) {
    return Archive::Internal::toStored(QTransform::fromScale(mask.right - mask.left, mask.bottom - mask.top) *
                                       QTransform::fromTranslate((mask.right + mask.left) * 0.5 - 0.5,
                                                                 (mask.bottom + mask.top) * 0.5 - 0.5));
}

void rename(QDomElement& effect, const Kind& kind) {
    const QDomElement object = Archive::Internal::innerBase(effect);
    Archive::setValueOf(object, QStringLiteral("id"), QString::fromLatin1(kind.number));
    Archive::setValueOf(object, QStringLiteral("uniqueId"), QString::fromLatin1(kind.number));
    Archive::setValueOf(object, QStringLiteral("tag"), QString::fromLatin1(kind.tag));
    Archive::Internal::setType(effect, QString::fromLatin1(kind.effectClass));
}

void removeOldFields(QDomElement& effect) {
    for (const char* field : oldFields)
        Archive::removeFirstChild(effect, QString::fromLatin1(field));
}

class Impl {
public:
    explicit Impl(QDomDocument& document) : m_document(document), m_ids(document) {}

    bool parse();
    void adapt();

private:
    void convert(unsigned long long unsignedId, MaskEffect& effect, PredeclarationEdits& predeclares);
    void appendHighlight(QDomElement& effect, const Mask& mask, long long frameId, long long transformId);
    void appendConceal(QDomElement& effect, const Mask& mask, long long frameId, long long transformId);
    QDomElement appendFrame(QDomElement& effect, const Kind& kind, long long frameId);
    void appendDouble(QDomElement& parent, const QString& name, double value);
    void appendInt32(QDomElement& parent, const QString& name, int value);
    void appendOpacityAndSmoothness(QDomElement& parent, const Mask& mask);
    void appendShapeAndTransform(QDomElement& frame, const Mask& mask, long long transformId);
    void appendOutline(QDomElement& frame, const Mask& mask);

    QDomDocument& m_document;
    QDomElement m_archive;
    QDomElement m_predeclarations;
    std::map<unsigned long long, MaskEffect> m_effects;
    Archive::Internal::ObjectIds m_ids;
};

bool Impl::parse() {
    m_archive = Archive::Internal::soleArchive(m_document);
    if (m_archive.isNull()) {
        LOG(ERROR) << "<Archive> element not found";
        return false;
    }
    for (const auto& [object, type] : Archive::Internal::typedElements(m_archive, Words::RootObject)) {
        if (type == Words::Predeclarator)
            m_predeclarations = Archive::Internal::firstDescendant(object, Words::predeclarations);
        else if (type == QLatin1String("Effect::Mask"))
            m_effects[Archive::objectIdOf(object)] = {object, readMask(object)};
    }
    return true;
}

void Impl::adapt() {
    if (m_effects.empty())
        return;
    m_ids.greatest(); // the ids of the objects that are about to go count as well
    PredeclarationEdits predeclares(m_document, m_predeclarations);
    for (auto& [id, effect] : m_effects)
        convert(id, effect, predeclares);
    predeclares.finish();
}

void Impl::convert(unsigned long long unsignedId, MaskEffect& effect, PredeclarationEdits& predeclares) {
    const auto effectId = static_cast<long long>(unsignedId);
    const Kind& kind = effect.mask.invertType != 0 ? highlight : conceal;
    QDomElement& element = effect.element;

    predeclares.remove(effectId);
    predeclares.remove(
        static_cast<long long>(Archive::objectIdOf(element.firstChildElement(QStringLiteral("rect")))));
    rename(element, kind);
    removeOldFields(element);

    const long long frameId = m_ids.next();
    const long long transformId = m_ids.next();
    if (&kind == &highlight)
        appendHighlight(element, effect.mask, frameId, transformId);
    else
        appendConceal(element, effect.mask, frameId, transformId);

    long long& maxId = m_ids.greatest();
    predeclares.add(QString::fromLatin1(kind.effectClass), 0, maxId, effectId, {frameId});
    // A conceal frame, too, is declared as a highlight frame, against what its object says.
    predeclares.add(QString::fromLatin1(highlight.frameClass), effectId, maxId, frameId, {transformId});
    predeclares.add(QStringLiteral("Types::Transform"), frameId, maxId, transformId, {});

    Archive::Internal::Outline::removed(element);
    m_archive.appendChild(element); // from its old place to the end
}

void Impl::appendHighlight(QDomElement& effect, const Mask& mask, long long frameId, long long transformId) {
    appendOpacityAndSmoothness(effect, mask);
    appendInt32(effect, QStringLiteral("method"), mask.maskType);
    QDomElement frame = appendFrame(effect, highlight, frameId);
    appendShapeAndTransform(frame, mask, transformId);
    appendOutline(frame, mask);
}

void Impl::appendConceal(QDomElement& effect, const Mask& mask, long long frameId, long long transformId) {
    QDomElement frame = appendFrame(effect, conceal, frameId);
    appendInt32(frame, QStringLiteral("method"), mask.maskType);
    appendShapeAndTransform(frame, mask, transformId);
    appendOpacityAndSmoothness(frame, mask);
    appendOutline(frame, mask);
    appendDouble(frame, QStringLiteral("pixelSize"), pixelSize);
}

QDomElement Impl::appendFrame(QDomElement& effect, const Kind& kind, long long frameId) {
    QDomElement frame =
        Archive::createObject(m_document, Words::Data, QString::fromLatin1(kind.frameClass), frameId);
    QDomElement frames = Archive::createArray(m_document, QStringLiteral("frames"), 0);
    Archive::appendArrayElement(m_document, frames).appendChild(frame);
    effect.appendChild(frames);
    return frame;
}

void Impl::appendDouble(QDomElement& parent, const QString& name, double value) {
    parent.appendChild(Archive::createDouble(m_document, name, value));
}

void Impl::appendInt32(QDomElement& parent, const QString& name, int value) {
    parent.appendChild(Archive::createInt32(m_document, name, value));
}

void Impl::appendOpacityAndSmoothness(QDomElement& parent, const Mask& mask) {
    appendDouble(parent, QStringLiteral("opacity"), mask.opacity);
    appendDouble(parent, QStringLiteral("smoothness"), mask.outline != 0 ? 0.0 : mask.width);
}

void Impl::appendShapeAndTransform(QDomElement& frame, const Mask& mask, long long transformId) {
    appendInt32(frame, QStringLiteral("shape"), mask.frameType);
    frame.appendChild(
        Archive::value2element(m_document, QStringLiteral("transform"), placement(mask), transformId));
}

void Impl::appendOutline(QDomElement& frame, const Mask& mask) {
    frame.appendChild(Archive::createBool(m_document, QStringLiteral("outline"), mask.outline != 0));
}

} // namespace

void V20_HighlightConcealAdaptor::adapt(QDomDocument& document) {
    Impl impl(document);
    if (impl.parse())
        impl.adapt();
}

} // namespace Project
