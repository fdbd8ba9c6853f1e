// Repairs as people and programs see them: --repair, the advice to give it, and the list of repairs.

#include "Repairs/RepairTable.h"
#include "repairs/OldProject.h"
#include "support/Schemas.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

using nlohmann::json;
using Tests::archive;
using Tests::migratedName;
using Tests::Outcome;
using Tests::sample;

namespace {

/// A project that version 77 can't pass: a title lies on a track that the version does not know.
QByteArray failing() {
    Tests::OldProject project(12);
    project.root(2).timeline(2, "Film", {{3, 4, 16, 0, 5000}, {5, 6, 0, 1000, 2000}});
    return project.clip(3, 1, "Beach").title(5, "Welcome", 7).bytes();
}

/// A project that loses its clips: its root is no project content, which version 57 needs.
QByteArray losing() {
    return archive({}, " schemaVersion='56'");
}

const QByteArray failingAdvice = "--repair would help; clips-without-track: clips that lie on no track of "
                                 "their timeline get one for their type";

class RepairTest : public Tests::JsonProgramTest {
protected:
    /// The names of repairs in JSON.
    static std::vector<std::string> namesIn(const json& repairs) {
        std::vector<std::string> names;
        for (const json& repair : repairs)
            names.push_back(repair.at("name").get<std::string>());
        return names;
    }
    using Names = std::vector<std::string>;
};

TEST_F(RepairTest, AFailureSaysThatRepairWouldHelp) {
    write("film.xml", failing());
    for (const QStringList& arguments :
         {QStringList{"migrate", "film.xml"}, QStringList{"trace", "film.xml", "--output-dir", "steps"}}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 13);
        EXPECT_TRUE(outcome.err.contains("V77_TitlesTrackAdaptor")) << outcome.err.toStdString();
        EXPECT_TRUE(outcome.err.contains(failingAdvice)) << outcome.err.toStdString();
    }
    EXPECT_FALSE(exists(migratedName("film")));
    const json error = call({"migrate", "film.xml"}, 13)["error"];
    EXPECT_EQ(error["step"], "V77_TitlesTrackAdaptor");
    EXPECT_EQ(namesIn(error["repairs"]), Names{"clips-without-track"});
    EXPECT_EQ(error["repairs"][0]["clips"][0]["name"], "Welcome");
}

