#pragma once

#include <compare>
#include <cstdint>

/// The editor's time, in ticks of a quarter of a millisecond.
class MTime {
public:
    constexpr MTime() = default;
    constexpr explicit MTime(std::int64_t count) : m_ticks(count * 4) {}

    static constexpr MTime fromMs(std::int64_t milliseconds) { return MTime(milliseconds); }

    constexpr std::int64_t count() const { return m_ticks / 4; }
    constexpr std::int64_t toMs() const { return m_ticks / 4; }
    constexpr std::int64_t ticks() const { return m_ticks; }

    friend constexpr MTime operator+(MTime a, MTime b) { return MTime(a.count() + b.count()); }
    friend constexpr MTime operator-(MTime a, MTime b) { return MTime(a.count() - b.count()); }
    friend constexpr bool operator==(MTime, MTime) = default;
    friend constexpr auto operator<=>(MTime, MTime) = default;

private:
    std::int64_t m_ticks = 0;
};
