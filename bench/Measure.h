#pragma once

#include <QByteArray>

#include <cstddef>
#include <functional>
#include <vector>

namespace Bench {

/// The processor time of this process in milliseconds. Other programs on the machine have little influence on
/// it.
double processorTime();

/// The processor time of a call in milliseconds.
template <class Call>
double millisecondsOf(Call call) {
    const double start = processorTime();
    call();
    return processorTime() - start;
}

/// The greater of the two middle numbers where their count is even.
double median(std::vector<double> numbers);

/// The place of the median; of the smaller of the two middle numbers where their count is even. Not for an empty list.
std::size_t placeOfMedian(const std::vector<double>& numbers);

/// The elements of an XML text, by their start tags.
std::size_t countElements(const QByteArray& text);

/// The memory of this process in bytes, now and at most since it began. 0 if it can't be measured.
std::size_t memoryNow();
std::size_t greatestMemory();

/// The peak memory of `work` in bytes, called with the result of `prepare`, minus the memory of the process
/// before. Runs in a child process. 0 if it can't be measured.
std::size_t peakMemory(const std::function<QByteArray()>& prepare,
                       const std::function<void(const QByteArray&)>& work);

} // namespace Bench
