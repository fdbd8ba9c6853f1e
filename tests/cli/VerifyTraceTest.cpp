#include "support/ProgramTest.h"

#include <nlohmann/json.hpp>

using nlohmann::json;
using Tests::archive;
using Tests::Outcome;
using Tests::ProgramTest;
using Tests::sample;

namespace {

TEST_F(ProgramTest, VerifyFindsNothingInAProjectWithoutFaults) {
    write("film.xml", sample("holiday-v27.xml"));
    write("film.json", sample("holiday-v63.json"));
    EXPECT_EQ(run({"verify", "film.xml"}).out, "film.xml: no findings\n");
    EXPECT_EQ(run({"verify", "film.xml"}).exitCode, 0);
    EXPECT_EQ(run({"verify", "film.json"}).exitCode, 0);
    EXPECT_EQ(run({"verify", "-"}, sample("holiday-v27.xml")).out, "standard input: no findings\n");
    const json all = json::parse(run({"verify", "film.json", "--json"}).out.toStdString());
    EXPECT_EQ(all["input"], "film.json");
    EXPECT_EQ(all["findings"], json::array());
}

TEST_F(ProgramTest, VerifyNamesFaultAndPlace) {
    write(
        "film.json",
        R"({"version":"1.0","data":{"@meta":{"class_name":"Timeline::Object","object_id":2},"clips":[{"clip":{"@meta_reference":9}}]}})");
    const Outcome text = run({"verify", "film.json"});
    EXPECT_EQ(text.exitCode, 17);
    EXPECT_EQ(
        text.out,
        "film.json: 1 finding\n"
        "  error: dangling-reference: Timeline::Object (id 2) clips/0/clip: refers to 9, and there is no "
        "such object\n");
    const Outcome machine = run({"verify", "film.json", "--json"});
    EXPECT_EQ(machine.exitCode, 17);
    EXPECT_EQ(json::parse(machine.out.toStdString())["findings"], json::parse(R"([{
        "fault": "dangling-reference", "severity": "error", "class": "Timeline::Object", "id": 2, "path": "clips/0/clip",
        "text": "refers to 9, and there is no such object", "to": 9}])"));
}

TEST_F(ProgramTest, VerifyOfAnotherFileIsAnError) {
    write("film.json", "{}");
    expectFailure({"verify", "film.json"}, 10, "version");
    expectFailure({"verify", "none.json"}, 3, "none.json");
    EXPECT_TRUE(run({"verify", "--help"}).out.contains("17"));
    EXPECT_TRUE(run({"--help"}).out.contains("17  verify found something"));
}

TEST_F(ProgramTest, TraceWritesTheDocumentAfterEachStepThatChangedIt) {
    write("film.xml", archive({}, " schemaVersion='27'"));
    const Outcome outcome = run({"trace", "film.xml", "--output-dir", "steps", "--to", "29"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    // The two adaptors for loading change nothing here; versions 28 and 29 add a field each.
    EXPECT_EQ(QDir(path("steps")).entryList(QDir::Files, QDir::Name),
              (QStringList{"03-V28_ClipLabelAdaptor.xml", "04-V29_ClipTimingModeAdaptor.xml"}));
    EXPECT_TRUE(outcome.out.contains("1  OverlayFileContentReadAdaptor")) << outcome.out.toStdString();
    EXPECT_EQ(outcome.out.count("changed nothing"), 2);
    const QByteArray first = read("steps/03-V28_ClipLabelAdaptor.xml");
    EXPECT_TRUE(first.contains("<labels ") && first.contains("schemaVersion=\"28\"")) << first.toStdString();
    EXPECT_FALSE(first.contains("timingMode"));
    const QByteArray second = read("steps/04-V29_ClipTimingModeAdaptor.xml");
    EXPECT_TRUE(second.contains("timingMode") && second.contains("schemaVersion=\"29\""));
    EXPECT_EQ(read("film.xml"), archive({}, " schemaVersion='27'"));
}

TEST_F(ProgramTest, TraceCoversAllAdaptors) {
    write("film.xml", sample("holiday-v27.xml"));
    EXPECT_EQ(run({"trace", "film.xml", "--output-dir", "steps"}).exitCode, 0);
    const QStringList names = QDir(path("steps")).entryList(QDir::Files, QDir::Name);
    EXPECT_EQ(names.filter(".xml").filter("XmlToJson").size(), 0);
    EXPECT_EQ(names.filter("XmlToJson.json").size(), 1);
    EXPECT_EQ(json::parse(read("steps/" + names.back()).toStdString())["schemaVersion"],
              Reader::currentVersion);
    EXPECT_EQ(run({"verify", "steps/" + names.back()}).exitCode, 0);
}

TEST_F(ProgramTest, TraceShowsTheStepsBeforeAFailure) {
    write("film.xml", archive("<RootObject type='File' objectId='4'/>", " schemaVersion='61'")
                          .replace("<name ", "<file type='ObjectRef' value='4'/><name "));
    const Outcome outcome = run({"trace", "film.xml", "--output-dir", "steps"});
    EXPECT_EQ(outcome.exitCode, 13);
    EXPECT_TRUE(outcome.err.contains("PortableLoadAdaptor: ")) << outcome.err.toStdString();
    EXPECT_TRUE(outcome.out.contains("V77_TrackLevelAdaptor")) << outcome.out.toStdString();
    EXPECT_FALSE(outcome.out.contains("PortableLoadAdaptor"));
}

TEST_F(ProgramTest, TraceReplacesNoFile) {
    write("film.xml", archive({}, " schemaVersion='27'"));
    const QStringList trace = {"trace", "film.xml", "--output-dir", "steps", "--to", "28"};
    ASSERT_EQ(run(trace).exitCode, 0);
    write("steps/03-V28_ClipLabelAdaptor.xml", "precious");
    const Outcome refused = run(trace);
    EXPECT_EQ(refused.exitCode, 16);
    EXPECT_TRUE(refused.err.contains("--force"));
    EXPECT_EQ(read("steps/03-V28_ClipLabelAdaptor.xml"), "precious");
    EXPECT_EQ(run(trace + QStringList{"--force"}).exitCode, 0);
    EXPECT_TRUE(read("steps/03-V28_ClipLabelAdaptor.xml").contains("<labels "));
    EXPECT_EQ(run({"trace", "film.xml"}).exitCode, 2);
    EXPECT_EQ(run({"trace", "film.xml", "--output-dir", "film.xml", "--to", "28"}).exitCode, 15);
    EXPECT_EQ(read("film.xml"), archive({}, " schemaVersion='27'"));
}

} // namespace
