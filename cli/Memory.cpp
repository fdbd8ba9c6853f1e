#include "Memory.h"

#include "Messages.h"
#include "Reader/Unfinished.h"
#include "SystemMemory.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace Memory {
namespace {

/// A sanitizer's own memory would count as the program's.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool isSanitized = true;
#elif defined(__has_feature)
constexpr bool isSanitized = __has_feature(address_sanitizer);
#else
constexpr bool isSanitized = false;
#endif

/// What a document may take beside so much for each of its bytes. Real projects need a quarter of that; some steps make
/// large things of small ones, and a hostile document has nothing else.
constexpr rlim_t baseMemory = rlim_t(1) << 30;
constexpr rlim_t memoryPerByte = 200;

/// A document of so many bytes takes enough memory to gain from large pages.
constexpr qint64 leastForLargePages = qint64(1) << 20;

/// Whether the allocator gets the large pages that it asks for. Touching the first byte of one takes all of it.
void setLargePages(bool areWanted) {
    if constexpr (!isSanitized)
        prctl(PR_SET_THP_DISABLE, areWanted ? 0L : 1L, 0L, 0L, 0L);
}

/// Called before the libraries allocate: most of what they take are a few bytes here and there.
void startWithSmallPages() {
    setLargePages(false);
}
[[gnu::section(".preinit_array"), gnu::used]] void (*const beforeLibraries)() = startWithSmallPages;

struct Bound {
    rlim_t bytes;
    std::string name; ///< as what allows so much, part of a sentence
};

/// "1.5 GiB"
std::string asText(rlim_t bytes) {
    const double megabytes = static_cast<double>(bytes) / (1 << 20);
    const bool isLarge = megabytes >= 1024;
    std::array<char, 32> text = {};
    std::snprintf(text.data(), text.size(), isLarge ? "%.1f GiB" : "%.0f MiB",
                  isLarge ? megabytes / 1024 : megabytes);
    return text.data();
}

std::vector<Bound> boundsFor(std::optional<std::uint64_t> given, std::optional<qint64> size) {
    if (given)
        return {{*given, "--max-memory allows"}};
    std::vector<Bound> bounds;
    if (const auto memory = SystemMemory::find())
        bounds.push_back({memory->bytes / 4 * 3, memory->isContainers
                                                     ? "three quarters of the container's memory"
                                                     : "three quarters of the machine's memory"});
    if (size)
        bounds.push_back(
            {baseMemory + memoryPerByte * static_cast<rlim_t>(*size), "any project of its size takes"});
    return bounds;
}

/// What is said where memory runs out, and where. It is made beforehand: nothing can be made then.
std::string message;
int messageDescriptor = STDERR_FILENO;

/// What the process was started with.
std::optional<rlimit> limitAtStart;

} // namespace

void limitFor(std::optional<std::uint64_t> given, std::optional<qint64> size, const LastWords& lastWords,
              int descriptor) {
    if (size)
        setLargePages(*size >= leastForLargePages);
    rlimit limit = {};
    const bool hasLimit = !isSanitized && getrlimit(RLIMIT_DATA, &limit) == 0;
    if (hasLimit && !limitAtStart)
        limitAtStart = limit;
    std::vector<Bound> bounds = boundsFor(given, size);
    if (hasLimit)
        bounds.push_back({limit.rlim_cur, "the limit of this process (ulimit -d)"});
    const auto least = std::min_element(bounds.begin(), bounds.end(),
                                        [](const Bound& a, const Bound& b) { return a.bytes < b.bytes; });
    if (least == bounds.end())
        return;
    message = lastWords(least->name + ", " + asText(least->bytes));
    messageDescriptor = descriptor;
    std::set_new_handler(endProgram);
    limit.rlim_cur = least->bytes;
    if (hasLimit)
        setrlimit(RLIMIT_DATA, &limit);
}

void liftLimit() {
    if (limitAtStart)
        setrlimit(RLIMIT_DATA, &*limitAtStart);
}

void endProgram() {
    Reader::removeUnfinished();
    static_cast<void>(!::write(messageDescriptor, message.data(), message.size()));
    std::_Exit(Messages::OutOfMemory);
}

} // namespace Memory
