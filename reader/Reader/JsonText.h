#pragma once

#include <nlohmann/json.hpp>

#include <QByteArray>
#include <QString>

// Threads: all functions are thread-safe.

namespace Reader {

/// Reads JSON text. `name` is the file's name in errors. Throws Error with the byte of the first error.
nlohmann::json parseJson(const QByteArray& bytes, const QString& name);

/// Writes the same text as nlohmann::json::dump(), without white space. Depth costs memory, not stack.
QByteArray writeJson(const nlohmann::json& value);

} // namespace Reader
