#include "support/ProgramTest.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <sys/stat.h>

using nlohmann::json;
using Reader::currentVersion;
using Tests::archive;
using Tests::jsonProject;
using Tests::migratedName;
using Tests::Outcome;
using Tests::ProgramTest;
using Tests::sample;

namespace {

/// A project with a single item of a title, with that text or the name of its side file.
QByteArray title(const QByteArray& text) {
    return jsonProject(R"({"@meta":{"class_name":"Overlay::Item","object_id":2},"encodedText":")" + text +
                       "\"}");
}

TEST_F(ProgramTest, WritesNextToTheInput) {
    write("film.xml", sample("holiday-v27.xml"));
    const Outcome outcome = run({"migrate", "film.xml"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(outcome.err.contains("XML archive of schema version 27 -> JSON of schema version " +
                                     QByteArray::number(currentVersion)));
    EXPECT_TRUE(outcome.err.contains("6 clips: 6 kept"));
    EXPECT_TRUE(outcome.err.contains(migratedName("film").toUtf8()));
    EXPECT_FALSE(outcome.err.contains("\x1b["));
    EXPECT_EQ(files(), (QStringList{migratedName("film"), "film.xml"}));
    EXPECT_EQ(json::parse(read(migratedName("film")).toStdString())["schemaVersion"], currentVersion);
    EXPECT_EQ(read("film.xml"), sample("holiday-v27.xml"));
}

TEST_F(ProgramTest, TheSameInputGivesTheSameBytes) {
    write("film.xml", sample("holiday-v27.xml"));
    const Outcome first = run({"migrate", "film.xml", "-o", "-"});
    const Outcome second = run({"migrate", "-"}, sample("holiday-v27.xml"));
    EXPECT_GT(first.out.size(), 1000);
    EXPECT_EQ(first.out, second.out);
    EXPECT_EQ(run({"migrate", "film.xml", "-o", "-", "--to", "50"}).out,
              run({"migrate", "film.xml", "-o", "-", "--to", "50"}).out);
}

TEST_F(ProgramTest, NothingIsReplacedWithoutForce) {
    write("film.xml", archive());
    write(migratedName("film"), "precious");
    expectFailure({"migrate", "film.xml"}, 16, "--force");
    EXPECT_EQ(read(migratedName("film")), "precious");
    expectFailure({"migrate", "film.xml", "-o", "film.xml"}, 16, "--force");
    EXPECT_EQ(run({"migrate", "film.xml", "--force"}).exitCode, 0);
    EXPECT_TRUE(read(migratedName("film")).startsWith('{'));
}

TEST_F(ProgramTest, InPlaceKeepsEveryBackup) {
    write("film.xml", archive());
    const Outcome outcome = run({"migrate", "--in-place", "film.xml", "--to", "70"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_TRUE(outcome.err.contains("film.xml.bak"));
    EXPECT_EQ(read("film.xml.bak"), archive());
    const QByteArray migrated = read("film.xml");
    EXPECT_TRUE(migrated.startsWith('{'));
    EXPECT_EQ(run({"migrate", "--in-place", "film.xml"}).exitCode, 0);
    EXPECT_EQ(read("film.xml.bak"), archive()); // an earlier backup is never replaced
    EXPECT_EQ(read("film.xml.bak2"), migrated);
    EXPECT_EQ(run({"migrate", "--in-place", "film.xml"}).exitCode, 0);
    EXPECT_FALSE(exists("film.xml.bak3")); // a document of the newest version is not changed
    EXPECT_EQ(run({"migrate", "--in-place", "-"}, archive()).exitCode, 2);
    EXPECT_EQ(run({"migrate", "--in-place", "film.xml", "-o", "x"}).exitCode, 2);
}

TEST_F(ProgramTest, StopsAtAVersion) {
    write("film.xml", sample("holiday-v27.xml"));
    EXPECT_EQ(run({"migrate", "film.xml", "--to", "62"}).exitCode, 0);
    EXPECT_TRUE(read("film.v62.xml").contains("schemaVersion=\"62\""));
    EXPECT_EQ(run({"migrate", "film.xml", "--to", "63"}).exitCode, 0);
    EXPECT_EQ(json::parse(read("film.v63.json").toStdString())["schemaVersion"], 63);
    expectFailure({"migrate", "film.xml", "--to", "26"}, 12, "27");
    expectFailure({"migrate", "film.v63.json", "--to", "62"}, 12, "film.v63.json");
    EXPECT_EQ(run({"migrate", "film.xml", "--to", QString::number(currentVersion + 1)}).exitCode, 2);
}

TEST_F(ProgramTest, ImpossibleVersions) {
    write("old.xml", archive({}, ""));
    expectFailure({"migrate", "old.xml"}, 11, "--from N");
    EXPECT_EQ(run({"migrate", "old.xml", "--from", "29"}).exitCode, 0);
    write("new.xml", archive({}, " schemaVersion='" + QByteArray::number(currentVersion + 1) + "'"));
    expectFailure({"migrate", "new.xml"}, 12, "too new");
    write("odd.xml", archive({}, " schemaVersion='x'"));
    expectFailure({"migrate", "odd.xml"}, 11, "odd.xml");
    write("film.json",
          R"({"version":"1.0","schemaVersion":60,"data":{"@meta":{"class_name":"Timeline::Object",
        "object_id":2}}})");
    expectFailure({"migrate", "film.json", "--to", "62"}, 12, "ask for version 63");
    EXPECT_EQ(files(), (QStringList{"film.json", "new.xml", "odd.xml", "old.v77.json", "old.xml"}));
}

TEST_F(ProgramTest, BadInputHasItsOwnExitCodes) {
    write("empty", "");
    write("text", "hello");
    write("broken.xml", "<Archive>\n<a></Archive>");
    write("broken.json", "{\"data\": }");
    write("project.xml", "<Project/>");
    write("doctype.xml", "<!DOCTYPE a><Archive/>");
    write("envelope.json", "{}");
    expectFailure({"migrate", "missing.xml"}, 3, "missing.xml");
    expectFailure({"migrate", "empty"}, 4, "empty");
    expectFailure({"migrate", "text"}, 5, "text");
    expectFailure({"migrate", "broken.xml"}, 6, "broken.xml:2:");
    expectFailure({"migrate", "broken.json"}, 7, "byte 10");
    expectFailure({"migrate", "project.xml"}, 8, "<Project>");
    expectFailure({"migrate", "doctype.xml"}, 9, "doctype.xml:1:1");
    expectFailure({"migrate", "envelope.json"}, 10, "version");
    EXPECT_EQ(files().filter(".v").size(), 0);
}

TEST_F(ProgramTest, AMissingRootObjectIsAnError) {
    write("film.xml",
          archive({}, " schemaVersion='29'").replace("ObjectRef' value='2'", "ObjectRef' value='44'"));
    expectFailure({"migrate", "film.xml"}, 8, "44");
}

TEST_F(ProgramTest, AStepThatThrowsIsNamed) {
    write("film.xml", archive("<RootObject type='File' objectId='4'/>")
                          .replace("<name ", "<file type='ObjectRef' value='4'/><name "));
    expectFailure({"migrate", "film.xml"}, 13, "film.xml: PortableLoadAdaptor: ");
    EXPECT_EQ(files(), QStringList{"film.xml"});
}

TEST_F(ProgramTest, LostClipsAreNamedAndStrictStops) {
    // The second timeline is not nested in another: its clip is listed, but can't be reached.
    write("film.xml",
          archive(
              "<RootObject type='Timeline::Object' objectId='7'><clips type='Array' size='1'><Item>"
              "<Key type='ObjectRef' value='8'/><Value type='int32_t' value='0'/></Item></clips></RootObject>"
              "<RootObject type='Timeline::Clip' objectId='8'><name type='String' "
              "value='Harbour'/></RootObject>"));
    const Outcome strict = run({"migrate", "film.xml", "--strict"});
    EXPECT_EQ(strict.exitCode, 14);
    EXPECT_TRUE(strict.err.contains("\"Harbour\" (id 8)")) << strict.err.toStdString();
    EXPECT_EQ(files(), QStringList{"film.xml"});
    const Outcome lenient = run({"migrate", "film.xml", "--json"});
    EXPECT_EQ(lenient.exitCode, 0);
    const json summary = json::parse(lenient.out.toStdString());
    EXPECT_EQ(summary["clips"]["in"], 2);
    EXPECT_EQ(summary["clips"]["out"], 1);
    EXPECT_EQ(summary["clips"]["lost"], json::parse(R"([{"id": 8, "name": "Harbour"}])"));
}

TEST_F(ProgramTest, LogLinesAreShownWithTheirStep) {
    // Version 35 needs predeclarations and logs an error without them.
    write("film.xml", archive({}, " schemaVersion='34'").replace("'Predeclarator'", "'Other'"));
    const QStringList migrate = {"migrate", "film.xml", "--to", "40", "--force"};
    const Outcome outcome = run(migrate);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_TRUE(outcome.err.contains("error: V35_UserCollectionAdaptor: Can't adapt user collection"))
        << outcome.err.toStdString();
    EXPECT_EQ(run(migrate + QStringList{"--strict"}).exitCode, 14);
    const json log = json::parse(run(migrate + QStringList{"--json"}).out.toStdString())["log"];
    ASSERT_FALSE(log.empty());
    EXPECT_EQ(log[0]["step"], "V35_UserCollectionAdaptor");
    EXPECT_EQ(log[0]["severity"], "ERROR");
    EXPECT_TRUE(log[0]["place"].get<std::string>().starts_with(
        "library/Adaptors/Project/V35_UserCollectionAdaptor.cpp:"))
        << log[0]["place"];
}

TEST_F(ProgramTest, TheMainTimelineComesFirstForEveryStep) {
    // The main timeline comes after a nested one: version 35 uses the first that it finds as the project's.
    write("film.xml", "<Archive schemaVersion='34'><RootRef type='ObjectRef' value='2'/>"
                      "<RootObject type='Timeline::Object' objectId='7'/>"
                      "<RootObject type='Timeline::Object' objectId='2'/>"
                      "<RootObject type='Predeclarator' objectId='1'><predeclarations type='Array' "
                      "size='0'/></RootObject></Archive>");
    EXPECT_EQ(run({"migrate", "film.xml", "--to", "35"}).exitCode, 0);
    const QByteArray text = read("film.v35.xml");
    EXPECT_TRUE(text.contains("<timeline type=\"ObjectRef\" value=\"2\"/>")) << text.toStdString();
    EXPECT_LT(text.indexOf("Predeclarator"), text.indexOf("objectId=\"2\""));
    EXPECT_LT(text.indexOf("objectId=\"2\""), text.indexOf("objectId=\"7\""));
}

TEST_F(ProgramTest, JsonBelowTheConversionSkipsStepsForArchives) {
    write(
        "film.json",
        R"({"version": "1.0", "schemaVersion": 58, "data": {"@meta": {"class_name": "Project::Content", "object_id": 2}}})");
    const Outcome outcome = run({"migrate", "film.json"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_TRUE(
        outcome.err.contains("V59_EffectAuxResourceDownloadingAdaptor, V62_CollectionItemPayloadAdaptor"))
        << outcome.err.toStdString();
    const json summary = json::parse(run({"migrate", "film.json", "--json", "--force"}).out.toStdString());
    EXPECT_EQ(summary["skipped"],
              json({"V59_EffectAuxResourceDownloadingAdaptor", "V62_CollectionItemPayloadAdaptor"}));
    EXPECT_EQ(summary["steps"][0], "V60_CollectionItemDescriptionAdaptor");
    EXPECT_EQ(summary["steps"][1], "V61_EffectProcessedRangeAdaptor");
}

TEST_F(ProgramTest, MarkersSurviveWithoutTheirFolders) {
    const auto file = [](const QByteArray& path) {
        return jsonProject(R"({"@meta": {"class_name": "File", "object_id": 2}, "path": ")" + path + "\"}");
    };
    const auto pathOf = [&](const QString& name) {
        return json::parse(read(name).toStdString())["data"]["path"].get<std::string>();
    };
    write("film.json", file("#AI_MODELS_ROOT#/net.bin"));
    EXPECT_EQ(run({"migrate", "film.json"}).exitCode, 0);
    EXPECT_EQ(pathOf(migratedName("film")), "#AI_MODELS_ROOT#/net.bin");
    EXPECT_EQ(run({"migrate", "film.json", "--force", "--ai-models-root", path("models")}).exitCode, 0);
    EXPECT_EQ(pathOf(migratedName("film")), "#AI_MODELS_ROOT#/net.bin");
    // A relative path is relative to the project's folder, also if the result is written to another one.
    write("film.json", file("media/a.mp4"));
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("moved"));
    EXPECT_EQ(run({"migrate", "film.json", "-o", "moved/film.json"}).exitCode, 0);
    EXPECT_EQ(pathOf("moved/film.json"), "../media/a.mp4");
}

TEST_F(ProgramTest, OutputThatCannotBeWritten) {
    write("film.xml", archive());
    expectFailure({"migrate", "film.xml", "-o", "nowhere/film.json"}, 15, "nowhere/film.json");
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("folder"));
    expectFailure({"migrate", "film.xml", "-o", "/dev/full", "--force"}, 15, "/dev/full");
    EXPECT_FALSE(QFileInfo("/dev/full").isFile()); // a device is written directly, never replaced
}

