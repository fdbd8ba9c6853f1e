#include "Recovery/DamagedText.h"

#include <QRegularExpression>
#include <QString>
#include <QTextCodec>

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>

namespace Reader {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD"; // U+FFFD

/// From so many bad bytes in a row on they are lost bytes rather than characters.
constexpr std::size_t shortestLoss = 16;

/// Texts of UTF-16 get an anchor after so many bytes.
constexpr std::size_t anchorDistance = 1024;

unsigned char at(const QByteArray& bytes, qint64 position) {
    return static_cast<unsigned char>(bytes.at(static_cast<int>(position)));
}

/// The length of the valid character of UTF-8 at a position; 0 for none.
int characterLength(const QByteArray& bytes, qint64 position) {
    const unsigned char first = at(bytes, position);
    const int length = first < 0x80                    ? 1
                       : first >= 0xC2 && first < 0xE0 ? 2
                       : first >= 0xE0 && first < 0xF0 ? 3
                       : first >= 0xF0 && first < 0xF5 ? 4
                                                       : 0;
    if (length == 0 || position + length > bytes.size())
        return 0;
    for (int further = 1; further < length; ++further) {
        if ((at(bytes, position + further) & 0xC0) != 0x80)
            return 0;
    }
    const unsigned char second = length > 1 ? at(bytes, position + 1) : 0;
    const bool isTooLong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
    const bool isBeyond = (first == 0xED && second >= 0xA0) || (first == 0xF4 && second >= 0x90);
    return isTooLong || isBeyond ? 0 : length;
}

/// Whether XML forbids the character; NUL is a mark here.
bool isForbidden(char32_t character) {
    const bool isControl =
        character < 0x20 && character != 0 && character != '\t' && character != '\n' && character != '\r';
    return isControl || (character >= 0xD800 && character < 0xE000) || character == 0xFFFE ||
           character == 0xFFFF;
}

/// How the bytes of a text show that its units have 16 bits.
enum class Width { Bytes, LittleEndian, BigEndian };

/// ASCII characters in UTF-16 have a NUL in every second byte. Blocks of NUL bytes don't count.
Width widthOf(const QByteArray& bytes) {
    if (bytes.startsWith("\xFF\xFE"))
        return Width::LittleEndian;
    if (bytes.startsWith("\xFE\xFF"))
        return Width::BigEndian;
    qint64 single[2] = {0, 0}; // NUL bytes between others, at even and at odd positions
    for (int position = bytes.indexOf('\0'); position >= 0; position = bytes.indexOf('\0', position + 1)) {
        const bool isAlone = (position == 0 || bytes.at(position - 1) != '\0') &&
                             (position + 1 == bytes.size() || bytes.at(position + 1) != '\0');
        single[position % 2] += isAlone ? 1 : 0;
    }
    if (single[1] > bytes.size() / 4)
        return Width::LittleEndian;
    return single[0] > bytes.size() / 4 ? Width::BigEndian : Width::Bytes;
}

struct Utf8Counts {
    std::size_t valid = 0; ///< characters of two bytes and more
    std::size_t invalid = 0;
};

Utf8Counts countUtf8(const QByteArray& bytes) {
    Utf8Counts counts;
    for (qint64 position = 0; position < bytes.size();) {
        const int length = characterLength(bytes, position);
        counts.valid += length > 1 ? 1 : 0;
        counts.invalid += length == 0 ? 1 : 0;
        position += std::max(1, length);
    }
    return counts;
}

/// The encoding that an XML declaration names, in lower case; empty for none.
QByteArray declaredEncoding(const QByteArray& bytes) {
    static const QRegularExpression declaration(
        QStringLiteral("^\\s*<\\?xml[^>]*\\sencoding\\s*=\\s*[\"']([A-Za-z0-9._:-]+)[\"']"));
    const auto match = declaration.match(QString::fromLatin1(bytes.left(200)));
    return match.captured(1).toLower().toLatin1();
}

bool isUtf8(const QByteArray& encoding) {
    return encoding.isEmpty() || encoding == "utf-8" || encoding == "utf8" || encoding == "us-ascii";
}

} // namespace

