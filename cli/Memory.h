#pragma once

#include <QString>

/// A limit for the memory of the process, against hostile documents.
namespace Memory {

/// Limits the memory of the process to what a document of `size` bytes may need. If an allocation exceeds the
/// limit, endProgram() is called. `name` is the document's name for the message.
void limitFor(const QString& name, qint64 size);

/// Prints a message that memory ran out and ends the process at once, with exit code 18. An exception is no
/// alternative: unwinding may need memory, too.
[[noreturn]] void endProgram();

} // namespace Memory
