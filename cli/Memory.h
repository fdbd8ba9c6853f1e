#pragma once

#include <QtGlobal>

#include <string>

/// What keeps a document from taking all of the machine's memory.
namespace Memory {

/// From here on the program can't take more memory than a document of `size` bytes may; where it wants more, it ends
/// as endProgram() does. `lastWords` is what that writes then, to the file descriptor.
void limitFor(qint64 size, std::string lastWords, int descriptor);

/// Says that memory ran out and ends the program at once, with exit code 18. An exception would let go of what there
/// is, and letting go takes memory too.
[[noreturn]] void endProgram();

} // namespace Memory
