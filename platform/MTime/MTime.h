#pragma once

#include <compare>
#include <cstdint>

/// A point in time or a length of time, in whole milliseconds. Arithmetic wraps on overflow.
class MTime {
public:
    constexpr MTime() = default;
    constexpr explicit MTime(std::int64_t count) : m_count(count) {}

    static constexpr MTime fromMs(std::int64_t milliseconds) { return MTime(milliseconds); }

    /// The raw number, as documents store it.
    constexpr std::int64_t count() const { return m_count; }
    constexpr std::int64_t toMs() const { return m_count; }

    friend constexpr MTime operator+(MTime a, MTime b) {
        return MTime(static_cast<std::int64_t>(bits(a) + bits(b)));
    }
    friend constexpr MTime operator-(MTime a, MTime b) {
        return MTime(static_cast<std::int64_t>(bits(a) - bits(b)));
    }
    friend constexpr bool operator==(MTime, MTime) = default;
    friend constexpr auto operator<=>(MTime, MTime) = default;

private:
    // Times come from files: unsigned arithmetic keeps an overflow defined.
    static constexpr std::uint64_t bits(MTime time) { return static_cast<std::uint64_t>(time.m_count); }

    std::int64_t m_count = 0;
};
