#pragma once

#include <QByteArray>

#include <string>

// Threads: each function reads only its arguments.

namespace Reader {

/// The lines that are different between two texts, as "diff -u" shows them, with three lines around. Lines that each
/// text has once are matched first, as in a patience diff, so that large documents take little time; the diff may then
/// be longer than the shortest one. Empty where the texts are the same.
QByteArray unifiedDiff(const QByteArray& before, const QByteArray& after, const std::string& nameBefore,
                       const std::string& nameAfter);

/// JSON text without white space, with one value a line.
QByteArray indented(const QByteArray& json);

} // namespace Reader
