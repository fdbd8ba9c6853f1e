#pragma once

// Reading and adding time values of SVG.

#include <QString>

namespace Stored::V21::Internal {

/// The milliseconds of a time value such as "500ms", "1.5s" or "2", which means seconds. 0 for a text that is
/// no number. A time out of the range of 32 bits becomes the nearest in range.
int timeMs(const QString& text);

// Times come from files that may be hostile: sums wrap instead of overflowing.

constexpr int sum(int a, int b) {
    return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
}

constexpr int difference(int a, int b) {
    return static_cast<int>(static_cast<unsigned>(a) - static_cast<unsigned>(b));
}

/// A double without its fraction. Out of the range of 32 bits it becomes the nearest in range, NaN becomes 0.
int truncated(double number);

} // namespace Stored::V21::Internal