TEST_F(ProgramTest, BundlesAreReadAndWritten) {
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("old"));
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("new"));
    const auto textOf = [&](const QString& name) {
        return json::parse(read(name).toStdString())["data"]["encodedText"].get<std::string>();
    };
    write("old/film.json", title("content_7.svg"));
    write("old/content_7.svg", "<svg/>");
    EXPECT_EQ(run({"migrate", "old", "-o", "film.json"}).exitCode, 0);
    EXPECT_EQ(textOf("film.json"), QByteArray("<svg/>").toBase64().toStdString());
    EXPECT_EQ(run({"migrate", "old", "--bundle", "new"}).exitCode, 0);
    EXPECT_EQ(textOf("new/" + migratedName("film")), "content_1.svg");
    EXPECT_EQ(read("new/content_1.svg"), "<svg/>");
    // An existing side file is not replaced: the text stays in the document, and that is reported.
    QFile::remove(path("new/" + migratedName("film")));
    const Outcome again = run({"migrate", "old", "--bundle", "new"});
    EXPECT_EQ(again.exitCode, 0); // the result is whole all the same
    EXPECT_TRUE(again.err.contains("content_1.svg")) << again.err.toStdString();
    EXPECT_EQ(textOf("new/" + migratedName("film")), QByteArray("<svg/>").toBase64().toStdString());
    write("old/other.json", "{}");
    expectFailure({"migrate", "old"}, 3, "name the project's own file");
}

