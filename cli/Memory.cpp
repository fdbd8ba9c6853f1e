#include "Memory.h"

#include "Messages.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <new>
#include <string>

namespace Memory {
namespace {

/// No limit is set under the address sanitizer: its own memory would count, too.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool isSanitized = true;
#elif defined(__has_feature)
constexpr bool isSanitized = __has_feature(address_sanitizer);
#else
constexpr bool isSanitized = false;
#endif

/// The limit is `baseMemory` plus `memoryPerByte` for each byte of the document. Real projects need a quarter
/// of that. Some steps create large objects from small ones, and a hostile document may consist of these.
constexpr rlim_t baseMemory = rlim_t(1) << 30;
constexpr rlim_t memoryPerByte = 200;

/// The message for the case that memory runs out. Prepared in advance, because nothing can be allocated then.
std::string message;

} // namespace

void limitFor(const QString& name, qint64 size) {
    message = Messages::asText(Messages::outOfMemory(name));
    std::set_new_handler(endProgram);
    rlimit limit = {};
    if (isSanitized || getrlimit(RLIMIT_DATA, &limit) != 0)
        return;
    limit.rlim_cur = std::min(limit.rlim_cur, baseMemory + memoryPerByte * static_cast<rlim_t>(size));
    setrlimit(RLIMIT_DATA, &limit);
}

void endProgram() {
    static_cast<void>(!::write(STDERR_FILENO, message.data(), message.size()));
    std::_Exit(Messages::OutOfMemory);
}

} // namespace Memory
