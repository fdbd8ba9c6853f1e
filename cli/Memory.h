#pragma once

#include <QtGlobal>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

/// What keeps a document from taking all of the machine's memory.
namespace Memory {

/// Makes the text that is written where memory runs out, of what bounds it, such as "--max-memory allows, 64 MiB".
using LastWords = std::function<std::string(const std::string& bound)>;

/// From here on the program can't take more memory than `given`, or without it, than three quarters of the machine's
/// or the container's and than a document of `size` bytes may; where it wants more, it ends as endProgram() does, and
/// that writes the last words to the file descriptor. To be called without a size before the document is read, and with
/// it then.
void limitFor(std::optional<std::uint64_t> given, std::optional<qint64> size, const LastWords& lastWords,
              int descriptor);

/// Takes the limit back that limitFor() has set: a worker sets another one for each file.
void liftLimit();

/// Removes what is unfinished, says that memory ran out and ends the program at once, with exit code 18. An exception
/// would let go of what there is, and letting go takes memory too.
[[noreturn]] void endProgram();

} // namespace Memory
