#pragma once

#include <QByteArray>

#include <chrono>
#include <cstddef>
#include <functional>

namespace Bench {

/// Milliseconds that a call takes.
template <class Call>
double millisecondsOf(Call call) {
    const auto start = std::chrono::steady_clock::now();
    call();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// The peak memory in bytes of `work` on what `prepare` gave, beyond what the process held before. Runs in a
/// process of its own; 0 where that can't be measured.
std::size_t peakMemory(const std::function<QByteArray()>& prepare,
                       const std::function<void(const QByteArray&)>& work);

} // namespace Bench
