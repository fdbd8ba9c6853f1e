// The commands that say what is different between projects, and what steps did to one.

#include "support/ProgramTest.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

using nlohmann::json;
using Tests::archive;
using Tests::Outcome;
using Tests::ProgramTest;
using Tests::sample;

namespace {

class Diff : public ProgramTest {
protected:
    QByteArray linesOf(const QByteArray& before, const QByteArray& after) const {
        write("old.xml", before);
        write("new.xml", after);
        const Outcome outcome = run({"diff", "old.xml", "new.xml"});
        EXPECT_EQ(outcome.exitCode, 21) << outcome.err.toStdString();
        EXPECT_EQ(outcome.err, "");
        return outcome.out.mid(outcome.out.indexOf('\n') + 1);
    }
    /// What one edit of a sample in JSON gives.
    QByteArray linesAfter(void (*edit)(json& timeline), const char* name = "holiday-v63.json") const {
        json document = json::parse(sample(name).toStdString());
        edit(document["data"]["content"]["timeline"]);
        return linesOf(sample(name), QByteArray::fromStdString(document.dump()));
    }
};

/// The entry of a timeline in JSON with the clip of that name.
json& entryOf(json& timeline, const std::string& name) {
    for (json& entry : timeline["clips"]) {
        if (entry["clip"].value("name", "") == name)
            return entry;
    }
    throw std::runtime_error("no entry of " + name);
}

/// Two tracks, of which the second has that type; the clip is on the track with that id.
QByteArray withTwoTracks(const QByteArray& type, const QByteArray& trackOfClip) {
    return archive("<RootObject type='Timeline::Track' objectId='7'><type type='int32_t' value='" + type +
                   "'/><timeline type='ObjectRef' value='2'/></RootObject>")
        .replace("<track type='ObjectRef' value='5'/>",
                 "<track type='ObjectRef' value='" + trackOfClip + "'/>")
        .replace("<tracks type='Array' size='1'>",
                 "<tracks type='Array' size='2'><Item type='Item' index='2'><Data type='ObjectRef' "
                 "value='7'/></Item>");
}

TEST_F(Diff, AProjectIsEqualToItsResult) {
    for (const char* name : {"holiday-v3.xml", "holiday-v27.xml", "holiday-v45.xml", "holiday-v60.json",
                             "holiday-v62.xml", "holiday-v70.json", "holiday-v76.json"}) {
        write("film", sample(name));
        run({"migrate", "film", "-o", "film.json", "--force"});
        const Outcome outcome = run({"diff", "film", "film.json"});
        EXPECT_EQ(outcome.exitCode, 0) << name << outcome.out.toStdString() << outcome.err.toStdString();
        EXPECT_TRUE(outcome.out.endsWith("  no differences\n")) << outcome.out.toStdString();
        EXPECT_EQ(run({"diff", "film.json", "film"}).exitCode, 0) << name;
    }
}

TEST_F(Diff, AProjectIsEqualToItsBundle) {
    const QString bundle = QString::fromStdString((Tests::samplesFolder() / "holiday-v20-bundle").string());
    ASSERT_NE(run({"migrate", bundle, "--bundle", "new"}).exitCode, 1);
    const Outcome outcome = run({"diff", bundle, "new"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out.toStdString() << outcome.err.toStdString();
}

TEST_F(Diff, ResultsInOtherFoldersAreEqual) {
    write("film.xml", sample("holiday-v45.xml"));
    ASSERT_TRUE(QDir(m_folder.path()).mkpath("far/away"));
    run({"migrate", "film.xml", "-o", "far/away/film.json"});
    const Outcome outcome = run({"diff", "film.xml", "far/away/film.json"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out.toStdString();
    EXPECT_EQ(run({"diff", "far/away", "-"}, sample("holiday-v45.xml")).exitCode, 0);
}

TEST_F(Diff, SaysWhatChangedInTheWordsOfTheProject) {
    EXPECT_EQ(linesOf(archive(), archive().replace("'Beach'", "'Strand'")),
              "  renamed: clip \"Beach\" at 0:00:00.000 is \"Strand\" now\n  1 difference\n");
    EXPECT_EQ(linesOf(archive(), archive().replace("<timestamp type='int64_t' value='0'/>",
                                                   "<timestamp type='int64_t' value='1500'/>")),
              "  moved: clip \"Beach\" at 0:00:00.000: 0:00:00.000 -> 0:00:01.500\n  1 difference\n");
    EXPECT_EQ(linesOf(archive(), archive().replace("value='40'", "value='50'")),
              "  trimmed: clip \"Beach\" at 0:00:00.000: 0:00:00.040 -> 0:00:00.050 long\n  1 difference\n");
    EXPECT_EQ(
        linesOf(archive(), archive().replace("value='1'/></RootObject>", "value='2'/></RootObject>")),
        "  removed: clip \"Beach\" at 0:00:00.000 (video)\n  added: clip \"Beach\" at 0:00:00.000 (image)\n"
        "  2 differences\n");
    EXPECT_EQ(linesOf(archive(),
                      archive().replace("<used type='bool' value='1'/>", "<used type='bool' value='0'/>")),
              "  changed: Timeline::Track (id 5): used: true -> false\n  1 difference\n");
    const QByteArray effect = "<RootObject type='Effect::Blur' objectId='7'/>";
    const auto withEffect = [&](const QByteArray& items) {
        return archive(effect).replace("<name ",
                                       "<effects type='Array' size='1'>" + items + "</effects><name ");
    };
    EXPECT_EQ(linesOf(withEffect({}), withEffect("<Item><Data type='ObjectRef' value='7'/></Item>")),
              "  effect added: clip \"Beach\" at 0:00:00.000: Blur\n  1 difference\n");
    const auto withFile = [](const QByteArray& path) {
        return archive("<RootObject type='File' objectId='7'><path type='String' value='" + path +
                       "'/></RootObject>")
            .replace("<name ", "<file type='ObjectRef' value='7'/><name ");
    };
    EXPECT_EQ(linesOf(withFile("a.mp4"), withFile("b.mp4")),
              "  relinked: clip \"Beach\" at 0:00:00.000: a.mp4 -> b.mp4\n  1 difference\n");
}

TEST_F(Diff, AClipOnAnotherTrack) {
    EXPECT_EQ(linesOf(withTwoTracks("64", "5"), withTwoTracks("64", "7")),
              "  moved: clip \"Beach\" at 0:00:00.000: track main -> overlay\n  1 difference\n");
    EXPECT_EQ(linesOf(withTwoTracks("16", "5"), withTwoTracks("16", "7")),
              "  moved: clip \"Beach\" at 0:00:00.000: to another track of its kind\n  1 difference\n");
    EXPECT_EQ(linesOf(withTwoTracks("64", "5"),
                      withTwoTracks("64", "7").replace("<timestamp type='int64_t' value='0'/>",
                                                       "<timestamp type='int64_t' value='1500'/>")),
              "  moved: clip \"Beach\" at 0:00:00.000: 0:00:00.000 -> 0:00:01.500, track main -> overlay\n"
              "  1 difference\n");
}

TEST_F(Diff, AnotherPartOfTheSource) {
    const auto from = [](const QByteArray& start, const QByteArray& duration) {
        return archive().replace("<duration type='int64_t' value='40'/>",
                                 "<duration type='int64_t' value='" + duration +
                                     "'/><sourcePosition type='int64_t' value='" + start + "'/>");
    };
    EXPECT_EQ(linesOf(from("0", "40"), from("2000", "40")),
              "  trimmed: clip \"Beach\" at 0:00:00.000: start in its source 0:00:00.000 -> 0:00:02.000\n"
              "  1 difference\n");
    EXPECT_EQ(linesOf(from("0", "40"), from("2000", "50")),
              "  trimmed: clip \"Beach\" at 0:00:00.000: 0:00:00.040 -> 0:00:00.050 long, "
              "start in its source 0:00:00.000 -> 0:00:02.000\n  1 difference\n");
}

TEST_F(Diff, AClipWithoutItsFile) {
    const QByteArray with =
        archive("<RootObject type='File' objectId='7'><path type='String' value='a.mp4'/></RootObject>")
            .replace("<name ", "<file type='ObjectRef' value='7'/><name ");
    EXPECT_TRUE(
        linesOf(with, archive()).contains("  relinked: clip \"Beach\" at 0:00:00.000: a.mp4 -> none\n"));
}

TEST_F(Diff, TheWordsOfATitle) {
    EXPECT_EQ(linesAfter([](json& timeline) {
                  entryOf(timeline, "The old harbour")["clip"]["overlay"]["items"][0]["encodedText"] =
                      "UGllcg==";
              }),
              "  text changed: clip \"The old harbour\" at 0:00:11.500: [\"The old harbour <1924>\"] -> "
              "[\"Pier\"]\n  1 difference\n");
}

TEST_F(Diff, TheOrderOfEffects) {
    EXPECT_EQ(linesAfter([](json& timeline) {
                  json& effects = entryOf(timeline, "Beach")["clip"]["effects"];
                  std::swap(effects[0], effects[1]);
              }),
              "  effects reordered: clip \"Beach\" at 0:00:04.000\n  1 difference\n");
}

TEST_F(Diff, ATransitionAtAnotherClip) {
    const QByteArray lines = linesAfter([](json& timeline) {
        json& transition = timeline["transitions"][0];
        transition["clipFrom"] = transition["clipTo"];
        transition["clipTo"] = nullptr;
    });
    EXPECT_EQ(lines, "  transition removed: Fade at clip \"Beach\" at 0:00:04.000\n"
                     "  transition added: Fade at clip \"Harbour\" at 0:00:11.000\n  2 differences\n");
}

TEST_F(Diff, ATransitionWithoutClips) {
    const QByteArray lines = linesAfter([](json& timeline) {
        json& transition = timeline["transitions"][0];
        transition["clipFrom"] = transition["clipTo"] = nullptr;
    });
    EXPECT_EQ(lines, "  transition removed: Fade at clip \"Beach\" at 0:00:04.000\n"
                     "  transition added: Fade at no clip\n  2 differences\n");
}

TEST_F(Diff, ATimelineThatIsNew) {
    const auto withoutScene = [](json& timeline) {
        entryOf(timeline, "Village")["clip"]["nestedTimeline"] = nullptr;
    };
    EXPECT_TRUE(linesAfter(withoutScene, "holiday-v70.json").contains("  timeline removed: \"Village\"\n"));
    const Outcome outcome = run({"diff", "new.xml", "old.xml"});
    EXPECT_EQ(outcome.exitCode, 21) << outcome.err.toStdString();
    EXPECT_TRUE(outcome.out.contains("  timeline added: \"Village\"\n")) << outcome.out.toStdString();
}

TEST_F(Diff, WhatBelongsToNoClip) {
    EXPECT_EQ(linesAfter([](json& timeline) { timeline["frameRate"] = 30; }),
              "  changed: Timeline::Object \"Holiday\" (id 3): frameRate: 25.0 -> 30\n  1 difference\n");
    const QByteArray newest = Tests::jsonProject(R"({"@meta": {"class_name": "A", "object_id": 1}})");
    EXPECT_EQ(linesOf(newest, QByteArray(newest).replace("{\"version\"", "{\"author\": \"me\", \"version\"")),
              "  changed: the document: author: none -> \"me\"\n  1 difference\n");
}

TEST_F(Diff, TheOlderDocumentIsMigratedFirst) {
    write("old.xml", sample("holiday-v27.xml"));
    run({"migrate", "old.xml", "-o", "new.json"});
    write("new.json", read("new.json").replace("\"Boat\"", "\"Ship\""));
    const Outcome outcome = run({"diff", "old.xml", "new.json"});
    EXPECT_EQ(outcome.exitCode, 21);
    EXPECT_EQ(outcome.out,
              "old.xml (XML archive of schema version 27) and new.json (JSON of schema version 77), "
              "compared as version 77\n"
              "  renamed: clip \"Boat\" at 0:00:16.000 is \"Ship\" now\n  1 difference\n");
    const json machine = json::parse(run({"diff", "old.xml", "new.json", "--json"}).out.toStdString());
    EXPECT_EQ(machine["input"], "old.xml");
    EXPECT_EQ(machine["before"], json::parse(R"({"name": "old.xml", "form": "xml", "version": 27})"));
    EXPECT_EQ(machine["comparedAs"], 77);
    ASSERT_EQ(machine["differences"].size(), 1u);
    EXPECT_EQ(machine["differences"][0]["kind"], "clip-renamed");
    EXPECT_EQ(machine["differences"][0]["clip"], json::parse(R"({"name": "Boat", "time": 16000})"));
    EXPECT_EQ(machine["differences"][0]["after"], "Ship");
    // An archive and JSON of versions that both forms have meet as JSON.
    write("old.json", sample("holiday-v60.json"));
    write("new.xml", sample("holiday-v62.xml"));
    EXPECT_TRUE(run({"diff", "old.json", "new.xml"}).out.contains("compared as version 63"));
}

TEST_F(Diff, RawComparesDocumentsAsTheyAre) {
    write("film.xml", sample("holiday-v27.xml"));
    run({"migrate", "film.xml", "--to", "28", "-o", "next.xml"});
    EXPECT_EQ(run({"diff", "film.xml", "next.xml"}).exitCode, 0);
    const Outcome raw = run({"diff", "film.xml", "next.xml", "--raw"});
    EXPECT_EQ(raw.exitCode, 21);
    EXPECT_EQ(raw.out.count("labels: none -> []"), 6) << raw.out.toStdString();
    EXPECT_FALSE(raw.out.contains("compared as"));
    run({"migrate", "film.xml", "-o", "film.json"});
    expectFailure({"diff", "film.xml", "film.json", "--raw"}, 2, "different forms");
    // It needs no version.
    write("one.xml", archive({}, {}));
    EXPECT_EQ(run({"diff", "one.xml", "one.xml", "--raw"}).exitCode, 0);
    expectFailure({"diff", "one.xml", "one.xml"}, 11, "one.xml");
    write("two.xml", archive({}, {}).replace("Beach", "Coast"));
    EXPECT_EQ(run({"diff", "one.xml", "two.xml", "--raw"}).out,
              "one.xml (XML archive) and two.xml (XML archive)\n"
              "  renamed: clip \"Beach\" at 0:00:00.000 is \"Coast\" now\n  1 difference\n");
}

TEST_F(Diff, ErrorsAreAsElsewhere) {
    write("film.xml", archive());
    write("broken.xml", "<Archive>");
    expectFailure({"diff", "film.xml"}, 2, "NEW");
    expectFailure({"diff", "-", "-"}, 2, "only one");
    expectFailure({"diff", "film.xml", "none.xml"}, 3, "none.xml");
    expectFailure({"diff", "none.xml", "film.xml"}, 3, "none.xml");
    expectFailure({"diff", "film.xml", "broken.xml"}, 6, "broken.xml");
    EXPECT_TRUE(run({"--help"}).out.contains("21  diff found a difference"));
}

TEST_F(Diff, HostileNamesAreEscapedAndShort) {
    const QByteArray hostile = "\xe2\x80\xae&#10;[31m" + QByteArray("x").repeated(1 << 20);
    const QByteArray lines = linesOf(archive(), archive().replace("'Beach'", "'" + hostile + "'"));
    EXPECT_TRUE(lines.contains("\\u202e\\n[31mxxx")) << lines.left(500).toStdString();
    EXPECT_LT(lines.size(), 400);
}

class Explain : public ProgramTest {};

TEST_F(Explain, SaysWhatEachStepDid) {
    write("film.xml", archive({}, " schemaVersion='27'"));
    const Outcome outcome = run({"explain", "film.xml", "--to", "29"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.out, "film.xml: XML archive of schema version 27\n\n"
                           "V28_ClipLabelAdaptor: Clips get an empty list of labels.\n"
                           "  changed: 1 Timeline::Clip\n"
                           "    Timeline::Clip.labels added in 1 object\n"
                           "      [] (clip \"Beach\", id 3)\n\n"
                           "V29_ClipTimingModeAdaptor: Clip timings get the timing mode 0.\n"
                           "  changed: 1 Timeline::ClipTiming\n"
                           "    Timeline::ClipTiming.timingMode added in 1 object\n"
                           "      0 (clip \"Beach\", id 4)\n\n"
                           "2 other steps changed nothing\n");
    EXPECT_TRUE(QDir(m_folder.path()).entryList(QDir::Files) == QStringList{"film.xml"});
}

TEST_F(Explain, AProjectThatNothingChanges) {
    write("film.xml", archive({}, " schemaVersion='29'"));
    const Outcome outcome = run({"explain", "film.xml", "--to", "31"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "film.xml: XML archive of schema version 29\n\n2 steps changed nothing\n");
    const json machine = json::parse(run({"explain", "film.xml", "--to", "31", "--json"}).out.toStdString());
    EXPECT_EQ(machine["steps"], json::array());
    EXPECT_EQ(machine["unchanged"].size(), 2u);
}

TEST_F(Explain, TheConversionChangesNothingButTheForm) {
    write("film.xml", sample("holiday-v62.xml"));
    const Outcome outcome = run({"explain", "film.xml", "--step", "XmlToJson"});
    EXPECT_EQ(outcome.exitCode, 2); // it is no step, so no name
    const json machine = json::parse(run({"explain", "film.xml", "--json"}).out.toStdString());
    const auto& unchanged = machine["unchanged"];
    EXPECT_NE(std::find(unchanged.begin(), unchanged.end(), "XmlToJson"), unchanged.end());
}

TEST_F(Explain, OneStep) {
    write("film.xml", sample("holiday-v45.xml"));
    const Outcome outcome = run({"explain", "film.xml", "--step", "V69"});
    EXPECT_TRUE(outcome.out.contains("\nV69_RemoveQuizzesAdaptor: ")) << outcome.out.toStdString();
    EXPECT_TRUE(outcome.out.contains("  removed: 2 Quiz::Preset, ")) << outcome.out.toStdString();
    EXPECT_TRUE(outcome.out.contains("\"Where was the boat?\"")) << outcome.out.toStdString();
    EXPECT_FALSE(outcome.out.contains("V68")) << outcome.out.toStdString();
    // A step that changes nothing is shown, too.
    EXPECT_TRUE(run({"explain", "film.xml", "--step", "V50"}).out.contains("V50_OverlayItemTextEncode"));
    write("empty.xml", archive({}, " schemaVersion='45'"));
    EXPECT_TRUE(
        run({"explain", "empty.xml", "--step", "V50", "--to", "50"}).out.contains("  changed nothing\n"));
    expectFailure({"explain", "film.xml", "--step", "V27"}, 2, "does not run");
    expectFailure({"explain", "film.xml", "--step", "V4711"}, 2, "V4711");
}

TEST_F(Explain, OneClip) {
    write("film.xml", sample("holiday-v45.xml"));
    const json boat = json::parse(run({"explain", "film.xml", "--clip", "Boat", "--json"}).out.toStdString());
    ASSERT_FALSE(boat["steps"].empty());
    bool hasMask = false;
    for (const json& step : boat["steps"]) {
        for (const json& field : step["fields"]) {
            EXPECT_NE(field["class"], "Timeline::Track");
            for (const json& example : field["examples"])
                EXPECT_EQ(example["clip"]["name"], "Boat") << step["class"] << field;
        }
        hasMask = hasMask ||
                  (step["class"] == "V51_MaskEffectAdaptor" && step["removed"]["Effect::MaskConceal"] == 1);
    }
    EXPECT_TRUE(hasMask);
    const std::string id =
        std::to_string(boat["steps"][0]["fields"][0]["examples"][0]["clip"]["id"].get<int>());
    const json byId = json::parse(
        run({"explain", "film.xml", "--clip", QString::fromStdString(id), "--json"}).out.toStdString());
    EXPECT_EQ(byId["steps"], boat["steps"]);
    expectFailure({"explain", "film.xml", "--clip", "Nobody"}, 2, "Nobody");
    // The clip that goes is there before.
    EXPECT_TRUE(run({"explain", "film.xml", "--clip", "Where was the boat?", "--step", "V69"})
                    .out.contains("  removed: 1 Quiz::Preset, 1 Quiz::Question, 1 Timeline::Clip, "));
}

TEST_F(Explain, SaysWhatLedUpToAStepThatFails) {
    write("film.xml", archive("<RootObject type='File' objectId='7'/>", " schemaVersion='27'")
                          .replace("<name ", "<file type='ObjectRef' value='7'/><name "));
    const Outcome outcome = run({"explain", "film.xml"});
    EXPECT_EQ(outcome.exitCode, 13) << outcome.err.toStdString();
    EXPECT_TRUE(outcome.out.contains("V28_ClipLabelAdaptor: ")) << outcome.out.toStdString();
    const json machine = json::parse(run({"explain", "film.xml", "--json"}).out.toStdString());
    EXPECT_EQ(machine["error"]["code"], 13);
    EXPECT_FALSE(machine["steps"].empty());
}

TEST_F(Explain, HostileNamesAreEscapedAndShort) {
    const QByteArray hostile = "\xe2\x80\xae&#10;[31m" + QByteArray("x").repeated(1 << 20);
    write("film.xml", archive({}, " schemaVersion='27'").replace("'Beach'", "'" + hostile + "'"));
    const Outcome outcome = run({"explain", "film.xml", "--to", "29"});
    EXPECT_TRUE(outcome.out.contains("\\u202e\\n[31mxxx"));
    EXPECT_LT(outcome.out.size(), 2000);
}

TEST_F(ProgramTest, TraceWritesADiffBesideEachDocument) {
    write("film.xml", archive({}, " schemaVersion='27'"));
    const Outcome outcome = run({"trace", "film.xml", "--output-dir", "steps", "--to", "29", "--diff"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_EQ(QDir(path("steps")).entryList(QDir::Files, QDir::Name),
              (QStringList{"03-V28_ClipLabelAdaptor.xml", "03-V28_ClipLabelAdaptor.xml.diff",
                           "04-V29_ClipTimingModeAdaptor.xml", "04-V29_ClipTimingModeAdaptor.xml.diff"}));
    const QByteArray diff = read("steps/04-V29_ClipTimingModeAdaptor.xml.diff");
    EXPECT_TRUE(diff.startsWith("--- before/04-V29_ClipTimingModeAdaptor.xml\n+++ after/04-"))
        << diff.toStdString();
    EXPECT_EQ(diff.count("\n+ "), 1) << diff.toStdString();
    EXPECT_EQ(diff.count("\n-"), 0) << diff.toStdString();
    EXPECT_TRUE(diff.contains("\n+     <timingMode type=\"int32_t\" value=\"0\"/>\n")) << diff.toStdString();
    // A diff is never written over without --force.
    run({"trace", "film.xml", "--output-dir", "again", "--to", "29"});
    write("again/03-V28_ClipLabelAdaptor.xml.diff", "mine");
    QFile::remove(path("again/03-V28_ClipLabelAdaptor.xml"));
    EXPECT_EQ(run({"trace", "film.xml", "--output-dir", "again", "--to", "28", "--diff"}).exitCode, 16);
    EXPECT_EQ(read("again/03-V28_ClipLabelAdaptor.xml.diff"), "mine");
}

TEST_F(ProgramTest, DiffsOfTheTraceApplyToItsDocuments) {
    // What "patch" makes of a document is the next one, but for the version in it.
    write("film.xml", sample("holiday-v34.xml"));
    ASSERT_EQ(run({"trace", "film.xml", "--output-dir", "steps", "--to", "62", "--diff"}).exitCode, 0);
    const QDir folder(path("steps"));
    const auto withoutVersion = [&](const QString& name) {
        QByteArray bytes = read("steps/" + name);
        const int at = bytes.indexOf("<Archive");
        return bytes.replace(at, bytes.indexOf('>', at) - at, "<Archive");
    };
    const QStringList documents = folder.entryList({"*.xml"}, QDir::Files, QDir::Name);
    ASSERT_GT(documents.size(), 10);
    for (int place = 1; place < documents.size(); ++place) {
        write("work.xml", withoutVersion(documents[place - 1]));
        const Outcome patched = Tests::runCommand(
            "/bin/sh", {"-c", "patch -s work.xml \"steps/$0.diff\"", documents[place]}, m_folder.path());
        if (patched.exitCode == 127)
            GTEST_SKIP() << "there is no patch";
        EXPECT_EQ(patched.exitCode, 0) << documents[place].toStdString() << patched.out.toStdString();
        EXPECT_EQ(read("work.xml"), withoutVersion(documents[place])) << documents[place].toStdString();
    }
}

TEST_F(ProgramTest, DiffsOfJsonHaveOneValueALine) {
    write("film.json", sample("holiday-v70.json"));
    ASSERT_EQ(run({"trace", "film.json", "--output-dir", "steps", "--diff"}).exitCode, 0);
    const QStringList names = QDir(path("steps")).entryList({"*V72*.diff"}, QDir::Files);
    ASSERT_EQ(names.size(), 1);
    const QByteArray diff = read("steps/" + names[0]);
    EXPECT_TRUE(diff.contains("\n-")) << diff.toStdString();
    for (const QByteArray& line : diff.split('\n')) {
        if (line.startsWith("+ ") || line.startsWith("- ")) {
            EXPECT_TRUE(line.trimmed().contains("\"type\": ")) << line.toStdString();
        }
    }
}

} // namespace
