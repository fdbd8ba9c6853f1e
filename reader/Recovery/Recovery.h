#pragma once

#include "Reader/Document.h"
#include "Reader/Error.h"
#include "Recovery/RecoveryReport.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace Reader {

/// A document made of a damaged file.
struct Recovered {
    Document document; ///< has a schema version
    RecoveryReport report;
};

/// Whether recover() is for files that are refused with this error.
bool isRecoverable(ErrorKind kind);

/// Makes a document of what is whole in a file that parse() refuses, or whose schema version is missing or wrong:
/// objects that are complete stay, and those that are damaged are dropped, but for the objects that lead to clips, which
/// keep what they have. Clips whose place in time is lost are put at the end of their timeline. References to what was
/// lost are cleared, and counts and predeclarations are mended. `version` replaces what the file says of its schema
/// version. Healthy files are for parse(): this function is not made to keep all of their bytes.
///
/// Gives nothing for a file that has nothing of a project, and for JSON that is nested deeper than 1,000 levels. Throws nothing but std::bad_alloc. Time and memory are linear
/// in the size of the file, but for a logarithm.
///
/// Threads: thread-safe.
std::optional<Recovered> recover(const QByteArray& bytes, const QString& name,
                                 std::optional<int> version = std::nullopt);

} // namespace Reader
