// The text of a damaged file: which bytes are characters, what takes the place of others, and where findings are.

#include "Recovery/DamagedText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using Reader::Damage;
using Reader::DamagedText;
using Reader::RecoveryReport;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const std::string replacement = "\xEF\xBF\xBD"; // U+FFFD

std::string textOf(const QByteArray& bytes) {
    RecoveryReport report;
    return std::string(DamagedText(bytes, report).text());
}

/// What a report says of the bytes.
RecoveryReport reportOf(const QByteArray& bytes) {
    RecoveryReport report;
    const DamagedText text(bytes, report);
    return report;
}

QByteArray utf16(const std::u16string& text, bool isBigEndian, const QByteArray& mark = {}) {
    QByteArray bytes = mark;
    for (const char16_t unit : text) {
        const char high = static_cast<char>(unit >> 8);
        const char low = static_cast<char>(unit & 0xFF);
        bytes += isBigEndian ? high : low;
        bytes += isBigEndian ? low : high;
    }
    return bytes;
}

// UTF-8

TEST(DamagedText, CharactersOfUtf8AreKept) {
    for (const char* character :
         {"\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "\xEF\xBF\xBC",
          "\xEF\xBF\xBD", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF", "\t", "\r\n"}) {
        const std::string text = std::string("\xC3\xA4 ") + character + '.';
        EXPECT_EQ(textOf(QByteArray::fromStdString(text)), text);
        EXPECT_THAT(reportOf(QByteArray::fromStdString(text)).findings, IsEmpty());
    }
}

/// Each byte of what is no character is replaced by itself.
TEST(DamagedText, BytesThatAreNoUtf8AreReplaced) {
    const std::vector<std::pair<const char*, int>> bad = {
        {"\x80", 1},             // no first byte
        {"\xC1\xBF", 2},         // longer than it needs to be
        {"\xE0\x9F\xBF", 3},     // the same
        {"\xF0\x8F\xBF\xBF", 4}, // the same
        {"\xED\xA0\x80", 3},     // a half of a character of UTF-16
        {"\xF4\x90\x80\x80", 4}, // beyond Unicode
        {"\xF5\x80\x80\x80", 4}, // the same
        {"\xC3", 1},             // without its second byte
    };
    for (const auto& [bytes, count] : bad) {
        const std::string text = std::string("\xC3\xA4 ") + bytes + '.';
        std::string expected = "\xC3\xA4 ";
        for (int number = 0; number < count; ++number)
            expected += replacement;
        EXPECT_EQ(textOf(QByteArray::fromStdString(text)), expected + '.') << text;
        const RecoveryReport report = reportOf(QByteArray::fromStdString(text));
        ASSERT_THAT(report.findings, SizeIs(1));
        EXPECT_EQ(report.findings[0].damage, Damage::BadCharacters);
        EXPECT_EQ(report.findings[0].byte, 3);
        EXPECT_EQ(report.findings[0].text, count == 1
                                               ? "1 character is not readable."
                                               : std::to_string(count) + " characters are not readable.");
        EXPECT_EQ(report.charactersReplaced, static_cast<std::size_t>(count));
    }
}

/// U+FFFE and U+FFFF are characters of UTF-8 that no XML has.
TEST(DamagedText, CharactersThatXmlForbidsAreReplaced) {
    for (const char* character : {"\xEF\xBF\xBE", "\xEF\xBF\xBF", "\x01", "\x1F", "\x0B"})
        EXPECT_EQ(textOf(QByteArray("\xC3\xA4") + character + '.'), "\xC3\xA4" + replacement + '.');
}

TEST(DamagedText, AMarkOfUtf8IsLeftOut) {
    EXPECT_EQ(textOf("\xEF\xBB\xBF<a/>"), "<a/>");
}

TEST(DamagedText, ManyBadBytesInARowAreALostBlock) {
    const QByteArray bytes = "\xC3\xA4" + QByteArray(64, '\xFF') + "\xC3\xA4 the rest of the file";
    EXPECT_EQ(textOf(bytes), "\xC3\xA4" + std::string(64, '\0') + "\xC3\xA4 the rest of the file");
    EXPECT_EQ(reportOf(bytes).charactersReplaced, 0U);
}

TEST(DamagedText, ACharacterThatTheEndOfTheFileCutsIsLeftOut) {
    for (const char* part : {"\xC3", "\xE2\x82", "\xF0\x9F\x8E"}) {
        EXPECT_EQ(textOf(QByteArray("\xC3\xA4") + part), "\xC3\xA4") << part;
        EXPECT_THAT(reportOf(QByteArray("\xC3\xA4") + part).findings, IsEmpty()) << part;
    }
    // These begin no character.
    EXPECT_EQ(textOf("\xC3\xA4\x80\x80"), "\xC3\xA4" + replacement + replacement);
}

// UTF-16

TEST(DamagedText, Utf16IsReadInBothOrdersWithAMarkAndWithout) {
    const std::u16string text = u"<name value=\"caf\u00E9 \u20AC \U0001F3AC\"/>";
    for (const QByteArray& bytes : {utf16(text, false), utf16(text, true), utf16(text, false, "\xFF\xFE"),
                                    utf16(text, true, "\xFE\xFF")}) {
        EXPECT_EQ(textOf(bytes), "<name value=\"caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x8E\xAC\"/>");
        EXPECT_EQ(reportOf(bytes).encoding, "UTF-16");
        EXPECT_THAT(reportOf(bytes).findings, IsEmpty());
    }
}

TEST(DamagedText, HalvesOfCharactersOfUtf16AreReplaced) {
    const std::vector<std::u16string> halves = {{u'a', char16_t(0xD83C), u'b'},  // a first half only
                                                {u'a', char16_t(0xDFAC), u'b'},  // a second half only
                                                {u'a', char16_t(0xFFFE), u'b'}}; // no character
    for (const std::u16string& text : halves)
        EXPECT_EQ(textOf(utf16(text, true, "\xFE\xFF")), 'a' + replacement + 'b');
    EXPECT_EQ(textOf(utf16({u'a', char16_t(0xD83C)}, true, "\xFE\xFF")), 'a' + replacement); // at the end
}

TEST(DamagedText, AByteBehindTheLastUnitOfUtf16IsLeftOut) {
    EXPECT_EQ(textOf(utf16(u"ab", true, "\xFE\xFF") + 'c'), "ab");
    EXPECT_EQ(textOf("\xFE\xFF"), "");
}

TEST(DamagedText, PlacesInUtf16AreThoseOfTheFile) {
    // Characters of one, two, three and four bytes of UTF-8 before the place.
    const QByteArray bytes = utf16(u"a\u00E9\u20AC\U0001F3AC|", false, "\xFF\xFE");
    RecoveryReport report;
    DamagedText text(bytes, report);
    text.report(report, Damage::BrokenMarkup, text.text().find('|'), "here");
    ASSERT_THAT(report.findings, SizeIs(1));
    EXPECT_EQ(report.findings[0].byte, bytes.size() - 2);
}

// Other encodings

TEST(DamagedText, ADeclaredEncodingOfSeveralBytesIsNotTaken) {
    for (const char* declared : {"utf-32", "UTF-16LE", "ISO-10646-UCS-2"}) {
        const QByteArray bytes = QByteArray("<?xml version='1.0' encoding='") + declared + "'?><a b=\"x\"/>";
        EXPECT_EQ(textOf(bytes), bytes.toStdString());
        const RecoveryReport report = reportOf(bytes);
        EXPECT_EQ(report.encoding, "UTF-8") << declared;
        ASSERT_THAT(report.findings, SizeIs(1)) << declared;
        EXPECT_EQ(report.findings[0].damage, Damage::Encoding);
    }
}

TEST(DamagedText, NamesOfUtf8AreNoOtherEncoding) {
    for (const char* declared : {"UTF-8", "utf8", "US-ASCII"}) {
        const QByteArray bytes = QByteArray("<?xml version='1.0' encoding='") + declared + "'?><a/>";
        EXPECT_THAT(reportOf(bytes).findings, IsEmpty()) << declared;
    }
}

TEST(DamagedText, ForbiddenCharactersInADeclaredEncodingAreReplaced) {
    // The byte is no character of XML in any encoding.
    const QByteArray bytes = "<?xml version='1.0' encoding='windows-1251'?>\xCB.\x01.";
    EXPECT_EQ(textOf(bytes).substr(45), "\xD0\x9B." + replacement + '.');
    EXPECT_EQ(reportOf(bytes).charactersReplaced, 1U);
    EXPECT_EQ(reportOf(bytes).findings[0].byte, 47);
}

TEST(DamagedText, LostBytesStayOnesInADeclaredEncoding) {
    const QByteArray bytes = "<?xml version='1.0' encoding='windows-1251'?>\xCB" + QByteArray(3, '\0') + '.';
    EXPECT_EQ(textOf(bytes).substr(45), "\xD0\x9B" + std::string(3, '\0') + '.');
}

TEST(DamagedText, AFileOfManyBytesThatAreNoUtf8IsNotOneOfWindows) {
    const QByteArray bytes = "\xFF\xFF words";
    EXPECT_EQ(reportOf(bytes).encoding, "UTF-8");
    EXPECT_EQ(textOf(bytes), replacement + replacement + " words");
}

// Places

TEST(DamagedText, FindingsSayLineAndColumn) {
    RecoveryReport report;
    DamagedText text("first\nsecond\nthird", report);
    text.report(report, Damage::BrokenMarkup, 15, "in the third line");
    text.report(report, Damage::BrokenMarkup, 8, "in the second line");
    text.report(report, Damage::BrokenMarkup, 0, "at the start");
    ASSERT_THAT(report.findings, SizeIs(3));
    EXPECT_EQ(report.findings[0].line, 3);
    EXPECT_EQ(report.findings[0].column, 3);
    EXPECT_EQ(report.findings[1].line, 2);
    EXPECT_EQ(report.findings[1].column, 3);
    EXPECT_EQ(report.findings[2].line, 1);
    EXPECT_EQ(report.findings[2].column, 1);
}

} // namespace
