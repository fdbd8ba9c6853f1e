// The program's definition of repainted(): loads the module of drawings when a step comes to the first one. The linker
// then takes neither the library's definition nor the SVG model.

#include "drawings/Module.h"

#include "Stored/V21/Internal/Repaint.h"

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>

namespace Stored::V21::Internal {
namespace {

/// The file of the module. It has the same place relative to the program where both are built and where they are
/// installed.
std::filesystem::path modulePath() {
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    return (program.parent_path() / DRAWINGS_MODULE).lexically_normal();
}

[[noreturn]] void fail() {
    throw std::runtime_error(std::string("what converts drawings can't be loaded: ") + dlerror());
}

} // namespace

QString repainted(const QString& text, quint32 color) {
    // Never closed. Opening it once more gives the same module.
    void* const module = dlopen(modulePath().c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!module)
        fail();
    void* const function = dlsym(module, Drawings::repaintName);
    if (!function)
        fail();
    QString result = text;
    reinterpret_cast<Drawings::Repaint*>(function)(result, color);
    return result;
}

} // namespace Stored::V21::Internal