TEST_F(RepairTest, WhatWasRepairedIsListed) {
    write("film.xml", failing());
    const Outcome outcome = run({"migrate", "film.xml", "--repair"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_TRUE(
        outcome.err.contains("  repaired: clips-without-track, before V77_TrackUsedAdaptor: 1 clip without "
                             "a track of the timeline got one; clip \"Welcome\"\n"))
        << outcome.err.toStdString();
    EXPECT_EQ(run({"verify", migratedName("film"), "--fail-on", "note"}).exitCode, 0);

    const json result = call({"migrate", "film.xml", "--repair", "--force"});
    ASSERT_EQ(result["repairs"].size(), 1u);
    const json& repair = result["repairs"][0];
    EXPECT_EQ(repair["name"], "clips-without-track");
    EXPECT_EQ(repair["before"], "V77_TrackUsedAdaptor");
    EXPECT_EQ(repair["count"], 1);
    EXPECT_EQ(repair["objects"], json::parse(R"([{"class": "Timeline::Clip", "id": 5}])"));
    EXPECT_EQ(repair["clips"], json::parse(R"([{"id": 5, "name": "Welcome", "time": 1000}])"));
    EXPECT_EQ(result["advice"], json::array());
}

TEST_F(RepairTest, ALossSaysThatRepairWouldHelp) {
    write("film.xml", losing());
    const Outcome plain = run({"migrate", "film.xml"});
    EXPECT_EQ(plain.exitCode, 22);
    EXPECT_TRUE(
        plain.err.contains("  note:    --repair would help; project-content: a project whose root is no "
                           "project content gets one"))
        << plain.err.toStdString();
    const json result = call({"migrate", "film.xml", "--force"}, 22);
    EXPECT_EQ(result["repairs"], json::array());
    EXPECT_TRUE(testing::Value(namesIn(result["advice"]), testing::Contains("project-content")));

    const Outcome repaired = run({"migrate", "film.xml", "--repair", "--force"});
    EXPECT_EQ(repaired.exitCode, 0) << repaired.err.toStdString();
    EXPECT_FALSE(repaired.err.contains("would help"));
    EXPECT_EQ(call({"migrate", "film.xml", "--repair", "--force"})["clips"]["kept"], 1);
}

TEST_F(RepairTest, NothingIsSaidWhereRepairsDoNotHelp) {
    // An entry of the timeline is no clip, and no repair makes one of it.
    write("film.json",
          R"({"version":"1.0","schemaVersion":68,"data":{"@meta":{"class_name":"Timeline::Object",)"
          R"("object_id":1},"clips":[{"clip":"Beach"}]}})");
    const Outcome outcome = run({"migrate", "film.json"});
    EXPECT_EQ(outcome.exitCode, 13);
    EXPECT_FALSE(outcome.err.contains("--repair")) << outcome.err.toStdString();
    EXPECT_FALSE(call({"migrate", "film.json"}, 13)["error"].contains("repairs"));
    write("holiday.xml", sample("holiday-v27.xml"));
    EXPECT_FALSE(run({"migrate", "holiday.xml"}).err.contains("--repair"));
}

TEST_F(RepairTest, CharactersThatXmlForbids) {
    write("film.xml", archive({}, " schemaVersion='62'")
                          .replace("Beach", "Be\x01\x02"
                                            "ch"));
    for (const QStringList& arguments :
         {QStringList{"migrate", "film.xml"}, QStringList{"info", "film.xml"},
          QStringList{"run", "V28", "film.xml"}, QStringList{"trace", "film.xml", "--output-dir", "steps"}}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 6) << arguments.join(' ').toStdString();
        EXPECT_TRUE(
            outcome.err.contains("--repair would help; forbidden-characters: characters that XML forbids "
                                 "become U+FFFD"))
            << outcome.err.toStdString();
    }
    const Outcome repaired = run({"migrate", "film.xml", "--repair"});
    EXPECT_EQ(repaired.exitCode, 0) << repaired.err.toStdString();
    EXPECT_TRUE(repaired.err.contains("repaired: forbidden-characters, before parsing: 2 characters"))
        << repaired.err.toStdString();
    EXPECT_TRUE(repaired.err.contains(" U+0001, 1:")) << repaired.err.toStdString();
    EXPECT_TRUE(read(migratedName("film")).contains("Be\\ufffd\\ufffdch") ||
                read(migratedName("film"))
                    .contains("Be\xEF\xBF\xBD\xEF\xBF\xBD"
                              "ch"));
    const json result = call({"migrate", "film.xml", "--repair", "--force"});
    EXPECT_EQ(result["repairs"][0]["places"].size(), 2u);
    EXPECT_EQ(result["repairs"][0]["places"][1]["what"], "U+0002");
}

TEST_F(RepairTest, InfoNamesWhatADocumentNeeds) {
    write("film.xml", failing());
    const Outcome outcome = run({"info", "film.xml"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_TRUE(outcome.out.contains("  repairs that it needs: 1; --repair makes them\n"
                                     "          clips-without-track: clips that lie on no track"))
        << outcome.out.toStdString();
    EXPECT_EQ(namesIn(call({"info", "film.xml"})["repairs"]), Names{"clips-without-track"});

    write("holiday.xml", sample("holiday-v27.xml"));
    EXPECT_TRUE(run({"info", "holiday.xml"}).out.contains("  repairs that it needs: 0\n"));
    EXPECT_EQ(call({"info", "holiday.xml"})["repairs"], json::array());
    write("unknown.xml", archive({}, ""));
    EXPECT_FALSE(run({"info", "unknown.xml"}).out.contains("repairs"));
    EXPECT_EQ(call({"info", "unknown.xml"})["repairs"], nullptr);
    EXPECT_EQ(files().filter("v77"), QStringList());
}

TEST_F(RepairTest, RunMakesTheRepairsOfItsStep) {
    write("film.xml", losing());
    const Outcome plain = run({"run", "V57_ProjectPersistentObjectAdaptor", "film.xml"});
    EXPECT_FALSE(plain.out.contains("Project::Content"));
    const Outcome repaired = run({"run", "V57_ProjectPersistentObjectAdaptor", "film.xml", "--repair"});
    EXPECT_EQ(repaired.exitCode, 0);
    EXPECT_TRUE(repaired.out.contains("Project::Content"));
    EXPECT_TRUE(repaired.err.contains("repaired: project-content, before V57_ProjectPersistentObjectAdaptor"))
        << repaired.err.toStdString();
    const json result =
        call({"run", "V57_ProjectPersistentObjectAdaptor", "film.xml", "--repair", "-o", "new.xml"});
    EXPECT_TRUE(testing::Value(namesIn(result["repairs"]), testing::Contains("project-content")));
    // Another step needs another repair.
    const Outcome other = run({"run", "V28_ClipLabelAdaptor", "film.xml", "--repair"});
    EXPECT_FALSE(other.err.contains("project-content"));

    const QByteArray lut = R"({"version":"1.0","schemaVersion":62,"data":)"
                           R"({"@meta":{"class_name":"Effect::Lut","object_id":1},"Effect::VideoEffect":)"
                           R"({"@meta":{"class_name":"Effect::VideoEffect","object_id":2},"Effect::Object":)"
                           R"({"@meta":{"class_name":"Effect::Object","object_id":3}}}}})";
    write("lut.json", lut);
    const Outcome failed = run({"run", "V63", "lut.json"});
    EXPECT_EQ(failed.exitCode, 13);
    EXPECT_TRUE(failed.err.contains("--repair would help; lut-without-cube: a LUT without a cube"))
        << failed.err.toStdString();
    EXPECT_EQ(run({"run", "V63", "lut.json", "--repair"}).exitCode, 0);
}

TEST_F(RepairTest, TraceWritesTheDocumentBehindARepair) {
    write("film.xml", failing());
    const json result = call({"trace", "film.xml", "--output-dir", "steps", "--repair"});
    EXPECT_EQ(namesIn(result["repairs"]), Names{"clips-without-track"});
    const json* entry = nullptr;
    for (const json& candidate : result["steps"]) {
        if (candidate.value("repair", "") == "clips-without-track")
            entry = &candidate;
    }
    ASSERT_TRUE(entry);
    EXPECT_EQ((*entry)["class"], nullptr);
    const auto file = QString::fromStdString((*entry)["file"].get<std::string>());
    EXPECT_TRUE(file.endsWith("-clips-without-track.json")) << file.toStdString();
    // The steps behind it pass what it wrote.
    EXPECT_EQ(run({"migrate", file, "-o", "rest.json"}).exitCode, 0);
    const Outcome text = run({"trace", "film.xml", "--output-dir", "steps", "--repair", "--force"});
    EXPECT_TRUE(text.out.contains("  repair clips-without-track ")) << text.out.toStdString();
    EXPECT_TRUE(text.err.contains("repaired: clips-without-track")) << text.err.toStdString();
}

TEST_F(RepairTest, TheListHasAllRepairs) {
    const Outcome list = run({"repairs"});
    EXPECT_EQ(list.exitCode, 0);
    EXPECT_EQ(list.err, "");
    const json repairs = call({"repairs"})["repairs"];
    ASSERT_EQ(repairs.size(), Repairs::repairTable().size());
    for (std::size_t place = 0; place < repairs.size(); ++place) {
        const Repairs::RepairRow& row = Repairs::repairTable()[place];
        EXPECT_EQ(repairs[place]["name"], row.name);
        EXPECT_EQ(repairs[place]["summary"], row.summary);
        EXPECT_TRUE(list.out.contains(QByteArray(row.name.data(), int(row.name.size())) + ' '));
        EXPECT_TRUE(list.out.contains(QByteArray(row.summary.data(), int(row.summary.size())) + '\n'));
    }
    EXPECT_TRUE(
        list.out.contains("before V4_TrackValueAdaptor, V22_TransitionsAdaptor, V27_MultitrackAdaptor\n"));
    EXPECT_EQ(run({"repairs", "film.xml"}).exitCode, 2);
}

TEST_F(RepairTest, AHealthyProjectGivesTheSameBytes) {
    write("film.xml", sample("holiday-v27.xml"));
    EXPECT_EQ(run({"migrate", "film.xml", "-o", "plain.json"}).exitCode, 0);
    const Outcome repaired = run({"migrate", "film.xml", "-o", "repaired.json", "--repair"});
    EXPECT_EQ(repaired.exitCode, 0);
    EXPECT_FALSE(repaired.err.contains("repaired:"));
    EXPECT_EQ(read("repaired.json"), read("plain.json"));
    EXPECT_EQ(run({"migrate", "-", "-o", "-", "--repair"}, sample("holiday-v27.xml")).out,
              run({"migrate", "-", "-o", "-"}, sample("holiday-v27.xml")).out);
}

TEST_F(RepairTest, ADocumentOfTheNewestVersionIsRepairedToo) {
    write("film.xml", archive());
    ASSERT_EQ(run({"migrate", "film.xml", "-o", "film.json"}).exitCode, 0);
    const Outcome nothing = run({"migrate", "film.json", "-o", "same.json", "--repair"});
    EXPECT_EQ(nothing.exitCode, 0);
    EXPECT_TRUE(nothing.err.contains("nothing to do"));
    EXPECT_EQ(read("same.json"), read("film.json"));
    write("film.json",
          read("film.json")
              .replace("\"name\":\"Beach\"", "\"name\":\"Beach\",\"file\":{\"@meta_reference\":99}"));
    EXPECT_EQ(run({"verify", "film.json"}).exitCode, 17);
    const Outcome repaired = run({"migrate", "film.json", "--in-place", "--repair"});
    EXPECT_EQ(repaired.exitCode, 0) << repaired.err.toStdString();
    EXPECT_TRUE(repaired.err.contains("repaired: dangling-references")) << repaired.err.toStdString();
    EXPECT_EQ(run({"verify", "film.json", "--fail-on", "note"}).exitCode, 0);
}

TEST_F(RepairTest, StrictAndCheckSeeTheRepairedResult) {
    write("film.xml", losing());
    EXPECT_EQ(run({"migrate", "film.xml", "--check"}).exitCode, 14);
    EXPECT_EQ(run({"migrate", "film.xml", "--check", "--repair"}).exitCode, 19);
    EXPECT_EQ(run({"migrate", "film.xml", "--strict"}).exitCode, 14);
    EXPECT_FALSE(exists(migratedName("film")));
    EXPECT_EQ(run({"migrate", "film.xml", "--strict", "--repair"}).exitCode, 0);
    EXPECT_TRUE(exists(migratedName("film")));
}

} // namespace
