#include "StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>

namespace StandardStreams {

void occupy() {
    constexpr const char* nothing = "/dev/null";
    // A descriptor that is opened gets the lowest number that is free.
    if (fcntl(STDIN_FILENO, F_GETFD) < 0)
        static_cast<void>(open(nothing, O_WRONLY));
    if (fcntl(STDOUT_FILENO, F_GETFD) < 0)
        static_cast<void>(open(nothing, O_RDONLY));
    if (fcntl(STDERR_FILENO, F_GETFD) < 0)
        static_cast<void>(open(nothing, O_WRONLY));
}

std::optional<std::string> flushOutput() {
    errno = 0;
    std::cout.flush();
    const bool isFlushed = std::fflush(stdout) == 0;
    if (std::cout.good() && isFlushed && !std::ferror(stdout))
        return std::nullopt;
    return errno != 0 ? std::strerror(errno) : "not all of it could be written";
}

} // namespace StandardStreams
