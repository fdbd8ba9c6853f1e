// Damaged files as people and programs see them: what is said without --repair, and what --repair brings back.

#include "support/Schemas.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

using nlohmann::json;
using Tests::archive;
using Tests::migratedName;
using Tests::Outcome;
using Tests::sample;

namespace {

/// A project of 25 clips whose last tenth is missing.
QByteArray cutOff() {
    const QByteArray whole = sample("holiday-v27.xml");
    return whole.left(whole.size() * 9 / 10);
}

class DamagedFilesTest : public Tests::JsonProgramTest {
protected:
    /// Migrates a file with --repair and expects a result without faults that says so.
    json repaired(const QByteArray& bytes, int code, const QString& name = "film.xml") const {
        write(name, bytes);
        const json result = call({"migrate", name, "--repair", "--force", "-o", "result.json"}, code);
        const Outcome verify = run({"verify", "result.json"});
        EXPECT_EQ(verify.exitCode, 0) << verify.out.toStdString();
        return result;
    }

    static std::vector<std::string> damagesIn(const json& result) {
        std::vector<std::string> damages;
        for (const json& finding : result["recovery"]["findings"])
            damages.push_back(finding["damage"].get<std::string>());
        return damages;
    }
    using Damages = std::vector<std::string>;
};

TEST_F(DamagedFilesTest, EveryCommandThatMigratesSaysThatRepairWouldHelp) {
    write("film.xml", cutOff());
    for (const QStringList& arguments :
         {QStringList{"migrate", "film.xml"}, QStringList{"migrate", "film.xml", "--check"},
          QStringList{"run", "V28", "film.xml"}, QStringList{"info", "film.xml"},
          QStringList{"trace", "film.xml", "--output-dir", "steps"}, QStringList{"explain", "film.xml"},
          QStringList{"diff", "film.xml", "film.xml"}}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 6) << arguments.join(' ').toStdString();
        EXPECT_TRUE(outcome.err.contains("--repair would help; the file is damaged: "))
            << arguments.join(' ').toStdString() << ": " << outcome.err.toStdString();
    }
    EXPECT_EQ(files(), QStringList{"film.xml"});
    const json error = call({"migrate", "film.xml"}, 6)["error"];
    EXPECT_EQ(error["kind"], "broken-xml");
    EXPECT_FALSE(error["recovery"]["complete"]);
    EXPECT_GT(error["recovery"]["clips"]["inPlace"], 0);
}

TEST_F(DamagedFilesTest, WhatWasRecoveredIsToldAndTheExitCodeSaysThatSomethingIsMissing) {
    write("film.xml", cutOff());
    const Outcome outcome = run({"migrate", "film.xml", "--repair"});
    EXPECT_EQ(outcome.exitCode, 22) << outcome.err.toStdString();
    EXPECT_TRUE(outcome.err.contains("  damaged file: something is missing\n")) << outcome.err.toStdString();
    EXPECT_TRUE(outcome.err.contains("clips recovered in place\n")) << outcome.err.toStdString();
    EXPECT_EQ(run({"verify", migratedName("film")}).exitCode, 0);

    const json result = repaired(cutOff(), 22);
    EXPECT_EQ(damagesIn(result).front(), "cut-off");
    EXPECT_EQ(result["recovery"]["findings"][0]["byte"], cutOff().size());
    EXPECT_EQ(result["clips"]["in"], result["recovery"]["clips"]["inPlace"]);
    EXPECT_EQ(result["from"]["version"], 27);

    const Outcome quiet = run({"migrate", "film.xml", "--repair", "--quiet", "--force"});
    EXPECT_EQ(quiet.exitCode, 22);
    EXPECT_TRUE(quiet.err.startsWith("film.xml: the file is damaged: ")) << quiet.err.toStdString();
}

TEST_F(DamagedFilesTest, EachCommandRecovers) {
    write("film.xml", cutOff());
    EXPECT_FALSE(call({"run", "V28", "film.xml", "--repair", "-o", "run.xml"}, 22)["recovery"]["complete"]);
    EXPECT_EQ(run({"info", "run.xml"}).exitCode, 0);
    EXPECT_FALSE(call({"trace", "film.xml", "--repair", "--output-dir", "steps"}, 22)["recovery"].is_null());
    EXPECT_FALSE(call({"explain", "film.xml", "--repair"}, 22)["recovery"].is_null());
    const Outcome explained = run({"explain", "film.xml", "--repair"});
    EXPECT_TRUE(explained.out.contains("damaged file: something is missing")) << explained.out.toStdString();
    EXPECT_EQ(run({"diff", "film.xml", "film.xml", "--repair"}).exitCode, 0);
    const Outcome log = run({"run", "V28", "film.xml", "--repair"});
    EXPECT_EQ(log.exitCode, 22);
    EXPECT_TRUE(log.err.contains("damaged file: something is missing")) << log.err.toStdString();
}

