#include "Memory.h"

#include "Messages.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <new>
#include <string>
#include <utility>

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

/// What is said where memory runs out, and where. It is made beforehand: nothing can be made then.
std::string message;
int messageDescriptor = STDERR_FILENO;

} // namespace

void limitFor(qint64 size, std::string lastWords, int descriptor) {
    message = std::move(lastWords);
    messageDescriptor = descriptor;
    std::set_new_handler(endProgram);
    rlimit limit = {};
    if (isSanitized || getrlimit(RLIMIT_DATA, &limit) != 0)
        return;
    limit.rlim_cur = std::min(limit.rlim_cur, baseMemory + memoryPerByte * static_cast<rlim_t>(size));
    setrlimit(RLIMIT_DATA, &limit);
}

void endProgram() {
    static_cast<void>(!::write(messageDescriptor, message.data(), message.size()));
    std::_Exit(Messages::OutOfMemory);
}

} // namespace Memory
