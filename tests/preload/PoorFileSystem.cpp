// Loaded before the C library, this makes calls fail that some file systems don't know. The variable POOR_FILE_SYSTEM
// lists them with the error that they give, such as "renameat2=22 link=1".

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string>

#include <dlfcn.h>

namespace {

/// The error that a call is to give; 0 for none.
int errorOf(const char* call) {
    const char* list = std::getenv("POOR_FILE_SYSTEM");
    const std::string entry = std::string(call) + '=';
    const char* found = list ? std::strstr(list, entry.c_str()) : nullptr;
    return found ? std::atoi(found + entry.size()) : 0;
}

template <class... Arguments>
int call(const char* name, Arguments... arguments) {
    if (const int error = errorOf(name)) {
        errno = error;
        return -1;
    }
    using Function = int (*)(Arguments...);
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name))(arguments...);
}

} // namespace

extern "C" {

int renameat2(int oldFolder, const char* oldPath, int newFolder, const char* newPath, unsigned int flags) {
    return call("renameat2", oldFolder, oldPath, newFolder, newPath, flags);
}

int rename(const char* oldPath, const char* newPath) noexcept {
    return call("rename", oldPath, newPath);
}

int link(const char* oldPath, const char* newPath) noexcept {
    return call("link", oldPath, newPath);
}

int fchown(int descriptor, unsigned int user, unsigned int group) noexcept {
    return call("fchown", descriptor, user, group);
}

int fchmod(int descriptor, unsigned int mode) noexcept {
    return call("fchmod", descriptor, mode);
}

} // extern "C"