TEST_F(DamagedFilesTest, CheckAndStrictSeeThatSomethingIsMissing) {
    write("film.xml", cutOff());
    EXPECT_EQ(run({"migrate", "film.xml", "--repair", "--check"}).exitCode, 14);
    EXPECT_EQ(run({"migrate", "film.xml", "--repair", "--strict"}).exitCode, 14);
    EXPECT_EQ(files(), QStringList{"film.xml"});
}

TEST_F(DamagedFilesTest, TheDamagedFileIsKeptAsBackup) {
    write("film.xml", cutOff());
    const json result = call({"migrate", "film.xml", "--repair", "--in-place", "--to", "62"}, 22);
    EXPECT_EQ(read(QString::fromStdString(result["backup"].get<std::string>())), cutOff());
    EXPECT_EQ(run({"verify", "film.xml"}).exitCode, 0);
}

TEST_F(DamagedFilesTest, AProjectOfTheNewestVersionIsRecoveredToo) {
    write("film.xml", sample("holiday-v27.xml"));
    ASSERT_EQ(run({"migrate", "film.xml", "-o", "film.json"}).exitCode, 0);
    const QByteArray whole = read("film.json");
    const json result = repaired(whole.left(whole.size() * 3 / 4), 22, "film.json");
    EXPECT_EQ(result["to"]["version"], 77);
    EXPECT_FALSE(result["recovery"]["versionGuess"]["reasons"].empty());
    EXPECT_GT(result["clips"]["kept"], 0);
}

TEST_F(DamagedFilesTest, AMissingOrWrongVersionIsGuessed) {
    write("old.xml", sample("holiday-v3.xml"));
    ASSERT_EQ(run({"migrate", "old.xml", "--to", "27", "-o", "film.xml"}).exitCode, 0);
    const QByteArray whole = read("film.xml");
    const QByteArray attribute = "schemaVersion=\"27\"";
    ASSERT_TRUE(whole.contains(attribute));
    for (const QByteArray& wrong :
         {QByteArray(), QByteArray("schemaVersion=\"seven\""), QByteArray("schemaVersion=\"-3\"")}) {
        const json result = repaired(QByteArray(whole).replace(attribute, wrong), 0);
        EXPECT_EQ(damagesIn(result), Damages{"version"}) << wrong.toStdString();
        const json& recovery = result["recovery"];
        EXPECT_LE(recovery["version"], 27);
        EXPECT_GE(recovery["versionGuess"]["highest"], 27);
        EXPECT_FALSE(recovery["versionGuess"]["reasons"].empty());
        EXPECT_EQ(result["clips"]["removed"], 0);
        EXPECT_EQ(recovery["clips"]["inPlace"], result["clips"]["in"]);
    }
    write("film.xml", QByteArray(whole).replace(attribute, ""));
    const Outcome plain = run({"migrate", "film.xml"});
    EXPECT_NE(plain.exitCode, 0);
    EXPECT_TRUE(plain.err.contains("--repair would help; the schema version is missing or wrong: "))
        << plain.err.toStdString();
    const Outcome outcome = run({"migrate", "film.xml", "--repair"});
    EXPECT_TRUE(outcome.err.contains("schema version missing or wrong: nothing is missing"))
        << outcome.err.toStdString();
    EXPECT_TRUE(outcome.err.contains(" by its content")) << outcome.err.toStdString();
    // Who names the version needs no guess.
    const json named = call({"migrate", "film.xml", "--repair", "--from", "27", "--force"}, 0);
    EXPECT_EQ(named["recovery"], nullptr);
    EXPECT_EQ(named["from"]["version"], 27);
    // It has to be one of the document's form.
    EXPECT_NE(run({"migrate", "film.xml", "--repair", "--from", "70", "--force"}).exitCode, 0);
}

