#include "Reader/TextForm.h"

#include <QChar>
#include <QtEndian>

#include <algorithm>
#include <array>

namespace Reader {
namespace {

using namespace std::string_view_literals;

struct Signature {
    int position;
    std::string_view bytes;
    const char* meaning;
};

// clang-format off
constexpr Signature signatures[] = {
    {0, "\x1F\x8B"sv, "a gzip archive; unpack it first"},
    {0, "PK\x03\x04"sv, "a zip archive; unpack it first"},
    {0, "PK\x05\x06"sv, "an empty zip archive; name the project's own file"},
    {0, "7z\xBC\xAF\x27\x1C"sv, "a 7z archive; unpack it first"},
    {0, "BZh"sv, "a bzip2 archive; unpack it first"},
    {0, "\xFD" "7zXZ\0"sv, "an xz archive; unpack it first"},
    {0, "\x28\xB5\x2F\xFD"sv, "a zstd archive; unpack it first"},
    {0, "Rar!\x1A\x07"sv, "a rar archive; unpack it first"},
    {257, "ustar"sv, "a tar archive; unpack it first"},
    {0, "SQLite format 3\0"sv, "an SQLite database; name the project's own file"},
    {0, "%PDF-"sv, "a PDF document; name the project's own file"},
    {0, "\x89PNG\r\n\x1A\n"sv, "a PNG image; name the project's own file"},
    {0, "\xFF\xD8\xFF"sv, "a JPEG image; name the project's own file"},
    {0, "GIF8"sv, "a GIF image; name the project's own file"},
    {4, "ftyp"sv, "a video or image file; name the project's own file"},
    {0, "RIFF"sv, "a media file; name the project's own file"},
};
// clang-format on

constexpr const char* byteOrderMark = "\xEF\xBB\xBF";

std::string_view view(const QByteArray& bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

bool isUtf16(Encoding encoding) {
    return encoding == Encoding::Utf16Little || encoding == Encoding::Utf16Big;
}

int unitSize(Encoding encoding) {
    return encoding == Encoding::Bytes ? 1 : isUtf16(encoding) ? 2 : 4;
}

/// One unit of a text: a byte, or 16 or 32 bits in their order.
char32_t unitAt(const QByteArray& bytes, int position, Encoding encoding) {
    const char* unit = bytes.constData() + position;
    switch (encoding) {
    case Encoding::Utf16Little:
        return qFromLittleEndian<quint16>(unit);
    case Encoding::Utf16Big:
        return qFromBigEndian<quint16>(unit);
    case Encoding::Utf32Little:
        return qFromLittleEndian<quint32>(unit);
    case Encoding::Utf32Big:
        return qFromBigEndian<quint32>(unit);
    case Encoding::Bytes:
        break;
    }
    return static_cast<unsigned char>(*unit);
}

/// How many bytes at the end are the start of a character of UTF-8 that is longer.
int incompleteUtf8(const QByteArray& bytes) {
    const int longest = std::min(3, bytes.size());
    for (int count = 1; count <= longest; ++count) {
        const auto byte = static_cast<unsigned char>(bytes.at(bytes.size() - count));
        if ((byte & 0xC0) == 0x80)
            continue; // a further byte of a character
        const int length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
        return length > count ? count : 0;
    }
    return 0;
}

/// The declaration of a text that was decoded must not name the encoding that it had. Its length stays the same, for the
/// columns of errors.
void redeclare(QByteArray& text) {
    const int end = text.indexOf("?>");
    const int name = text.startsWith("<?xml") && end >= 0 ? text.indexOf("encoding", 0) : -1;
    if (name < 0 || name > end)
        return;
    int quote = name + 8;
    while (quote < end && text.at(quote) != '"' && text.at(quote) != '\'')
        ++quote;
    const int close = quote < end ? text.indexOf(text.at(quote), quote + 1) : -1;
    if (close < 0 || close > end)
        return;
    const QByteArray encoding = QByteArray("UTF-8") + text.at(quote);
    text.replace(quote + 1, close - quote, encoding.leftJustified(close - quote, ' '));
}

Decoded decodeUtf16(const QByteArray& bytes, Encoding encoding, const QString& name) {
    Decoded result;
    QString text;
    text.reserve(bytes.size() / 2);
    const int end = bytes.size() - bytes.size() % 2;
    result.endsInCharacter = end != bytes.size();
    for (int position = 0; position < end; position += 2) {
        const QChar unit(static_cast<ushort>(unitAt(bytes, position, encoding)));
        const bool isSecond = !text.isEmpty() && text.at(text.size() - 1).isHighSurrogate();
        if (isSecond != unit.isLowSurrogate())
            throw Error(ErrorKind::BrokenXml,
                        {.file = name,
                         .byte = position + 1,
                         .reason = "half of a character of UTF-16 at byte " + std::to_string(position + 1)});
        if (position > 0 || unit != QChar::ByteOrderMark)
            text.append(unit);
    }
    if (!text.isEmpty() && text.at(text.size() - 1).isHighSurrogate()) {
        text.chop(1);
        result.endsInCharacter = true;
    }
    result.text = text.toUtf8();
    redeclare(result.text);
    return result;
}

} // namespace

Encoding encodingOf(const QByteArray& bytes) {
    if (bytes.startsWith(QByteArray("\xFF\xFE\0\0", 4)))
        return Encoding::Utf32Little;
    if (bytes.startsWith(QByteArray("\0\0\xFE\xFF", 4)))
        return Encoding::Utf32Big;
    if (bytes.startsWith("\xFF\xFE"))
        return Encoding::Utf16Little;
    if (bytes.startsWith("\xFE\xFF"))
        return Encoding::Utf16Big;
    if (bytes.size() < 2)
        return Encoding::Bytes;
    const auto isZero = [&](int position) { return position < bytes.size() && bytes.at(position) == '\0'; };
    const auto isSet = [&](int position) { return position < bytes.size() && bytes.at(position) != '\0'; };
    if (isSet(0) && isZero(1))
        return isZero(2) && isZero(3) ? Encoding::Utf32Little : Encoding::Utf16Little;
    if (isZero(0) && isSet(1))
        return Encoding::Utf16Big;
    return isZero(0) && isZero(1) && isZero(2) && isSet(3) ? Encoding::Utf32Big : Encoding::Bytes;
}

std::string nameOf(Encoding encoding) {
    return encoding == Encoding::Bytes ? "UTF-8" : isUtf16(encoding) ? "UTF-16" : "UTF-32";
}

Decoded decode(const QByteArray& bytes, const QString& name) {
    const Encoding encoding = encodingOf(bytes);
    if (isUtf16(encoding))
        return decodeUtf16(bytes, encoding, name);
    const int incomplete = incompleteUtf8(bytes);
    return {incomplete > 0 ? bytes.chopped(incomplete) : bytes, incomplete > 0};
}

std::optional<char32_t> firstCharacter(const QByteArray& bytes) {
    const Encoding encoding = encodingOf(bytes);
    const int size = unitSize(encoding);
    int position = encoding == Encoding::Bytes && bytes.startsWith(byteOrderMark) ? 3 : 0;
    for (; position + size <= bytes.size(); position += size) {
        const char32_t unit = unitAt(bytes, position, encoding);
        const bool isMark = position == 0 && unit == QChar::ByteOrderMark;
        if (!isMark && unit != U' ' && unit != U'\t' && unit != U'\r' && unit != U'\n')
            return unit;
    }
    return std::nullopt;
}

std::string describeFile(const QByteArray& bytes) {
    const auto found = std::find_if(std::begin(signatures), std::end(signatures), [&](const Signature& row) {
        return bytes.size() > row.position &&
               view(bytes).substr(static_cast<std::size_t>(row.position)).starts_with(row.bytes);
    });
    if (found != std::end(signatures))
        return found->meaning;
    if (!bytes.isEmpty() && bytes.count('\0') == bytes.size())
        return "nothing but NUL bytes; restore the file from a backup";
    const Encoding encoding = encodingOf(bytes);
    if (encoding == Encoding::Bytes)
        return {};
    const auto first = firstCharacter(bytes);
    const bool isJson = first && std::u32string_view(U"{[").find(*first) != std::u32string_view::npos;
    return isJson ? "JSON in " + nameOf(encoding) + "; convert it to UTF-8 first" : std::string();
}

std::pair<qint64, qint64> lineAndColumn(std::string_view text, std::size_t byte) {
    const std::string_view before = text.substr(0, byte);
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const std::size_t lineStart = before.rfind('\n');
    return {line, static_cast<qint64>(lineStart == std::string_view::npos ? byte + 1 : byte - lineStart)};
}

Error cutOff(ErrorKind kind, const QString& name, const QByteArray& text, qint64 bytes,
             const std::string& where) {
    const auto [line, column] = lineAndColumn(view(text), static_cast<std::size_t>(text.size()));
    return Error(kind, {.file = name,
                        .line = line,
                        .column = column,
                        .byte = bytes,
                        .reason = "the file ends inside " + where + " at byte " + std::to_string(bytes) +
                                  ": it was cut off",
                        .isCutOff = true});
}

} // namespace Reader
