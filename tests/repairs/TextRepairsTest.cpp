// Texts that a parser refuses.

#include "repairs/OldProject.h"

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::clipNames;
using Tests::expectWhole;
using Tests::Migrated;
using Tests::migrateOld;
using Tests::OldProject;

namespace {

QByteArray film() {
    OldProject project(62);
    project.root(2).timeline(2, "Film", {{3, 4, 20, 0, 5000}}, Tests::refs("tracks", {20}));
    return project.tracks(2, {{20, 16}}).clip(3, 1, "Beach").bytes();
}

/// The name of the film's clip after a migration with repairs.
std::string nameAfter(const QByteArray& bytes) {
    const Migrated repaired = migrateOld(bytes, true);
    expectWhole(repaired);
    return repaired.error ? std::string() : clipNames(repaired.project(), "Film").at(0);
}

TEST(ForbiddenCharacters, InArchives) {
    const QByteArray replacement = "\xEF\xBF\xBD";
    for (const QByteArray& forbidden :
         {QByteArray("\x01"), QByteArray("\x1F"), QByteArray("&#1;"), QByteArray("&#x1f;"),
          QByteArray("&#xD800;"), QByteArray("&#xFFFE;"), QByteArray("&#x110000;"), QByteArray("&#0;"),
          QByteArray("\xEF\xBF\xBE"), QByteArray("\xEF\xBF\xBF")}) {
        const QByteArray bytes = film().replace("Beach", "Be" + forbidden + "ch");
        const Migrated plain = migrateOld(bytes, false);
        ASSERT_TRUE(plain.error) << forbidden.toStdString();
        EXPECT_EQ(plain.error->kind(), Reader::ErrorKind::BrokenXml);
        EXPECT_EQ(nameAfter(bytes), ("Be" + replacement + "ch").toStdString()) << forbidden.toStdString();
    }
}

TEST(ForbiddenCharacters, EachPlaceIsNamed) {
    const QByteArray bytes = QByteArray("<a>\n <b c='1\x02'/>\n").append("\x03&#4;</a>");
    const Repairs::RepairedText text = Repairs::repairText(bytes);
    ASSERT_EQ(text.repairs.size(), 1u);
    const Reader::RepairMade& made = text.repairs[0];
    EXPECT_EQ(made.name, "forbidden-characters");
    EXPECT_EQ(made.before, "parsing");
    EXPECT_EQ(made.count, 3u);
    ASSERT_EQ(made.places.size(), 3u);
    EXPECT_EQ(made.places[0].line, 2);
    EXPECT_EQ(made.places[0].column, 9);
    EXPECT_EQ(made.places[0].what, "U+0002");
    EXPECT_EQ(made.places[1].line, 3);
    EXPECT_EQ(made.places[1].column, 1);
    EXPECT_EQ(made.places[2].column, 2);
    EXPECT_EQ(made.places[2].what, "U+0004");
    EXPECT_EQ(text.bytes, "<a>\n <b c='1\xEF\xBF\xBD'/>\n\xEF\xBF\xBD&#xFFFD;</a>");
}

TEST(ForbiddenCharacters, OfManyTheFirstAreListed) {
    const QByteArray bytes = film().replace("Beach", QByteArray(1000, '\x01'));
    const Repairs::RepairedText text = Repairs::repairText(bytes);
    ASSERT_EQ(text.repairs.size(), 1u);
    EXPECT_EQ(text.repairs[0].count, 1000u);
    EXPECT_EQ(text.repairs[0].places.size(), 20u);
    EXPECT_EQ(nameAfter(bytes).size(), 3000u);
}

TEST(ForbiddenCharacters, InOtherEncodings) {
    QByteArray latin = film().replace("encoding='UTF-8'", "encoding='ISO-8859-1'");
    latin.replace("Beach", "B\xE9"
                           "a\x01");
    EXPECT_EQ(nameAfter(latin), "B\xC3\xA9"
                                "a\xEF\xBF\xBD");

    QString text = QString::fromUtf8(film().replace("encoding='UTF-8'", "encoding='UTF-16'"));
    text.replace("Beach", QString("B") + QChar(0xE9) + QChar(1));
    QByteArray wide("\xFF\xFE");
    for (const QChar c : text)
        wide.append(char(c.unicode() & 0xFF)).append(char(c.unicode() >> 8));
    EXPECT_TRUE(migrateOld(wide, false).error);
    EXPECT_EQ(nameAfter(wide), "B\xC3\xA9\xEF\xBF\xBD");
}

TEST(ForbiddenCharacters, AllowedOnesStay) {
    const QByteArray bytes =
        film().replace("Beach", "a&#9;b&#10;c\x7F\xC2\x85\xF0\x9F\x8C\x8A&#x1F30A;&amp;#1;");
    const Repairs::RepairedText text = Repairs::repairText(bytes);
    EXPECT_TRUE(text.repairs.empty());
    EXPECT_EQ(text.bytes, bytes);
}

TEST(ForbiddenCharacters, WhatIsNoReferenceStays) {
    for (const char* text : {"&#;", "&#x;", "&#1", "&#x1", "&#G;", "&#xG;", "&#1a;", "&#X1;", "&#-1;",
                             "&amp;", "&", "&#0000000000001;"}) {
        const QByteArray bytes = film().replace("Beach", text);
        const Repairs::RepairedText repaired = Repairs::repairText(bytes);
        EXPECT_TRUE(repaired.repairs.empty()) << text;
        EXPECT_EQ(repaired.bytes, bytes) << text;
    }
}

TEST(ForbiddenCharacters, InTextThatCannotBeDecodedStay) {
    // A second half of a character of UTF-16 without the first one.
    const QByteArray bytes("<\0a\0\x01\0\x00\xDC>\0", 10);
    const Repairs::RepairedText text = Repairs::repairText(bytes);
    EXPECT_TRUE(text.repairs.empty());
    EXPECT_EQ(text.bytes, bytes);
}

QByteArray jsonFilm(const QByteArray& name, const QByteArray& number) {
    return R"({"version":"1.0","schemaVersion":76,"data":{"@meta":{"class_name":"Timeline::Object","object_id":1},"name":")" +
           name + R"(","frameRate":)" + number + R"(,"clips":[],"tracks":[]}})";
}

