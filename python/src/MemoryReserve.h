#pragma once

/// Memory that is kept for destructors. Some of them allocate, and an exception there would end the process; so where
/// memory has run out, and objects are destroyed because of that, they get the reserve.
///
/// Threads: thread-safe.
namespace MemoryReserve {

/// From here on the reserve is handed out where it is needed. Once in a process. Does nothing where the process has a
/// handler of its own for memory that has run out.
void install();

/// Has the reserve ready for work on this thread, also after it was used. Takes address space only.
void refill();

} // namespace MemoryReserve
