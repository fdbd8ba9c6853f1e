#include "bench/Measure.h"

#include <QByteArray>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <numeric>
#include <sstream>
#include <string>

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Bench {
namespace {

/// The value of a line of /proc/self/status in bytes; 0 if there is none.
std::size_t statusBytes(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(name + ':', 0) != 0)
            continue;
        std::size_t kilobytes = 0;
        std::istringstream(line.substr(name.size() + 1)) >> kilobytes;
        return kilobytes * 1024;
    }
    return 0;
}

/// Resets the peak to the current memory. Returns whether the system supports that.
bool forgetPeak() {
    malloc_trim(0);
    std::ofstream file("/proc/self/clear_refs");
    file << "5" << std::flush;
    return file.good();
}

std::size_t measureHere(const std::function<QByteArray()>& prepare,
                        const std::function<void(const QByteArray&)>& work) {
    const QByteArray input = prepare();
    if (!forgetPeak())
        return 0;
    const std::size_t before = memoryNow();
    work(input);
    const std::size_t peak = greatestMemory();
    return peak > before ? peak - before : 0;
}

} // namespace

double processorTime() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

double median(std::vector<double> numbers) {
    std::sort(numbers.begin(), numbers.end());
    return numbers[numbers.size() / 2];
}

std::size_t placeOfMedian(const std::vector<double>& numbers) {
    std::vector<std::size_t> places(numbers.size());
    std::iota(places.begin(), places.end(), 0);
    const auto middle = places.begin() + static_cast<std::ptrdiff_t>((places.size() - 1) / 2);
    std::ranges::nth_element(places, middle, {}, [&](std::size_t place) { return numbers[place]; });
    return *middle;
}

std::size_t countElements(const QByteArray& text) {
    std::size_t count = 0;
    for (int place = 0; place + 1 < text.size(); ++place)
        count += text[place] == '<' && text[place + 1] != '/' && text[place + 1] != '?' ? 1 : 0;
    return count;
}

std::size_t memoryNow() {
    return statusBytes("VmRSS");
}

std::size_t greatestMemory() {
    return statusBytes("VmHWM");
}

std::size_t peakMemory(const std::function<QByteArray()>& prepare,
                       const std::function<void(const QByteArray&)>& work) {
    int ends[2];
    if (pipe(ends) != 0)
        return 0;
    const pid_t child = fork();
    if (child == 0) {
        std::size_t peak = 0;
        try {
            peak = measureHere(prepare, work);
        } catch (...) {
            _exit(EXIT_FAILURE);
        }
        const ssize_t written = write(ends[1], &peak, sizeof peak);
        _exit(written == static_cast<ssize_t>(sizeof peak) ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    close(ends[1]);
    std::size_t peak = 0;
    const bool isWhole = child > 0 && read(ends[0], &peak, sizeof peak) == static_cast<ssize_t>(sizeof peak);
    close(ends[0]);
    if (child > 0)
        waitpid(child, nullptr, 0);
    return isWhole ? peak : 0;
}

} // namespace Bench
