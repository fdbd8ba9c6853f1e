#pragma once

// For the model's own use.

#include <QString>

namespace Stored::V21::Internal {

/// Milliseconds in a time value such as "500ms", "1.5s" or "2", which means seconds; 0 for what is no number.
/// Times beyond 32 bits become the nearest that fits.
int timeMs(const QString& text);

// Times come from strangers: sums wrap instead of overflowing.

constexpr int sum(int a, int b) {
    return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
}

constexpr int difference(int a, int b) {
    return static_cast<int>(static_cast<unsigned>(a) - static_cast<unsigned>(b));
}

/// A double cut to 32 bits, the nearest that fits; 0 for NaN.
int truncated(double number);

} // namespace Stored::V21::Internal
