#pragma once

#include <nlohmann/json.hpp>

#include <QByteArray>
#include <QString>

#include <functional>
#include <string>

// Threads: all functions are thread-safe.

namespace Reader {

/// Reads JSON text; `name` is the file's name for errors. A whole number that 64 bits can't hold becomes a wideNumber().
/// Throws Error with the byte of the first fault.
nlohmann::json parseJson(const QByteArray& bytes, const QString& name);

/// Writes JSON text as nlohmann::json::dump() does, without white space; a wideNumber() as its digits. Depth costs memory, not stack.
QByteArray writeJson(const nlohmann::json& value);

/// Appends the same text to another.
void appendJson(const nlohmann::json& value, std::string& text);

/// The same for a value, and frees it meanwhile. Calls `prepare` for each value before it is written, which
/// may replace it, but not for "@meta" and what is in it.
void consumeJson(nlohmann::json value, const std::function<void(nlohmann::json&)>& prepare,
                 std::string& text);

} // namespace Reader