TEST(NumbersInText, ThatAreNotFinite) {
    const QByteArray greatest = "1.7976931348623157e308";
    const std::vector<std::pair<QByteArray, double>> cases = {{"NaN", 0},
                                                              {"nan", 0},
                                                              {"Infinity", 0},
                                                              {"-Infinity", 0},
                                                              {"-inf", 0},
                                                              {"1e999", 1.7976931348623157e308},
                                                              {"-1.5E+400", -1.7976931348623157e308},
                                                              {QByteArray(400, '9'), 1.7976931348623157e308}};
    for (const auto& [token, expected] : cases) {
        const QByteArray bytes = jsonFilm("Film", token);
        const Migrated plain = migrateOld(bytes, false);
        ASSERT_TRUE(plain.error) << token.toStdString();
        EXPECT_EQ(plain.error->kind(), Reader::ErrorKind::BrokenJson);
        const Migrated repaired = migrateOld(bytes, true);
        expectWhole(repaired);
        EXPECT_EQ(repaired.project().root().at("frameRate"), expected) << token.toStdString();
        ASSERT_THAT(repaired.repairs(), ElementsAre("numbers-in-text"));
        EXPECT_EQ(repaired.report.repairs[0].places.at(0).column, bytes.indexOf(token) + 1);
    }
}

TEST(NumbersInText, OnesInStringsAndFiniteOnesStay) {
    for (const QByteArray& token :
         {QByteArray("1e308"), QByteArray("-0.0"), QByteArray("12345678901234567890123"),
          QByteArray("1e-999"), QByteArray("true"), QByteArray("null")}) {
        const QByteArray bytes = jsonFilm("NaN \\\" Infinity 1e999", token);
        const Repairs::RepairedText text = Repairs::repairText(bytes);
        EXPECT_TRUE(text.repairs.empty()) << token.toStdString();
        EXPECT_EQ(text.bytes, bytes);
    }
}

TEST(ForbiddenCharacters, ControlCharactersInJsonTexts) {
    const QByteArray bytes = jsonFilm("a\x01\\\"\tb", "25");
    EXPECT_TRUE(migrateOld(bytes, false).error);
    const Migrated repaired = migrateOld(bytes, true);
    expectWhole(repaired);
    EXPECT_EQ(repaired.project().root().at("name"), "a\x01\"\tb");
    ASSERT_THAT(repaired.repairs(), ElementsAre("forbidden-characters"));
    EXPECT_EQ(repaired.report.repairs[0].count, 2u);
}

TEST(ForbiddenCharacters, ControlCharactersInTextsOfAJsonList) {
    EXPECT_EQ(Repairs::repairText("[\"a\x02\", \x02]").bytes, "[\"a\\u0002\", \x02]");
}

TEST(ForbiddenCharacters, ControlCharactersInJsonOfUtf16Stay) {
    const QByteArray bytes("{\0\"\0\x02\0\"\0}\0", 10);
    EXPECT_EQ(Repairs::repairText(bytes).bytes, bytes);
}

TEST(TextRepairs, WhatIsNoProjectStays) {
    for (const QByteArray& bytes :
         {QByteArray(), QByteArray("\x01"), QByteArray("hello\x02"), QByteArray("PK\x03\x04")}) {
        const Repairs::RepairedText text = Repairs::repairText(bytes);
        EXPECT_TRUE(text.repairs.empty());
        EXPECT_EQ(text.bytes, bytes);
    }
}

} // namespace