DamagedText::DamagedText(const QByteArray& bytes, RecoveryReport& report) {
    m_text.reserve(static_cast<std::size_t>(bytes.size()));
    const auto tell = [&](const std::string& sentence) { report.add({Damage::Encoding, 0, 1, 1, sentence}); };
    if (const Width width = widthOf(bytes); width != Width::Bytes) {
        report.encoding = "UTF-16";
        decodeUtf16(bytes, width == Width::BigEndian, report);
        return;
    }
    const QByteArray declared = declaredEncoding(bytes);
    const Utf8Counts counts = countUtf8(bytes);
    const bool looksLikeUtf8 = counts.invalid == 0 || counts.valid > 0;
    if (!isUtf8(declared)) {
        const QTextCodec* codec = QTextCodec::codecForName(declared);
        const bool isWide = declared.startsWith("utf-16") || declared.startsWith("utf-32") ||
                            declared.startsWith("iso-10646");
        if (codec && !isWide && !(counts.invalid == 0 && counts.valid > 0)) {
            report.encoding = declared.toStdString();
            decodeBytes(bytes, declared, report);
            return;
        }
        tell("The file says that it is in " + declared.toStdString() + ", but its bytes are UTF-8.");
    } else if (!looksLikeUtf8 && counts.invalid < static_cast<std::size_t>(bytes.size()) / 8) {
        report.encoding = "windows-1252";
        tell("The file is not in UTF-8. It has no character of UTF-8 beyond ASCII, and " +
             std::to_string(counts.invalid) +
             " bytes that are letters in windows-1252: it was read as that.");
        decodeBytes(bytes, "windows-1252", report);
        return;
    }
    report.encoding = "UTF-8";
    decodeUtf8(bytes, report);
}

void DamagedText::anchor(qint64 byte) {
    m_anchors.push_back({m_text.size(), byte});
}

/// Adds what takes the place of so many bad bytes or units.
void DamagedText::appendBad(std::size_t count, qint64 byte, RecoveryReport& report) {
    if (count >= shortestLoss) {
        m_text.append(count, '\0');
        return;
    }
    this->report(report, Damage::BadCharacters, m_text.size(),
                 count == 1 ? "1 character is not readable."
                            : std::to_string(count) + " characters are not readable.");
    if (!report.findings.empty() && report.findingsLeftOut == 0)
        report.findings.back().byte = byte;
    report.charactersReplaced += count;
    for (std::size_t number = 0; number < count; ++number)
        m_text += replacement;
}

void DamagedText::decodeUtf8(const QByteArray& bytes, RecoveryReport& report) {
    qint64 position = bytes.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    anchor(position);
    const auto isGood = [&](qint64 place, int length) {
        if (length == 0)
            return false;
        if (length == 1)
            return !isForbidden(at(bytes, place));
        return length != 3 ||
               !(at(bytes, place) == 0xEF && at(bytes, place + 1) == 0xBF && at(bytes, place + 2) >= 0xBE);
    };
    while (position < bytes.size()) {
        const int length = characterLength(bytes, position);
        if (isGood(position, length)) {
            m_text.append(bytes.constData() + position, static_cast<std::size_t>(length));
            position += length;
            continue;
        }
        const qint64 first = position;
        std::size_t count = 0;
        for (int next = length; position < bytes.size() && !isGood(position, next); ++count) {
            position += std::max(1, next);
            next = position < bytes.size() ? characterLength(bytes, position) : 0;
        }
        const bool isIncomplete = position == bytes.size() && count <= 3 && at(bytes, first) >= 0xC0;
        if (!isIncomplete) // the file was cut inside of a character
            appendBad(count, first, report);
        anchor(position);
    }
}

