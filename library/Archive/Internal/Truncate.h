#pragma once

// For this project's own use.

#include <cmath>
#include <limits>

namespace Archive::Internal {

/// The number without its fraction. What `Integer` can't hold, a NaN too, reads as its lowest number, which is
/// what the processors that wrote these documents gave.
template <class Integer>
Integer truncated(double number) {
    constexpr Integer lowest = std::numeric_limits<Integer>::lowest();
    constexpr double first = static_cast<double>(lowest); // a power of two: exact
    const double whole = std::trunc(number);
    return whole >= first && whole < -first ? static_cast<Integer>(whole) : lowest;
}

} // namespace Archive::Internal
