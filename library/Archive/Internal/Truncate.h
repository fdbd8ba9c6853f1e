#pragma once

// Converting floating numbers to integers, as JSON steps do it.

#include <cmath>
#include <limits>

namespace Archive::Internal {

/// The number without its fraction. Quirk: a number that `Integer` can't hold, and a NaN, become its lowest
/// number: that is the result of the conversion on x86 processors.
template <class Integer>
Integer truncated(double number) {
    constexpr Integer lowest = std::numeric_limits<Integer>::lowest();
    constexpr double first = static_cast<double>(lowest); // a power of two: exact
    const double whole = std::trunc(number);
    return whole >= first && whole < -first ? static_cast<Integer>(whole) : lowest;
}

} // namespace Archive::Internal
