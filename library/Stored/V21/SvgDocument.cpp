#include "Stored/V21/SvgDocument.h"

#include "Stored/V21/Internal/AnimationDuration.h"
#include "Stored/V21/Internal/ConditionalTiming.h"
#include "Stored/V21/Internal/KeyValues.h"
#include "Stored/V21/Internal/Markup.h"
#include "Stored/V21/Internal/NodeTable.h"
#include "Stored/V21/Internal/Time.h"

#include <QDomElement>
#include <QRegularExpression>

#include <glog/logging.h>

#include <algorithm>

namespace Stored::V21 {
namespace {

using Internal::NodeTable;

const QString idName = QStringLiteral("id");
const QString fillName = QStringLiteral("fill");
const QString strokeName = QStringLiteral("stroke");
const QString visibilityName = QStringLiteral("visibility");
const QString visible = QStringLiteral("visible");
const QString stopColorName = QStringLiteral("stop-color");
const QString posXName = QStringLiteral("posX");
const QString posYName = QStringLiteral("posY");
const QString retain = QStringLiteral("retain");

const QString animateTag = QStringLiteral("animate");
const QString animateMotionTag = QStringLiteral("animateMotion");
const QString animateColorTag = QStringLiteral("animateColor");
const QString animateTransformTag = QStringLiteral("animateTransform");
const QString adjustablePointTag = QStringLiteral("adjustablePoint");

// Points are filled in one after the other, and one may bring in the names of others: the text could double with each
// point, and all of it is searched for each.
constexpr qint64 maxGrowth = 4;
constexpr qint64 maxGrowthOfSmallText = qint64(1024) * 1024;
constexpr qint64 maxSearchedBytes = qint64(1) << 28;

// A stop counts once for each gradient around it, though a gradient in another one is no SVG.
constexpr std::size_t maxGradientsAround = 8;

bool holdsTag(const QString& text, const QString& tag) {
    return text.contains(QRegularExpression(QStringLiteral("(\\W|^)<") + tag + QStringLiteral("(\\W|$)")));
}

// The text before the DOM.

/// The three numbers of an rgba() as a colour. A number below 16 gives a single digit: this is wanted.
QByteArray colorOf(const QList<QByteArray>& parts) {
    QByteArray color("#");
    for (int component = 0; component < 3; ++component)
        color += QByteArray::number(parts[component].trimmed().toUInt(), 16);
    return color;
}

/// Replaces rgba() by what Qt knows as a colour, in attributes that stand in double quotes.
QByteArray withoutRgba(const QByteArray& text) {
    const QByteArray mark("\"rgba(");
    const QByteArray endMark(")\"");
    QByteArray result;
    int copied = 0;
    for (int hit = text.indexOf(mark); hit >= 0;) {
        const int end = text.indexOf(endMark, hit + 1);
        if (end < 0)
            break;
        const int arguments = hit + mark.size();
        const QByteArray parts = text.mid(arguments, end - arguments);
        if (parts.count(',') != 3) // counted first: there may be millions
            break;
        const QByteArray color = colorOf(parts.split(','));
        result += text.mid(copied, hit + 1 - copied);
        result += color;
        copied = end + 1;
        // The search goes on where the end stood in the longer text, so it may step over an rgba() close behind: this
        // is wanted.
        const int shortened = end - hit - color.size();
        hit = text.indexOf(mark, end + shortened);
    }
    return result + text.mid(copied);
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

/// -1 for a count that is no number; an empty one is an absent one.
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

// Adjustable attributes.

bool isAnimation(const QString& tag) {
    return tag == animateTag || tag == animateMotionTag || tag == animateColorTag ||
           tag == animateTransformTag;
}

bool isPaint(const QString& value) {
    return value != QLatin1String("none") && value != QLatin1String("currentColor") &&
           value != QLatin1String("inherit") && !value.startsWith(QLatin1String("url"));
}

bool isStyle(const QString& name) {
    return name == fillName || name == strokeName || name == QLatin1String("stroke-opacity") ||
           name == QLatin1String("fill-opacity") || name == QLatin1String("stroke-width");
}

bool isAdjustable(const NodeTable& nodes, int number, const QString& name) {
    const QDomElement element = nodes.node(number).toElement();
    if (!element.hasAttribute(name))
        return false;
    if (element.attribute(idName).contains(retain + name, Qt::CaseInsensitive))
        return false;
    if (name == fillName && isAnimation(element.tagName())) // there it is no paint
        return false;
    if ((name == fillName || name == strokeName) && !isPaint(element.attribute(name)))
        return false;
    return !(isStyle(name) && nodes.isUnderClipPath(number));
}

// Gradients.

QString moved(const QColor& color, const std::vector<int>& offsets) {
    const auto channel = [](int value) { return std::clamp(value, 0, 255); };
    return QColor(channel(color.red() + offsets[0]), channel(color.green() + offsets[1]),
                  channel(color.blue() + offsets[2]))
        .name();
}

} // namespace

SvgDocument::SvgDocument(const QString& text)
    : m_content(withoutRgba(text.toUtf8())), m_nodes(std::make_unique<NodeTable>()) {
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

/// Parses the buffer, unless the DOM holds what is in it: whatever is written into the buffer makes other bytes of
/// it, since `m_parsed` shares them.
void SvgDocument::parse() {
    if (m_parsed.constData() == data().constData() && m_parsed.size() == data().size())
        return;
    seek(0);
    const bool wasParsed = Internal::parse(m_dom, Internal::decoded(readAll()));
    LOG_IF(ERROR, !wasParsed) << Internal::refusal;
    m_parsed = data();
    *m_nodes = NodeTable(m_dom.documentElement());
}

/// The buffer is not cut first: if the text got shorter, the end of the old one stays behind it. This is wanted.
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

/// A `use` takes over the `visibility` of the element in the `defs` that it shows. All `use`s of an id take the same
/// value, that of the last such element, and one of them may be such an element itself. So each id keeps its latest
/// value, and at the end each `use` is set once.
void SvgDocument::carryVisibilityOutOfDefs() {
    parse();
    struct Shown {
        std::vector<int> uses; ///< those that stand under no `visibility`
        QString value;         ///< null until an element of the id was found
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
        QString value;       ///< null for an element without `visibility`
        const Shown* itself; ///< where it is a `use` that takes over another's
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

void SvgDocument::collectAdjustableAttributes(const QStringList& names) {
    parse();
    m_adjustable.clear();
    std::vector<std::vector<std::shared_ptr<AdjustableAttribute>>> found(
        static_cast<std::size_t>(names.size()));
    for (int number = 0; number < m_nodes->size(); ++number) {
        SvgElement place;
        bool isPlaced = false;
        for (int name = 0; name < names.size(); ++name) {
            if (!isAdjustable(*m_nodes, number, names[name]))
                continue;
            if (!isPlaced)
                place = m_nodes->place(number);
            isPlaced = true;
            found[static_cast<std::size_t>(name)].push_back(
                std::make_shared<AdjustableAttribute>(place, m_nodes->node(number), names[name], place.id));
        }
    }
    for (int name = 0; name < names.size(); ++name)
        m_adjustable[names[name]] = std::move(found[static_cast<std::size_t>(name)]);
}

void SvgDocument::collectGradientStops() {
    m_gradientStops.clear();
    m_stopsInDocumentOrder.clear();
    parse();
    std::vector<int> around; // where the gradients end in which this one stands
    for (const int gradient : m_nodes->elements(QStringLiteral("linearGradient"))) {
        while (!around.empty() && around.back() <= gradient)
            around.pop_back();
        if (around.size() == maxGradientsAround) {
            LOG(ERROR) << "gradients stand too deep in one another";
            break;
        }
        around.push_back(m_nodes->behind(gradient));

        const QString id = m_nodes->node(gradient).toElement().attribute(idName);
        if (id.contains(retain, Qt::CaseInsensitive))
            continue;
        QColor previous;
        for (const int number : m_nodes->elementsBelow(gradient, QStringLiteral("stop"))) {
            const QDomElement stop = m_nodes->node(number).toElement();
            if (!stop.hasAttribute(stopColorName))
                continue;
            const QColor color = Internal::colorFrom(stop.attribute(stopColorName));
            std::vector<int> offsets{0, 0, 0};
            // The difference to the stop before, not to the first one: this is wanted.
            if (previous.isValid())
                offsets = {color.red() - previous.red(), color.green() - previous.green(),
                           color.blue() - previous.blue()};
            const auto attribute =
                std::make_shared<AdjustableAttribute>(m_nodes->place(number), stop, stopColorName, id);
            m_gradientStops[attribute] = offsets;
            m_stopsInDocumentOrder.push_back(attribute);
            previous = color;
        }
    }
}

void SvgDocument::applyColorToGradients(const QColor& color) {
    // By pointer the order would be another on each run, and a stop below two gradients counts twice.
    for (const auto& attribute : m_stopsInDocumentOrder) {
        QDomElement stop = m_nodes->resolve(attribute->element).toElement();
        if (!stop.isNull())
            stop.setAttribute(stopColorName, moved(color, m_gradientStops.at(attribute)));
    }
    if (!m_gradientStops.empty())
        save();
}

void SvgDocument::setAttributeValue(const QString& name, const QString& value, const QString& idFilter) {
    const auto entry = m_adjustable.find(name);
    if (entry == m_adjustable.end())
        return;
    bool isHit = false;
    for (const auto& attribute : entry->second) {
        if (!idFilter.isEmpty() && attribute->id != idFilter)
            continue;
        isHit = true;
        QDomElement element = m_nodes->resolve(attribute->element).toElement();
        if (!element.isNull())
            element.setAttribute(attribute->name, value);
    }
    if (isHit)
        save();
    if (name == posXName || name == posYName)
        refreshAdjustablePoints();
}

void SvgDocument::refreshAdjustablePoints() {
    QByteArray filledIn = contentWithPointsFilledIn();
    setStorage(filledIn);
    parse();
    for (const auto& animation : m_animations) {
        // Only these have anything to refresh; by the table it takes no time that grows with the siblings.
        if (auto* point = dynamic_cast<AnimatableAttributeAdjustablePoint*>(animation.get()))
            point->refresh(*m_nodes);
    }
    setStorage(m_content);
    parse();
}

QByteArray SvgDocument::contentWithPointsFilledIn() const {
    const qint64 maxSize = maxGrowthOfSmallText + maxGrowth * m_content.size();
    qint64 searched = 0;
    QByteArray filledIn = m_content;
    const auto occurs = [&](const QByteArray& text) {
        searched += filledIn.size();
        return filledIn.contains(text);
    };

    struct Coordinate {
        QString name;
        QByteArray ending; ///< of each reference
        bool isNamed;      ///< by anything that is not filled in yet
    };
    Coordinate coordinates[] = {{posXName, '.' + posXName.toUtf8(), false},
                                {posYName, '.' + posYName.toUtf8(), false}};
    const auto seeWhatIsNamed = [&] {
        for (Coordinate& coordinate : coordinates)
            coordinate.isNamed = occurs(coordinate.ending);
    };

    seeWhatIsNamed();
    for (const auto& point : m_adjustablePoints) {
        const QDomElement element = m_nodes->resolve(*point).toElement();
        for (const Coordinate& coordinate : coordinates) {
            const QByteArray reference = point->id.toUtf8() + coordinate.ending;
            if (!coordinate.isNamed || (searched <= maxSearchedBytes && !occurs(reference)))
                continue;
            const QByteArray value = element.attribute(coordinate.name).toUtf8();
            const qint64 size =
                filledIn.size() + qint64(filledIn.count(reference)) * (value.size() - reference.size());
            if (size > maxSize || searched > maxSearchedBytes) {
                LOG(ERROR) << "adjustable points name one another too often";
                return m_content;
            }
            filledIn.replace(reference, value);
            seeWhatIsNamed();
        }
    }
    return filledIn;
}

} // namespace Stored::V21
