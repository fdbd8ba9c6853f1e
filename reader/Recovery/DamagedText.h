#pragma once

#include "Recovery/RecoveryReport.h"

#include <QByteArray>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Reader {

/// The text of a damaged file in UTF-8. Characters that XML forbids, and bytes that are no characters, are U+FFFD; NUL
/// characters mark lost bytes. The time and the memory are linear in the size of the file.
///
/// Threads: a plain value.
class DamagedText {
public:
    /// Decodes the file. The encoding is the declared one where the bytes agree with it.
    DamagedText(const QByteArray& bytes, RecoveryReport& report);

    std::string_view text() const { return m_text; }

    /// Adds a finding; `position` is a byte of text(). The positions of the calls may have any order, but the time for
    /// each is proportional to its distance from the one before it.
    void report(RecoveryReport& report, Damage damage, std::size_t position, std::string sentence);

private:
    /// From this position of the text on, positions in the file are known up to the next anchor.
    struct Anchor {
        std::size_t position;
        qint64 byte;
    };

    void decodeUtf8(const QByteArray& bytes, RecoveryReport& report);
    void decodeUtf16(const QByteArray& bytes, bool isBigEndian, RecoveryReport& report);
    void decodeBytes(const QByteArray& bytes, const QByteArray& codecName, RecoveryReport& report);
    void appendBad(std::size_t count, qint64 byte, RecoveryReport& report);
    void anchor(qint64 byte);
    qint64 byteAt(std::size_t position) const;
    void moveTo(std::size_t position);

    std::string m_text;
    std::vector<Anchor> m_anchors;
    std::size_t m_unit = 1; ///< bytes of the file for each unit of the text between two anchors; 2 for UTF-16

    // The position of the last finding.
    std::size_t m_position = 0;
    qint64 m_line = 1;
    std::size_t m_lineStart = 0;
};

} // namespace Reader
