#pragma once

#include "Reader/Error.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

// What can be said of a file's bytes before they are parsed. Threads: every function here may be called from any thread
// at any time.

namespace Reader {

/// How characters are written as bytes.
enum class Encoding {
    Bytes, ///< one byte for each ASCII character, such as UTF-8
    Utf16Little,
    Utf16Big,
    Utf32Little,
    Utf32Big,
};

/// The encoding that a byte order mark or the first characters show; a project starts with ASCII characters.
Encoding encodingOf(const QByteArray& bytes);

/// "UTF-16" or the like.
std::string nameOf(Encoding encoding);

/// Text in UTF-8, and whether its end is missing.
struct Decoded {
    QByteArray text;
    bool endsInCharacter = false; ///< the last character is incomplete and was left out
};

/// Decodes UTF-16; other bytes stay what they are, but for an incomplete last character of UTF-8. Throws Error for text
/// that is no UTF-16.
Decoded decode(const QByteArray& bytes, const QString& name);

/// The first character that is no white space, whatever the encoding; none in a text without content.
std::optional<char32_t> firstCharacter(const QByteArray& bytes);

/// What a file is that is no project, and what to do with it: "a gzip archive; unpack it first". Empty where the bytes
/// show nothing.
std::string describeFile(const QByteArray& bytes);

/// Line and column of a byte, all but the byte from 1.
std::pair<qint64, qint64> lineAndColumn(std::string_view text, std::size_t byte);

/// The error of a document of so many bytes that ends too early, inside of `where`. `text` is the document in UTF-8.
Error cutOff(ErrorKind kind, const QString& name, const QByteArray& text, qint64 bytes,
             const std::string& where);

} // namespace Reader
