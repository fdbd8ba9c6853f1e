#pragma once

// Arithmetic on ids, sizes, indexes and times that come from files: it wraps instead of overflowing.

namespace Archive::Internal {

/// `number` + 1; the greatest number wraps.
constexpr long long plusOne(long long number) {
    return static_cast<long long>(static_cast<unsigned long long>(number) + 1U);
}

// Sums and differences of times; results out of range wrap.

constexpr long long wrappingSum(long long a, long long b) {
    return static_cast<long long>(static_cast<unsigned long long>(a) + static_cast<unsigned long long>(b));
}

constexpr long long wrappingDifference(long long a, long long b) {
    return static_cast<long long>(static_cast<unsigned long long>(a) - static_cast<unsigned long long>(b));
}

/// Increments the greatest object id and gives the new one.
constexpr long long nextId(long long& greatest) {
    greatest = plusOne(greatest);
    return greatest;
}

} // namespace Archive::Internal
