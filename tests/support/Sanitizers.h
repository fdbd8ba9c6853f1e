#pragma once

namespace Tests {

/// Whether the tests and the program are built with a sanitizer, whose own memory and time would count.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool isSanitized = true;
#else
inline constexpr bool isSanitized = false;
#endif

} // namespace Tests
