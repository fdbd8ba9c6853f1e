#pragma once

#include <QByteArray>

#include <cstddef>
#include <functional>

namespace Bench {

/// Milliseconds of processor time that this process has used. Other programs on the machine count little.
double processorTime();

/// Milliseconds of processor time that a call takes.
template <class Call>
double millisecondsOf(Call call) {
    const double start = processorTime();
    call();
    return processorTime() - start;
}

/// The peak memory in bytes of `work` on what `prepare` gave, beyond what the process held before. Runs in a
/// process of its own; 0 where that can't be measured.
std::size_t peakMemory(const std::function<QByteArray()>& prepare,
                       const std::function<void(const QByteArray&)>& work);

} // namespace Bench