TEST_F(ProgramTest, ABundleIsWrittenToAnotherAndReadAgain) {
    const QString sample = QString::fromStdString((Tests::samplesFolder() / "holiday-v20-bundle").string());
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("new")); // the last folder is created
    const Outcome first = run({"migrate", sample, "--bundle", "new"});
    EXPECT_EQ(first.exitCode, 0) << first.err.toStdString();
    EXPECT_TRUE(first.err.contains("Need quiz overlay preset")) << first.err.toStdString();
    EXPECT_FALSE(first.err.contains("side file")) << first.err.toStdString();
    const QStringList sideFiles = {"content_1.svg", "content_2.svg", "content_3.svg", "content_4.svg"};
    EXPECT_EQ(QDir(path("new")).entryList(QDir::Files, QDir::Name),
              sideFiles + QStringList(migratedName("holiday")));
    EXPECT_EQ(run({"migrate", "new", "--bundle", "again"}).exitCode, 0);
    EXPECT_EQ(read("again/" + migratedName(QFileInfo(migratedName("holiday")).completeBaseName())),
              read("new/" + migratedName("holiday")));
    for (const QString& name : sideFiles)
        EXPECT_EQ(read("again/" + name), read("new/" + name)) << name.toStdString();
}

TEST_F(ProgramTest, AProjectThatIsNotWrittenLeavesNoSideFiles) {
    const QString sample = QString::fromStdString((Tests::samplesFolder() / "holiday-v20-bundle").string());
    expectFailure({"migrate", sample, "--bundle", ".", "--strict"}, 14, "not written");
    EXPECT_EQ(files(), QStringList());
}

