#pragma once

#include <nlohmann/json.hpp>

#include <QByteArray>
#include <QString>

// Threads: all functions are thread-safe.

namespace Reader {

/// Reads JSON text; `name` is the file's name for errors. A whole number that 64 bits can't hold becomes a wideNumber().
/// Throws Error with the byte of the first fault.
nlohmann::json parseJson(const QByteArray& bytes, const QString& name);

/// Writes JSON text as nlohmann::json::dump() does, without white space; a wideNumber() as its digits. Depth costs memory, not stack.
QByteArray writeJson(const nlohmann::json& value);

} // namespace Reader
