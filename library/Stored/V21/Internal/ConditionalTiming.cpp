#include "Stored/V21/Internal/ConditionalTiming.h"

#include "Stored/V21/Internal/Time.h"

#include <QHash>

#include <glog/logging.h>

namespace Stored::V21::Internal {
namespace {

const QString beginName = QStringLiteral("begin");

/// The timing of one animation.
struct NodeTimeParams {
    QDomNode node; ///< set only if `begin` refers to another animation
    QString refId;
    bool fromBegin = false; ///< the reference ends with ".begin", not ".end"
    int offsetMs = 0;
    int beginMs = -1; ///< -1 until resolved, as is `endMs`
    int endMs = -1;
};

/// The offset: the text after the first "+", or else, as a negative offset, after the first "-". Quirk: all
/// of `begin` is searched, so a "+" or "-" in the id counts.
int offsetIn(const QString& begin) {
    const int plus = begin.indexOf(QLatin1Char('+'));
    if (plus >= 0)
        return timeMs(begin.mid(plus + 1));
    const int minus = begin.indexOf(QLatin1Char('-'));
    return minus >= 0 ? difference(0, timeMs(begin.mid(minus + 1))) : 0;
}

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
    explicit Resolver(const std::vector<QDomElement>& animations) : m_states(animations.size()) {
        // Each is read once, not at each reference to it: the text may be long.
        for (const QDomElement& animation : animations) {
            const QString id = animation.attribute(QStringLiteral("id"));
            if (!id.isEmpty() && !m_numbers.contains(id))
                m_numbers.insert(id, static_cast<int>(m_timings.size()));
            m_timings.push_back(timingOf(animation));
        }
    }

    bool resolveAll() {
        std::vector<int> conditional;
        for (int number = 0; number < static_cast<int>(m_timings.size()); ++number) {
            if (timing(number).beginMs == -1)
                conditional.push_back(number);
        }
        for (const int number : conditional)
            resolve(number);
        return !conditional.empty();
    }

private:
    enum class State { Untouched, Open, Resolved };

    /// Resolves an animation, and before it all animations that it depends on. Uses a list in place of
    /// recursion.
    void resolve(int number) {
        std::vector<int> open{number};
        while (!open.empty()) {
            const int current = open.back();
            state(current) = State::Open;
            if (timing(current).beginMs == -1) {
                int referenced = m_numbers.value(timing(current).refId, -1);
                if (referenced >= 0 && state(referenced) == State::Untouched) {
                    open.push_back(referenced);
                    continue;
                }
                if (referenced >= 0 && state(referenced) == State::Open) {
                    LOG(ERROR) << "conditional timing refers to itself";
                    referenced = -1;
                }
                setBegin(timing(current), referenced);
            }
            state(current) = State::Resolved;
            open.pop_back();
        }
    }

    /// The begin or the end of an animation; 0 for a missing one, the number -1.
    void setBegin(NodeTimeParams& timing, int referenced) {
        QDomElement animation = timing.node.toElement();
        if (animation.isNull()) // a `begin` of -1ms looks as if unresolved
            return;
        int ms = 0;
        if (referenced >= 0)
            ms = timing.fromBegin ? this->timing(referenced).beginMs : this->timing(referenced).endMs;
        animation.setAttribute(beginName, QString::number(sum(timing.offsetMs, ms)) + QStringLiteral("ms"));
        timing = timingOf(animation);
    }

    NodeTimeParams& timing(int number) { return m_timings[static_cast<std::size_t>(number)]; }
    State& state(int number) { return m_states[static_cast<std::size_t>(number)]; }

    std::vector<NodeTimeParams> m_timings;
    std::vector<State> m_states;
    QHash<QString, int> m_numbers; ///< by id; of several the first
};

} // namespace

bool resolveConditionalTiming(const std::vector<QDomElement>& animations) {
    return Resolver(animations).resolveAll();
}

} // namespace Stored::V21::Internal