TEST_F(ProgramTest, SideFilesOutsideTheFolderAreRefused) {
    ASSERT_TRUE(QDir(m_folder.path()).mkpath("old/content_sub"));
    write("secret.svg", "<svg>secret</svg>");
    write("old/content_sub/in.svg", "<svg/>");
    ASSERT_TRUE(QFile::link(path("secret.svg"), path("old/content_link.svg")));
    ASSERT_EQ(mkfifo(path("old/content_pipe.svg").toLocal8Bit().constData(), 0600), 0);
    const auto textFor = [&](const QByteArray& name) {
        write("old/film.json", title(name));
        const Outcome outcome = run({"migrate", "old/film.json", "--force", "-o", "-"});
        std::string text = json::parse(outcome.out.toStdString())["data"]["encodedText"];
        EXPECT_EQ(text.empty(), outcome.err.contains("OverlayFileContentReadAdaptor: side file"))
            << outcome.err.toStdString();
        EXPECT_EQ(outcome.exitCode, text.empty() ? 22 : 0);
        return text;
    };
    EXPECT_EQ(textFor("content_/../../secret.svg"), "");
    EXPECT_EQ(textFor("content_link.svg"), "");
    EXPECT_EQ(textFor("content_pipe.svg"), "");
    EXPECT_EQ(textFor("content_sub"), "");
    EXPECT_EQ(textFor("content_none.svg"), "");
    EXPECT_NE(textFor("content_sub/in.svg"), "");
}