void DamagedText::decodeUtf16(const QByteArray& bytes, bool isBigEndian, RecoveryReport& report) {
    m_unit = 2;
    const auto unitAt = [&](qint64 position) {
        const auto first = at(bytes, position);
        const auto second = at(bytes, position + 1);
        return static_cast<char16_t>(isBigEndian ? first << 8 | second : second << 8 | first);
    };
    const qint64 end = bytes.size() - bytes.size() % 2;
    qint64 position = end >= 2 && unitAt(0) == 0xFEFF ? 2 : 0;
    anchor(position);
    const auto decodeOne = [&](qint64 place) -> std::pair<char32_t, int> {
        const char16_t unit = unitAt(place);
        const bool isFirst = unit >= 0xD800 && unit < 0xDC00;
        if (isFirst && place + 4 <= end && unitAt(place + 2) >= 0xDC00 && unitAt(place + 2) < 0xE000)
            return {0x10000 + ((char32_t(unit) - 0xD800) << 10) + (char32_t(unitAt(place + 2)) - 0xDC00), 4};
        return {unit, 2};
    };
    while (position < end) {
        const auto [character, length] = decodeOne(position);
        if (isForbidden(character)) {
            const qint64 first = position;
            std::size_t count = 0;
            for (; position < end && isForbidden(decodeOne(position).first); position += 2)
                ++count;
            appendBad(count, first, report);
            anchor(position);
            continue;
        }
        const char32_t text[] = {character};
        const QByteArray utf8 = character == 0 ? QByteArray(1, '\0') : QString::fromUcs4(text, 1).toUtf8();
        m_text.append(utf8.constData(), static_cast<std::size_t>(utf8.size()));
        position += length;
        if (m_text.size() - m_anchors.back().position >= anchorDistance)
            anchor(position);
    }
}

/// Reads an encoding of one byte for most characters.
void DamagedText::decodeBytes(const QByteArray& bytes, const QByteArray& codecName, RecoveryReport& report) {
    anchor(0);
    const std::unique_ptr<QTextDecoder> decoder(QTextCodec::codecForName(codecName)->makeDecoder());
    for (qint64 position = 0; position < bytes.size(); ++position) {
        const unsigned char byte = at(bytes, position);
        const QString text = byte == 0 ? QString() : decoder->toUnicode(bytes.constData() + position, 1);
        if (byte == 0) {
            m_text += '\0';
        } else if (byte < 0x80 && text.size() == 1 && text.at(0) == QLatin1Char(static_cast<char>(byte)) &&
                   !isForbidden(byte)) {
            m_text += static_cast<char>(byte);
        } else {
            const bool isBad = text.size() == 1 && (isForbidden(text.at(0).unicode()) ||
                                                    text.at(0) == QChar::ReplacementCharacter);
            if (isBad)
                appendBad(1, position, report);
            else
                m_text += text.toStdString();
            anchor(position + 1);
        }
    }
}

qint64 DamagedText::byteAt(std::size_t position) const {
    auto next = std::upper_bound(
        m_anchors.begin(), m_anchors.end(), position,
        [](std::size_t value, const Anchor& candidate) { return value < candidate.position; });
    if (next == m_anchors.begin())
        return 0;
    const Anchor& last = *std::prev(next);
    if (m_unit == 1)
        return last.byte + static_cast<qint64>(position - last.position);
    qint64 units = 0;
    for (std::size_t place = last.position; place < position; ++place) {
        const auto byte = static_cast<unsigned char>(m_text[place]);
        units += (byte & 0xC0) == 0x80 ? 0 : byte >= 0xF0 ? 2 : 1;
    }
    return last.byte + 2 * units;
}

/// Moves the place whose line is known.
void DamagedText::moveTo(std::size_t position) {
    const std::string_view text = m_text;
    if (position < m_position) {
        const std::string_view between = text.substr(position, m_position - position);
        m_line -= std::count(between.begin(), between.end(), '\n');
        const std::size_t newLine = text.substr(0, position).rfind('\n');
        m_lineStart = newLine == std::string_view::npos ? 0 : newLine + 1;
    } else {
        const std::string_view between = text.substr(m_position, position - m_position);
        m_line += std::count(between.begin(), between.end(), '\n');
        if (const std::size_t newLine = between.rfind('\n'); newLine != std::string_view::npos)
            m_lineStart = m_position + newLine + 1;
    }
    m_position = position;
}

void DamagedText::report(RecoveryReport& report, Damage damage, std::size_t position, std::string sentence) {
    if (report.findings.size() >= RecoveryReport::mostFindings) {
        ++report.findingsLeftOut;
        return;
    }
    moveTo(position);
    report.add({damage, byteAt(position), m_line, static_cast<qint64>(position - m_lineStart) + 1,
                std::move(sentence)});
}

} // namespace Reader
