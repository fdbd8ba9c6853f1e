#include "Stored/V21/SvgDocument.h"

#include "Stored/V21/Internal/AnimationDuration.h"
#include "Stored/V21/Internal/ConditionalTiming.h"
#include "Stored/V21/Internal/KeyValues.h"
#include "Stored/V21/Internal/Markup.h"
#include "Stored/V21/Internal/Names.h"
#include "Stored/V21/Internal/NodeTable.h"
#include "Stored/V21/Internal/Rgba.h"
#include "Stored/V21/Internal/Time.h"

#include <QDomElement>
#include <QRegularExpression>

#include <glog/logging.h>

#include <algorithm>

namespace Stored::V21 {
namespace {

using namespace Internal::Names;
using Internal::NodeTable;

const QString visible = QStringLiteral("visible");

bool holdsTag(const QString& text, const QString& tag) {
    return text.contains(QRegularExpression(QStringLiteral("(\\W|^)<") + tag + QStringLiteral("(\\W|$)")));
}

// Animations.

std::shared_ptr<AnimatableAttribute> makeAnimation(const SvgElement& place, const QDomNode& target,
                                                   const QString& name, const QStringList& keyValues,
                                                   const SvgElement& animation) {
    const bool namesPoint = std::any_of(keyValues.begin(), keyValues.end(), [](const QString& keyValue) {
        return keyValue.contains(posXName) || keyValue.contains(posYName);
    });
    if (namesPoint)
        return std::make_shared<AnimatableAttributeAdjustablePoint>(place, target, name, animation);

    const QString first = keyValues.first().trimmed();
    if (QColor::isValidColor(first))
        return std::make_shared<AnimatableAttributeColor>(place, target, name, keyValues);
    bool isNumber = false;
    first.toDouble(&isNumber);
    if (isNumber)
        return std::make_shared<AnimatableAttributeFloat>(place, target, name, keyValues);
    if (std::all_of(first.begin(), first.end(), [](QChar c) { return c.isLetter(); }))
        return std::make_shared<AnimatableAttributeText>(place, target, name, keyValues);
    return std::make_shared<AnimatableAttributeFloatList>(place, target, name, keyValues);
}

/// -1 for a count that is no number. An empty count means the same as none.
int repeatCountOf(const QDomElement& animation) {
    const QString text = animation.attribute(QStringLiteral("repeatCount"));
    if (text.isEmpty())
        return 1;
    bool isNumber = false;
    const int count = text.toInt(&isNumber);
    return isNumber ? count : -1;
}

// Visibility.

QString takenOver(const QString& visibility) {
    return visibility == visible ? visible : QStringLiteral("hidden");
}

} // namespace

SvgDocument::SvgDocument(const QString& text)
    : m_content(Internal::withoutRgba(text.toUtf8())), m_nodes(std::make_unique<NodeTable>()) {
    setStorage(m_content);
    m_reader.setDevice(this);
    if (const std::optional<int> duration = Internal::animationDuration(m_reader)) {
        m_durationMs = *duration;
        m_animated = holdsTag(text, animateTag);
        if (m_animated) {
            fixConditionalTiming();
            parseAnimations();
        }
        if (holdsTag(text, adjustablePointTag))
            collectAdjustablePoints();
    }
    collectUseElements();
    findConclusion();
    carryVisibilityOutOfDefs();
    if (!m_adjustablePoints.empty())
        refreshAdjustablePoints();
}

SvgDocument::~SvgDocument() {
    close();
}

void SvgDocument::setStorage(QByteArray& storage) {
    close();
    setBuffer(&storage);
    open(QIODevice::ReadWrite);
}

/// Parses the buffer, unless it has not changed since the last time. `m_parsed` shares the memory of the
/// buffer, so writing into the buffer gives it new memory.
void SvgDocument::parse() {
    if (m_parsed.constData() == data().constData() && m_parsed.size() == data().size())
        return;
    seek(0);
    const bool wasParsed = Internal::parse(m_dom, Internal::decoded(readAll()));
    LOG_IF(ERROR, !wasParsed) << Internal::refusal;
    m_parsed = data();
    *m_nodes = NodeTable(m_dom.documentElement());
}

/// Quirk: the buffer is not truncated: if the text became shorter, the end of the old text stays after it.
void SvgDocument::save() {
    seek(0);
    write(Internal::toUtf8(m_dom));
}

void SvgDocument::fixConditionalTiming() {
    parse();
    std::vector<QDomElement> animations;
    for (const QString& tag : {animateTag, animateColorTag, animateTransformTag}) {
        for (const int number : m_nodes->elements(tag))
            animations.push_back(m_nodes->node(number).toElement());
    }
    if (Internal::resolveConditionalTiming(animations))
        save();
}

void SvgDocument::parseAnimations() {
    parse();
    int greatestEndMs = 0;
    for (const int number : m_nodes->elements(animateTag)) {
        const QDomElement animation = m_nodes->node(number).toElement();
        const QString name = animation.attribute(QStringLiteral("attributeName"));
        if (name.isEmpty())
            continue;
        const int parent = m_nodes->parent(number);
        const QDomNode target = animation.parentNode();
        const SvgElement place =
            parent >= 0 ? m_nodes->place(parent) : SvgElement(target, m_dom.documentElement());
        const auto made =
            makeAnimation(place, target, name, Internal::keyValuesOf(animation), m_nodes->place(number));
        made->beginMs = Internal::timeMs(animation.attribute(QStringLiteral("begin")));
        made->endMs =
            Internal::sum(made->beginMs, Internal::timeMs(animation.attribute(QStringLiteral("dur"))));
        made->repeatCount = repeatCountOf(animation);
        made->freeze = animation.attribute(fillName) == QLatin1String("freeze");
        made->interpolated = animation.attribute(QStringLiteral("calcMode")) != QLatin1String("discrete");
        greatestEndMs = std::max(greatestEndMs, made->endMs);
        m_animations.push_back(made);
    }
    m_durationMs = std::max(m_durationMs, greatestEndMs);
}

void SvgDocument::collectAdjustablePoints() {
    parse();
    for (const int number : m_nodes->elements(adjustablePointTag)) {
        const QDomElement point = m_nodes->node(number).toElement();
        if (!point.attribute(idName).isEmpty() && !point.attribute(posXName).isEmpty() &&
            !point.attribute(posYName).isEmpty())
            m_adjustablePoints.push_back(std::make_shared<SvgElement>(m_nodes->place(number)));
    }
}

void SvgDocument::collectUseElements() {
    parse();
    for (const int number : m_nodes->elements(QStringLiteral("use"))) {
        const QString link = m_nodes->node(number).toElement().attribute(QStringLiteral("xlink:href"));
        if (link.startsWith(QLatin1Char('#')))
            m_useElements[link.mid(1)].push_back(std::make_shared<SvgElement>(m_nodes->place(number)));
    }
}

void SvgDocument::findConclusion() {
    parse();
    m_conclusionMs = 0;
    for (const QString& tag : {animateTag, animateMotionTag, animateColorTag, animateTransformTag}) {
        for (const int number : m_nodes->elements(tag)) {
            const QDomElement animation = m_nodes->node(number).toElement();
            if (animation.attribute(idName) != QLatin1String("CONCLUSION"))
                continue;
            const int beginMs = Internal::timeMs(animation.attribute(QStringLiteral("begin")));
            if (beginMs > 0) {
                m_conclusionMs = Internal::difference(m_durationMs, beginMs);
                break;
            }
        }
        if (m_conclusionMs != 0)
            break;
    }
}

/// A `use` gets the `visibility` of the element in `defs` that it refers to. All `use` elements of an id get
/// the same value, that of the last element with this id. A `use` may be such an element itself. So the
/// latest value is stored by id, and at the end each `use` is set once.
void SvgDocument::carryVisibilityOutOfDefs() {
    parse();
    struct Shown {
        std::vector<int> uses; ///< those without an ancestor that has `visibility`
        QString value;         ///< null until an element with the id is found
    };
    std::map<QString, Shown> shownById;
    std::map<int, const Shown*> shownByUse;
    for (const auto& [id, uses] : m_useElements) {
        Shown& shown = shownById[id];
        for (const auto& use : uses) {
            const int number = use->underVisibility ? -1 : m_nodes->find(*use);
            if (number < 0)
                continue;
            shown.uses.push_back(number);
            shownByUse[number] = &shown;
        }
    }

    struct Source {
        int number;
        QString value;       ///< null if the element has no `visibility`
        const Shown* itself; ///< set if it is a `use` that gets its value from another element
        Shown* shown;
    };
    std::vector<Source> sources;
    for (int number = 0; number < m_nodes->size(); ++number) {
        const QDomElement element = m_nodes->node(number).toElement();
        const auto shown =
            element.hasAttribute(idName) ? shownById.find(element.attribute(idName)) : shownById.end();
        if (shown == shownById.end())
            continue;
        const auto itself = shownByUse.find(number);
        const QString value =
            element.hasAttribute(visibilityName) ? takenOver(element.attribute(visibilityName)) : QString();
        sources.push_back(
            {number, value, itself == shownByUse.end() ? nullptr : itself->second, &shown->second});
    }

    for (const int defs : m_nodes->elements(QStringLiteral("defs"))) {
        auto source = std::lower_bound(sources.begin(), sources.end(), defs,
                                       [](const Source& s, int number) { return s.number < number; });
        for (; source != sources.end() && source->number < m_nodes->behind(defs); ++source) {
            const bool isSet = source->itself && !source->itself->value.isNull();
            const QString& value = isSet ? source->itself->value : source->value;
            if (!value.isNull())
                source->shown->value = value;
        }
    }

    bool isHit = false;
    for (const auto& [id, shown] : shownById) {
        if (shown.value.isNull())
            continue;
        isHit = true;
        for (const int use : shown.uses)
            m_nodes->node(use).toElement().setAttribute(visibilityName, shown.value);
    }
    if (isHit)
        save();
}

} // namespace Stored::V21