TEST_F(ProgramTest, RunsOneStep) {
    write("film.xml", archive());
    const Outcome outcome = run({"run", "V28_ClipLabelAdaptor", "film.xml"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_TRUE(outcome.out.contains("<labels size=\"0\" type=\"Array\"/>"));
    EXPECT_TRUE(outcome.out.contains("schemaVersion=\"62\""));
    EXPECT_EQ(run({"run", "Project::V28_ClipLabelAdaptor", "-", "-o", "out.xml"}, archive({}, "")).exitCode,
              0);
    EXPECT_TRUE(read("out.xml").contains("<labels"));
    expectFailure({"run", "V28_ClipLabelAdaptor", "film.xml", "-o", "out.xml"}, 16, "--force");
    expectFailure({"run", "V1_Nothing", "film.xml"}, 2, "V1_Nothing");
    expectFailure({"run", "V72_TrackTypeAdaptor", "film.xml"}, 2, "XML");
    write(
        "film.json",
        R"({"version":"1.0","data":{"@meta":{"class_name":"Collection::Item","object_id":2},"previewUrls":[1]}})");
    EXPECT_TRUE(
        run({"run", "CollectionItemPreviewUrlsAdaptor", "film.json"}).out.contains("\"previewUrls\":[]"));
    expectFailure({"run", "PortableLoadAdaptor", "film.xml"}, 2, "XML");
    expectFailure({"run", "V28_ClipLabelAdaptor", "film.json"}, 2, "JSON");
    expectFailure({"run", "ImportDescriptionAdaptor", "film.json"}, 2, "JSON");
    write("film.xml", archive("<RootObject type='Import::Object' objectId='6'/>"));
    EXPECT_TRUE(run({"run", "ImportDescriptionAdaptor", "film.xml"}).out.contains("<descriptionUrl"));
}

TEST_F(ProgramTest, OneStepShowsWhatItLogged) {
    const Outcome outcome = run({"run", "V4_TrackValueAdaptor", "-"}, "<Archive><RootRef/></Archive>");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_FALSE(outcome.err.contains("V4_TrackValueAdaptor")) << outcome.err.toStdString();
    // Version 35 needs predeclarations and logs an error without them.
    const Outcome logged = run({"run", "V35_UserCollectionAdaptor", "-"},
                               archive({}, " schemaVersion='34'").replace("'Predeclarator'", "'Other'"));
    EXPECT_EQ(logged.exitCode, 0);
    EXPECT_TRUE(logged.err.contains("error: V35_UserCollectionAdaptor: Can't adapt user collection"))
        << logged.err.toStdString();
}

TEST_F(ProgramTest, IdsOfSeveralObjectsAreReported) {
    write("film.json",
          R"({"version":"1.0","schemaVersion":76,"data":{"@meta":{"class_name":"Timeline::Object",
        "object_id":2},"a":{"@meta":{"class_name":"File","object_id":3},"path":""},
        "b":{"@meta":{"class_name":"File","object_id":3},"path":""}}})");
    const Outcome outcome = run({"migrate", "film.json"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_TRUE(outcome.err.contains("1 id was used by several objects")) << outcome.err.toStdString();
}

TEST_F(ProgramTest, ShowsWhatADocumentHolds) {
    write("film.xml",
          archive("<RootObject type='File' objectId='3'><x type='ObjectRef' value='55'/></RootObject>"));
    const json info = json::parse(run({"info", "film.xml", "--json"}).out.toStdString());
    EXPECT_EQ(info["form"], "xml");
    EXPECT_EQ(info["version"], 62);
    EXPECT_EQ(
        info["objects"],
        json::parse(
            R"({"File": 1, "Timeline::Clip": 1, "Timeline::ClipTiming": 1, "Timeline::Object": 1, "Timeline::Track": 1})"));
    EXPECT_EQ(info["duplicateIds"], json({3}));
    EXPECT_EQ(info["danglingReferences"], json::parse(R"([{"from": 3, "class": "File", "to": 55}])"));
    EXPECT_EQ(info["steps"][0], "V63_LutEffectAuxResourceAdaptor");
    const Outcome text = run({"info", "film.xml"});
    EXPECT_TRUE(text.out.contains("version: 62") && text.out.contains("refers to 55"))
        << text.out.toStdString();
    EXPECT_TRUE(run({"info", "-"}, archive({}, "")).out.contains("--from N"));
}

TEST_F(ProgramTest, ListsTheSteps) {
    const json steps =
        json::parse(run({"steps", "--json", "--from", "27", "--to", "29"}).out.toStdString())["steps"];
    EXPECT_EQ(steps[0]["class"], "V28_ClipLabelAdaptor");
    EXPECT_EQ(steps[0]["forms"], json({"xml"}));
    EXPECT_EQ(steps[1]["number"], 29);
    const Outcome all = run({"steps"});
    EXPECT_TRUE(all.out.contains("V77_TrackLevelAdaptor") && all.out.contains("PortableSaveAdaptor"));
}

TEST_F(ProgramTest, HelpAndWrongUse) {
    for (const char* command : {"migrate", "steps", "run", "info", "verify", "trace"}) {
        const Outcome help = run({command, "--help"});
        EXPECT_EQ(help.exitCode, 0);
        EXPECT_TRUE(help.out.contains("Example")) << command;
    }
    EXPECT_TRUE(run({"--help"}).out.contains("Exit codes"));
    EXPECT_TRUE(run({"--version"}).out.startsWith("adaptors "));
    EXPECT_EQ(run({"migrate"}).exitCode, 2);
    EXPECT_EQ(run({"migrate", "a", "--what"}).exitCode, 2);
    EXPECT_EQ(run({"fly"}).exitCode, 2);
}

} // namespace
