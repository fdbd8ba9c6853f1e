#include "MemoryReserve.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <new>

namespace MemoryReserve {
namespace {

constexpr std::size_t size = std::size_t(64) << 20;

std::atomic<void*> reserve = nullptr; // a handler can be handed nothing

/// Called where memory has run out. Returns only if there is more now.
void handOut() {
    void* const memory = std::uncaught_exceptions() > 0 ? reserve.exchange(nullptr) : nullptr;
    if (!memory)
        throw std::bad_alloc();
    std::free(memory);
}

} // namespace

void install() {
    if (!std::get_new_handler())
        std::set_new_handler(handOut);
}

void refill() {
    // A thread's first exception takes memory for what the runtime keeps of the thread, and ends the process where there
    // is none.
    try {
        throw 0;
    } catch (int) {
    }
    if (reserve.load())
        return;
    void* const memory = std::malloc(size); // never touched, and so never real memory
    void* none = nullptr;
    if (memory && !reserve.compare_exchange_strong(none, memory))
        std::free(memory);
}

} // namespace MemoryReserve
