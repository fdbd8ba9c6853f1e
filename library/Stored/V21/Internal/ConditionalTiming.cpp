#include "Stored/V21/Internal/ConditionalTiming.h"

#include "Stored/V21/Internal/Time.h"

#include <QHash>

#include <glog/logging.h>

namespace Stored::V21::Internal {
namespace {

const QString beginName = QStringLiteral("begin");

/// The timing of one animation.
struct NodeTimeParams {
    QDomNode node; ///< set only when `begin` refers to another animation
    QString refId;
    bool fromBegin = false; ///< the reference says ".begin", not ".end"
    int offsetMs = 0;
    int beginMs = -1; ///< -1 until resolved, as the end
    int endMs = -1;
};

/// What stands behind the first "+", or else behind the first "-", which counts backwards. The whole of `begin` is
/// searched, so that such a character in the id decides: this is wanted.
int offsetIn(const QString& begin) {
    const int plus = begin.indexOf(QLatin1Char('+'));
    if (plus >= 0)
        return timeMs(begin.mid(plus + 1));
    const int minus = begin.indexOf(QLatin1Char('-'));
    return minus >= 0 ? difference(0, timeMs(begin.mid(minus + 1))) : 0;
}

/// A null node, which a missing reference gives, begins and ends at 0.
NodeTimeParams timingOf(const QDomElement& animation) {
    NodeTimeParams timing;
    const QString begin = animation.attribute(beginName).trimmed();
    int reference = begin.indexOf(QStringLiteral(".begin"));
    timing.fromBegin = reference >= 0;
    if (!timing.fromBegin)
        reference = begin.indexOf(QStringLiteral(".end"));
    timing.refId = begin.left(std::max(reference, 0));
    if (timing.refId.isEmpty()) {
        timing.beginMs = timeMs(begin);
        timing.endMs = sum(timing.beginMs, timeMs(animation.attribute(QStringLiteral("dur"))));
    } else {
        timing.node = animation;
        timing.offsetMs = offsetIn(begin);
    }
    return timing;
}

class Resolver {
public:
    explicit Resolver(const std::vector<QDomElement>& animations)
        : m_animations(animations), m_states(animations.size(), State::Untouched) {
        for (int number = 0; number < static_cast<int>(animations.size()); ++number) {
            const QString id = animation(number).attribute(QStringLiteral("id"));
            if (!id.isEmpty() && !m_numbers.contains(id))
                m_numbers.insert(id, number);
        }
    }

    /// Resolves an animation and before it, with a stack of our own, all that it depends on.
    void resolve(int number) {
        std::vector<int> open{number};
        while (!open.empty()) {
            const int current = open.back();
            state(current) = State::Open;
            const NodeTimeParams timing = timingOf(animation(current));
            if (timing.beginMs == -1) {
                int referenced = m_numbers.value(timing.refId, -1);
                if (referenced >= 0 && state(referenced) == State::Untouched) {
                    open.push_back(referenced);
                    continue;
                }
                if (referenced >= 0 && state(referenced) == State::Open) {
                    LOG(ERROR) << "conditional timing refers to itself";
                    referenced = -1;
                }
                setBegin(timing, timingOf(referenced < 0 ? QDomElement() : animation(referenced)));
            }
            state(current) = State::Resolved;
            open.pop_back();
        }
    }

private:
    enum class State { Untouched, Open, Resolved };

    const QDomElement& animation(int number) const { return m_animations[static_cast<std::size_t>(number)]; }
    State& state(int number) { return m_states[static_cast<std::size_t>(number)]; }

    static void setBegin(const NodeTimeParams& timing, const NodeTimeParams& referenced) {
        QDomElement animation = timing.node.toElement();
        if (animation.isNull()) // a `begin` of -1ms only looks unresolved
            return;
        const int begin = sum(timing.offsetMs, timing.fromBegin ? referenced.beginMs : referenced.endMs);
        animation.setAttribute(beginName, QString::number(begin) + QStringLiteral("ms"));
    }

    const std::vector<QDomElement>& m_animations;
    std::vector<State> m_states;
    QHash<QString, int> m_numbers; ///< by id, the first of each
};

} // namespace

bool resolveConditionalTiming(const std::vector<QDomElement>& animations) {
    std::vector<int> conditional;
    for (std::size_t number = 0; number < animations.size(); ++number) {
        if (timingOf(animations[number]).beginMs == -1)
            conditional.push_back(static_cast<int>(number));
    }
    if (conditional.empty())
        return false;
    Resolver resolver(animations);
    for (const int number : conditional)
        resolver.resolve(number);
    return true;
}

} // namespace Stored::V21::Internal