TEST_F(DamagedFilesTest, AVersionAboveTheNewestIsNotSilentlyRead) {
    write("film.xml", archive());
    ASSERT_EQ(run({"migrate", "film.xml", "-o", "film.json"}).exitCode, 0);
    const QByteArray newer = read("film.json").replace("\"schemaVersion\":77", "\"schemaVersion\":90");
    ASSERT_TRUE(newer.contains("\"schemaVersion\":90"));
    const json result = repaired(newer, 22, "film.json");
    EXPECT_EQ(result["recovery"]["newerVersion"], 90);
    const Outcome outcome = run({"migrate", "film.json", "--repair", "-o", "again.json"});
    EXPECT_TRUE(outcome.err.contains("a newer editor may have written it")) << outcome.err.toStdString();
}

TEST_F(DamagedFilesTest, OtherDamage) {
    const QByteArray whole = sample("holiday-v27.xml");
    // Two copies: the second is the same project.
    EXPECT_EQ(damagesIn(repaired(whole + whole, 0)), Damages{"several-documents"});
    // A lost sector.
    QByteArray lost = whole;
    lost.replace(whole.size() / 2, 512, QByteArray(512, '\0'));
    EXPECT_EQ(damagesIn(repaired(lost, 22)).front(), "lost-bytes");
    // Letters of an old code page.
    QByteArray latin = archive({}, " schemaVersion='62'")
                           .replace("Beach", "B\xE9"
                                             "ach");
    const json result = repaired(latin, 0);
    EXPECT_EQ(damagesIn(result), Damages{"encoding"});
    EXPECT_TRUE(read("result.json")
                    .contains("B\xC3\xA9"
                              "ach"))
        << read("result.json").toStdString();
}

TEST_F(DamagedFilesTest, WhatIsNoProjectStaysRefused) {
    for (const QByteArray& bytes :
         {QByteArray("<html><body>film</body></html>"), QByteArray("<Archive"), QByteArray("{\"a\": [1, 2"),
          QByteArray(4096, '\0'), QByteArray("\x1f\x8b\x08\x00")}) {
        write("film.xml", bytes);
        const Outcome plain = run({"migrate", "film.xml"});
        EXPECT_NE(plain.exitCode, 0);
        EXPECT_FALSE(plain.err.contains("--repair")) << plain.err.toStdString();
        const Outcome outcome = run({"migrate", "film.xml", "--repair"});
        EXPECT_EQ(outcome.exitCode, plain.exitCode);
        EXPECT_EQ(outcome.err, plain.err);
    }
    EXPECT_EQ(files(), QStringList{"film.xml"});
}

TEST_F(DamagedFilesTest, NothingOfContentIsNoHelp) {
    // All that is left is the beginning of the predeclarations.
    const QByteArray whole = sample("holiday-v27.xml");
    write("film.xml", whole.left(whole.size() / 100));
    const Outcome outcome = run({"migrate", "film.xml"});
    EXPECT_EQ(outcome.exitCode, 6);
    EXPECT_FALSE(outcome.err.contains("would help")) << outcome.err.toStdString();
}

TEST_F(DamagedFilesTest, ABatchRecovers) {
    ASSERT_TRUE(QDir(path("")).mkpath("in"));
    write("in/whole.xml", sample("holiday-v27.xml"));
    write("in/cut.xml", cutOff());
    EXPECT_EQ(run({"batch", "in", "--output-dir", "plain"}).exitCode, 20);
    EXPECT_FALSE(exists("plain/cut.v77.json"));
    const Outcome outcome = run({"batch", "in", "--output-dir", "out", "--repair"});
    EXPECT_EQ(outcome.exitCode, 20) << outcome.err.toStdString(); // something is missing
    EXPECT_EQ(run({"verify", "out/cut.v77.json"}).exitCode, 0);
    EXPECT_EQ(run({"verify", "out/whole.v77.json"}).exitCode, 0);
    // The table says so.
    run({"batch", "--status", "out/adaptors-batch.sqlite", "--report", "table.jsonl"});
    std::map<std::string, json> rows;
    for (const QByteArray& line : read("table.jsonl").trimmed().split('\n')) {
        json row = json::parse(line.toStdString());
        const std::string file = row["path"].get<std::string>();
        rows[file.substr(file.rfind('/') + 1)] = std::move(row);
    }
    EXPECT_EQ(rows["whole.xml"]["repairs"], nullptr);
    EXPECT_EQ(rows["cut.xml"]["repairs"], "recovery");
    EXPECT_EQ(rows["cut.xml"]["kind"], "damaged");
    EXPECT_EQ(rows["cut.xml"]["code"], 22);
}

} // namespace
