#pragma once

#include <QString>

#include <cstdint>
#include <optional>

/// What keeps a document from taking all of the machine's memory.
namespace Memory {

/// From here on the program can't take more memory than `given`, or without it, than three quarters of the machine's
/// or the container's and than a document of `size` bytes may; where it wants more, it ends as endProgram() does.
/// `name` is the document's for the message. To be called without a size before the document is read, and with it
/// then.
void limitFor(const QString& name, std::optional<std::uint64_t> given, std::optional<qint64> size = {});

/// Removes what is unfinished, says that memory ran out and ends the program at once, with exit code 18. An exception
/// would let go of what there is, and letting go takes memory too.
[[noreturn]] void endProgram();

} // namespace Memory
