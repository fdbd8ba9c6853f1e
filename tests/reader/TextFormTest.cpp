// Encodings, files that are no projects, and documents whose end is missing.

#include "Reader/TextForm.h"

#include "Reader/Document.h"
#include "Reader/JsonText.h"
#include "Reader/XmlText.h"

#include <gtest/gtest.h>

#include <QtEndian>

using Reader::ErrorKind;

namespace {

const QString name = QStringLiteral("film.xml");

Reader::Error failure(const QByteArray& bytes) {
    try {
        Reader::parse(bytes, name);
    } catch (const Reader::Error& error) {
        return error;
    }
    ADD_FAILURE() << "was read: " << bytes.left(200).toStdString();
    return {ErrorKind::UnknownStep, {}};
}

/// Text in UTF-16 or UTF-32.
template <class Unit>
QByteArray encoded(const std::basic_string<Unit>& text, bool isBig, bool hasMark) {
    QByteArray bytes;
    const auto add = [&](Unit unit) {
        const Unit ordered = isBig ? qToBigEndian(unit) : qToLittleEndian(unit);
        bytes.append(reinterpret_cast<const char*>(&ordered), sizeof(Unit));
    };
    if (hasMark)
        add(0xFEFF);
    for (const Unit unit : text)
        add(unit);
    return bytes;
}

QByteArray utf16(const char16_t* text, bool isBig, bool hasMark) {
    std::basic_string<quint16> units;
    for (; *text; ++text)
        units += *text;
    return encoded(units, isBig, hasMark);
}

QByteArray utf32(const char* text, bool isBig, bool hasMark) {
    std::basic_string<quint32> units;
    for (; *text; ++text)
        units += static_cast<unsigned char>(*text);
    return encoded(units, isBig, hasMark);
}

TEST(Encoding, IsSeenByMarksAndNulBytes) {
    using Reader::Encoding;
    const std::vector<std::pair<QByteArray, Encoding>> cases = {
        {QByteArray("\xFF\xFE\0\0", 4), Encoding::Utf32Little},
        {QByteArray("\0\0\xFE\xFF", 4), Encoding::Utf32Big},
        {QByteArray("\xFF\xFE<\0", 4), Encoding::Utf16Little},
        {QByteArray("\xFE\xFF\0<", 4), Encoding::Utf16Big},
        {QByteArray("<\0", 2), Encoding::Utf16Little},
        {QByteArray("<\0\0", 3), Encoding::Utf16Little}, // too short for a character of UTF-32
        {QByteArray("<\0a\0", 4), Encoding::Utf16Little},
        {QByteArray("<\0\0a", 4), Encoding::Utf16Little},
        {QByteArray("<\0\0\0", 4), Encoding::Utf32Little},
        {QByteArray("\0<", 2), Encoding::Utf16Big},
        {QByteArray("\0\0\0<", 4), Encoding::Utf32Big},
        {QByteArray("\0\0<\0", 4), Encoding::Bytes},
        {QByteArray("\0\0\0", 3), Encoding::Bytes},
        {QByteArray("\0\0\0\0", 4), Encoding::Bytes},
        {QByteArray("\0", 1), Encoding::Bytes},
        {"<a", Encoding::Bytes},
        {"<", Encoding::Bytes},
        {"", Encoding::Bytes},
    };
    for (const auto& [bytes, encoding] : cases)
        EXPECT_EQ(Reader::encodingOf(bytes), encoding) << bytes.toHex().toStdString();
}

TEST(Encoding, HasAName) {
    EXPECT_EQ(nameOf(Reader::Encoding::Bytes), "UTF-8");
    EXPECT_EQ(nameOf(Reader::Encoding::Utf16Big), "UTF-16");
    EXPECT_EQ(nameOf(Reader::Encoding::Utf32Little), "UTF-32");
}

TEST(FirstCharacter, IsBehindAMarkAndSpace) {
    EXPECT_EQ(Reader::firstCharacter("\xEF\xBB\xBF \t\r\n<a"), U'<');
    EXPECT_EQ(Reader::firstCharacter(utf16(u" <a", true, true)), U'<');
    EXPECT_EQ(Reader::firstCharacter(utf32("\n{", false, true)), U'{');
    EXPECT_EQ(Reader::firstCharacter(utf16(u"\uFEFF<", true, true)), 0xFEFF); // a second mark is none
    EXPECT_EQ(Reader::firstCharacter(" \n"), std::nullopt);
    EXPECT_EQ(Reader::firstCharacter("\xEF\xBB\xBF"), std::nullopt);
    EXPECT_EQ(Reader::firstCharacter(""), std::nullopt);
}

TEST(Utf16, XmlIsRead) {
    for (const char16_t* declaration :
         {u"", u"<?xml version='1.0' encoding='UTF-16'?>\n", u"<?xml version='1.0' encoding=\"utf-16le\" ?>",
          u"<?xml version='1.0'?>", u"\n "}) {
        const std::u16string text =
            declaration + std::u16string(u"<Archive schemaVersion='45' a='\u00e9\U0001F3AC'>"
                                         u"<!-- encoding='UTF-16' --><b c='d'/></Archive>\n");
        for (const bool isBig : {false, true}) {
            for (const bool hasMark : {false, true}) {
                const Reader::Document document = Reader::parse(utf16(text.c_str(), isBig, hasMark), name);
                EXPECT_EQ(document.version(), 45);
                const QDomElement archive = document.xml().documentElement();
                EXPECT_EQ(archive.attribute("a"), QString::fromUtf8("\u00e9\U0001F3AC"));
                EXPECT_EQ(archive.firstChildElement().attribute("c"), QString("d"));
                // The text that is written names the encoding that it has.
                EXPECT_TRUE(Reader::writeXml(document.xml())
                                .startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"));
            }
        }
    }
}

TEST(Utf16, ErrorsNameThePlace) {
    const Reader::Error error =
        failure(utf16(u"<?xml version='1.0' encoding='UTF-16'?><Archive>\n<a></b></Archive>", false, true));
    EXPECT_EQ(error.kind(), ErrorKind::BrokenXml);
    EXPECT_EQ(error.facts().line, 2);
    const Reader::Error inFirstLine =
        failure(utf16(u"<?xml version='1.0' encoding='UTF-16'?><Archive><a></b>", false, true));
    EXPECT_EQ(inFirstLine.facts().column,
              failure("<?xml version='1.0' encoding='UTF-8' ?><Archive><a></b>").facts().column);
}

TEST(Utf16, ADeclarationThatIsNoXmlIsAnError) {
    for (const char16_t* declaration :
         {u"<?xml version='1.0' encoding=UTF-16?>", u"<?xml version='1.0' encoding='UTF-16?>",
          u"<?xml version='1.0' encoding?>", u"<?xml version='1.0' encoding"}) {
        const std::u16string text = declaration + std::u16string(u"<Archive a='b'/>");
        EXPECT_EQ(failure(utf16(text.c_str(), false, true)).kind(), ErrorKind::BrokenXml);
    }
}

TEST(Utf16, HalfACharacterIsAnError) {
    QByteArray text = utf16(u"<Archive a='\U0001F3AC'/>", false, false);
    const int first = text.indexOf("\x3C\xD8");
    ASSERT_GT(first, 0);
    text.remove(first, 2);
    const Reader::Error error = failure(text);
    EXPECT_EQ(error.kind(), ErrorKind::BrokenXml);
    EXPECT_NE(std::string(error.what()).find("at byte " + std::to_string(first + 1)), std::string::npos)
        << error.what();
    EXPECT_FALSE(error.facts().isCutOff);
}

TEST(Utf32, XmlIsRefused) {
    for (const bool isBig : {false, true}) {
        for (const bool hasMark : {false, true}) {
            const Reader::Error error = failure(utf32("<Archive/>", isBig, hasMark));
            EXPECT_EQ(error.kind(), ErrorKind::ForeignEncoding) << error.what();
            EXPECT_EQ(error.facts().reason, "UTF-32");
        }
    }
}

TEST(NoProject, IsNamed) {
    const QByteArray tar = QByteArray("film.xml").leftJustified(257, '\0') + "ustar" + QByteArray(250, '\0');
    const std::vector<std::pair<QByteArray, std::string>> files = {
        {QByteArray("\x1F\x8B\x08\0\0\0\0\0", 8), "a gzip archive; unpack it first"},
        {"PK\x03\x04\x14", "a zip archive; unpack it first"},
        {"7z\xBC\xAF\x27\x1C", "a 7z archive; unpack it first"},
        {"BZh91AY&SY", "a bzip2 archive; unpack it first"},
        {QByteArray("\xFD"
                    "7zXZ\0\0",
                    7),
         "an xz archive; unpack it first"},
        {tar, "a tar archive; unpack it first"},
        {QByteArray("SQLite format 3\0\x10", 17), "an SQLite database; name the project's own file"},
        {"%PDF-1.7\n", "a PDF document; name the project's own file"},
        {QByteArray("\x89PNG\r\n\x1A\n\0\0", 10), "a PNG image; name the project's own file"},
        {QByteArray("\0\0\0\x18"
                    "ftypmp42",
                    12),
         "a video or image file; name the project's own file"},
        {QByteArray(4096, '\0'), "nothing but NUL bytes; restore the file from a backup"},
        {utf16(u"{\"version\": \"1.0\"}", false, true), "JSON in UTF-16; convert it to UTF-8 first"},
        {utf16(u" [1]", true, false), "JSON in UTF-16; convert it to UTF-8 first"},
        {utf32("{}", false, true), "JSON in UTF-32; convert it to UTF-8 first"},
        {utf32("{}", true, false), "JSON in UTF-32; convert it to UTF-8 first"},
        {"film", ""},
        {utf16(u"film", false, true), ""},
    };
    for (const auto& [bytes, reason] : files) {
        const Reader::Error error = failure(bytes);
        EXPECT_EQ(error.kind(), ErrorKind::UnknownForm) << error.what();
        EXPECT_EQ(error.facts().reason, reason);
    }
    // What only looks like a tar archive.
    const QByteArray xml = "<Archive a='" + QByteArray(245, 'x') + "ustar'/>";
    ASSERT_EQ(xml.indexOf("ustar"), 257);
    EXPECT_NO_THROW(Reader::parse(xml, name));
}

/// Every byte behind the byte order mark may be the last one of a text that was cut off.
void expectCutOffs(const QByteArray& text, ErrorKind kind) {
    EXPECT_NO_THROW(Reader::parse(text, name));
    for (int size = 4; size < text.size(); ++size) {
        const QByteArray start = text.left(size);
        if (!Reader::firstCharacter(start))
            continue; // nothing but white space
        const Reader::Error error = failure(start);
        EXPECT_EQ(error.kind(), kind) << size << ' ' << error.what();
        EXPECT_TRUE(error.facts().isCutOff) << size << ' ' << error.what();
        EXPECT_EQ(error.facts().byte, size);
        EXPECT_TRUE(error.facts().line && error.facts().column);
        EXPECT_NE(error.facts().reason.find(" at byte " + std::to_string(size) + ": it was cut off"),
                  std::string::npos);
    }
}

TEST(CutOff, XmlAtEachByte) {
    const QByteArray text =
        "\xEF\xBB\xBF<?xml version=\"1.0\" encoding='UTF-8' standalone=\"yes\"?>\n<!-- a - b -->"
        "<?pi data?>\n<Archive schemaVersion='45'>\r\n <!-- <x> --><RootRef type=\"ObjectRef\" "
        "value='1'/>&lt;&#228;&#x1F3AC;\xC3\xA9\xE2\x82\xAC\xF0\x9F\x8E\xAC<![CDATA[ ]] <a> \xC3\xA9"
        "]]><Item name='&amp;\xF0\x9F\x8E\xAC > \"'  ></Item ><?pi?></Archive>";
    expectCutOffs(text, ErrorKind::BrokenXml);
}

TEST(CutOff, Utf16AtEachByte) {
    const char16_t* text =
        u"<?xml version='1.0' encoding='UTF-16'?>\n<Archive a='\u00e9\U0001F3AC'><b/></Archive>";
    for (const bool isBig : {false, true}) {
        const QByteArray bytes = utf16(text, isBig, true);
        for (int size = 4; size < bytes.size(); ++size) {
            const Reader::Error error = failure(bytes.left(size));
            EXPECT_EQ(error.kind(), ErrorKind::BrokenXml) << size << ' ' << error.what();
            EXPECT_TRUE(error.facts().isCutOff) << size << ' ' << error.what();
            EXPECT_EQ(error.facts().byte, size);
        }
    }
    // Half a line feed at the end.
    const QByteArray line = utf16(u"<Archive/>\n", false, true);
    EXPECT_TRUE(failure(line.left(line.size() - 1)).facts().isCutOff);
}

TEST(CutOff, JsonAtEachByte) {
    const QByteArray text =
        "\xEF\xBB\xBF {\"version\": \"1.0\", \"schemaVersion\": 70,\n \"data\": {\"@meta\": {\"class_name\": "
        "\"a\\n\\u00e9\\uD83C\\uDFAC\xC3\xA9\xF0\x9F\x8E\xAC\", \"object_id\": 1}, \"b\": [-0.5e-3, true, "
        "false, null, "
        "[], {}, 18446744073709551616]}}";
    expectCutOffs(text, ErrorKind::BrokenJson);
}

TEST(CutOff, TheReasonNamesTheInnermostPart) {
    const auto reason = [](const QByteArray& bytes) { return failure(bytes).facts().reason; };
    EXPECT_EQ(reason("<Archive>\n <Clip a='1'>\n  <b/"),
              "the file ends inside <Clip> at byte 29: it was cut off");
    EXPECT_EQ(reason("<Archive>\n <Clip a='1'></Clip"),
              "the file ends inside <Clip> at byte 29: it was cut off");
    EXPECT_EQ(reason("<Archive>\n <Clip/>"), "the file ends inside <Archive> at byte 18: it was cut off");
    EXPECT_EQ(reason("<Archive"), "the file ends inside the document at byte 8: it was cut off");
    EXPECT_EQ(reason("{\"a\": [{}, [1"), "the file ends inside \"a\" at byte 13: it was cut off");
    EXPECT_EQ(reason("{\"a\": {}, "), "the file ends inside the document at byte 10: it was cut off");
    EXPECT_EQ(reason("[[["), "the file ends inside the document at byte 3: it was cut off");
    const Reader::Error error = failure("{\"a\":\n  [1");
    EXPECT_EQ(error.facts().line, 2);
    EXPECT_EQ(error.facts().column, 5);
    EXPECT_EQ(std::string(error.what()),
              "film.xml:2:5: broken JSON: the file ends inside \"a\" at byte 10: it was cut off");
}

TEST(CutOff, OtherFaultsAreNone) {
    for (const char* text :
         {"<Archive><a></Archive>", "<Archive>\n<a b=\"x></a>\n</Archive>", "<Archive/>x", "<Archive a/>",
          "<Archive>&nbsp;</Archive>", "<Archive>\xFF</Archive>", "<Archive></Archive></a"}) {
        const Reader::Error error = failure(text);
        EXPECT_EQ(error.kind(), ErrorKind::BrokenXml);
        EXPECT_FALSE(error.facts().isCutOff) << text << ": " << error.what();
    }
    for (const char* text : {"{\"a\": 1]", "{\"a\" 1", "{\"a\": tru}", "{\"a\": trx", "{} x", "{}}",
                             "{\"a\": 01", "{\"a\": \"\x01", "{'a", "[1,,", "[1e999", "{\"a\": \"\xFFz"}) {
        const Reader::Error error = failure(text);
        EXPECT_EQ(error.kind(), ErrorKind::BrokenJson);
        EXPECT_FALSE(error.facts().isCutOff) << text << ": " << error.what();
    }
}

TEST(Json, ANulByteIsAnError) {
    const QByteArray complete = R"({"version": "1.0", "data": {"@meta": {}}})";
    for (const QByteArray& text :
         {complete + QByteArray(1, '\0'), complete + QByteArray("\0{}", 3), QByteArray("{\"a\": \0", 7)}) {
        const Reader::Error error = failure(text);
        EXPECT_EQ(error.kind(), ErrorKind::BrokenJson);
        EXPECT_EQ(error.facts().byte, text.indexOf('\0') + 1);
        EXPECT_NE(std::string(error.what()).find("a NUL byte"), std::string::npos) << error.what();
        EXPECT_FALSE(error.facts().isCutOff);
    }
}

} // namespace
