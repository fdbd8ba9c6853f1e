#pragma once

namespace Archive::Internal {

/// `number` + 1. Ids, sizes and indexes come from files: the greatest number wraps instead of overflowing.
constexpr long long plusOne(long long number) {
    return static_cast<long long>(static_cast<unsigned long long>(number) + 1U);
}

// Times come from files: sums that are too great wrap as well.
constexpr long long wrappingSum(long long a, long long b) {
    return static_cast<long long>(static_cast<unsigned long long>(a) + static_cast<unsigned long long>(b));
}
constexpr long long wrappingDifference(long long a, long long b) {
    return static_cast<long long>(static_cast<unsigned long long>(a) - static_cast<unsigned long long>(b));
}

/// Counts a running object id up and gives the new number.
constexpr long long nextId(long long& greatest) {
    greatest = plusOne(greatest);
    return greatest;
}

} // namespace Archive::Internal
