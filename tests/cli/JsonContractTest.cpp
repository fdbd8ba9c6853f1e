// What programs get with --json: one object on one line from every command, for every exit code, as docs/schema/
// describes it.

#include "JsonReport.h"
#include "support/Sanitizers.h"
#include "support/Schemas.h"

#include <gtest/gtest.h>

#include <QCryptographicHash>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>
#include <set>

using nlohmann::json;
using Tests::archive;
using Tests::Outcome;
using Tests::sample;

namespace {

class JsonContractTest : public Tests::ProgramTest {
protected:
    /// What a call printed, which must be one line of JSON and nothing else. It is held against its schema in the end.
    json note(const std::string& schema, const Outcome& outcome, bool isYielded = false) {
        const QByteArray& text = isYielded ? outcome.err : outcome.out;
        if (!isYielded) {
            EXPECT_EQ(outcome.err.toStdString(), "");
        }
        EXPECT_TRUE(text.endsWith('\n')) << text.toStdString();
        EXPECT_EQ(text.count('\n'), 1) << text.toStdString();
        EXPECT_TRUE(std::all_of(text.begin(), text.end() - 1, [](char c) { return c >= ' ' && c < '\x7f'; }))
            << text.toStdString();
        m_lines += QByteArray::fromStdString(schema) + '\t' + text;
        json value = json::parse(text.toStdString(), nullptr, false);
        EXPECT_TRUE(value.is_object()) << text.toStdString();
        if (value.contains("error")) {
            EXPECT_EQ(value["error"]["code"], outcome.exitCode);
        } else {
            const std::set<int> codesWithResult = {0, 17, 19, 21, 22};
            EXPECT_TRUE(codesWithResult.count(outcome.exitCode)) << outcome.exitCode;
        }
        m_codes.insert(outcome.exitCode);
        return value;
    }

    json call(const QStringList& arguments, const QByteArray& input = {}) {
        return note(arguments.front().toStdString(), run(arguments + QStringList{"--json"}, input));
    }

    json fail(int code, const QStringList& arguments, const QByteArray& input = {}) {
        json value = call(arguments, input);
        EXPECT_EQ(value["error"]["code"], code) << value.dump();
        return value;
    }

    void expectSchemasHold() const {
        const Outcome outcome = Tests::checkSchemas(m_lines);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.out.toStdString() << outcome.err.toStdString();
    }

    QByteArray m_lines;
    std::set<int> m_codes;
};

/// An archive whose second timeline is nested nowhere, so that its clip is lost.
QByteArray losing() {
    return archive(
        "<RootObject type='Timeline::Object' objectId='7'><clips type='Array' size='1'><Item>"
        "<Key type='ObjectRef' value='8'/><Value type='int32_t' value='0'/></Item></clips></RootObject>"
        "<RootObject type='Timeline::Clip' objectId='8'><name type='String' "
        "value='Harbour'/></RootObject>");
}

/// A step fails on it.
QByteArray failing() {
    return archive("<RootObject type='File' objectId='4'/>")
        .replace("<name ", "<file type='ObjectRef' value='4'/><name ");
}

TEST_F(JsonContractTest, EveryCommandKeepsItsSchema) {
    write("film.xml", sample("holiday-v27.xml"));
    const json migrated = call({"migrate", "film.xml"});
    EXPECT_EQ(migrated["format"], 1);
    EXPECT_EQ(migrated["tool"]["name"], "adaptors");
    EXPECT_EQ(migrated["command"], "migrate");
    EXPECT_EQ(migrated["input"], "film.xml");
    EXPECT_EQ(migrated["sha256"],
              QCryptographicHash::hash(sample("holiday-v27.xml"), QCryptographicHash::Sha256)
                  .toHex()
                  .toStdString());
    EXPECT_GE(migrated["seconds"], 0);
    EXPECT_EQ(migrated["output"], Tests::migratedName("film").toStdString());
    EXPECT_EQ(migrated["backup"], nullptr);
    EXPECT_EQ(call({"migrate", "film.xml", "--in-place"})["backup"], "film.xml.bak");
    call({"migrate", "film.xml", "-o", "again.json", "-v"});
    call({"migrate", "film.xml", "-o", "quiet.json", "-q"});

    write("film.xml", sample("holiday-v27.xml"));
    const json ran = call({"run", "V28_ClipLabelAdaptor", "film.xml", "-o", "labelled.xml"});
    EXPECT_EQ(ran["steps"], json({"V28_ClipLabelAdaptor"}));
    EXPECT_EQ(ran["output"], "labelled.xml");
    EXPECT_EQ(ran["from"], json::parse(R"({"form": "xml", "version": 27})"));
    EXPECT_EQ(ran["clips"], nullptr);
    EXPECT_EQ(call({"run", "V28", "-", "-o", "x.xml"}, archive({}, ""))["from"]["version"], nullptr);

    EXPECT_EQ(call({"info", "film.xml"})["version"], 27);
    EXPECT_EQ(call({"info", "-"}, archive({}, ""))["version"], nullptr);
    EXPECT_EQ(call({"verify", "film.xml"})["findings"], json::array());
    ASSERT_EQ(run({"migrate", "film.xml", "--in-place"}).exitCode, 0);
    const json backups = call({"restore", "film.xml", "--list"})["backups"];
    ASSERT_EQ(backups.size(), 2);
    EXPECT_EQ(backups[0]["file"], "film.xml.bak2");
    EXPECT_EQ(backups[1]["file"], "film.xml.bak");
    const json restored = call({"restore", "film.xml"});
    EXPECT_EQ(restored["restored"], "film.xml");
    EXPECT_EQ(restored["kept"], "film.xml.bak2");
    EXPECT_EQ(fail(3, {"restore", "none.xml"})["error"]["kind"], "no-backup");
    const json trace = call({"trace", "film.xml", "--output-dir", "steps", "--to", "28"});
    EXPECT_EQ(trace["steps"].back(), json::parse(R"({"place": 3, "class": "V28_ClipLabelAdaptor",
        "file": "steps/03-V28_ClipLabelAdaptor.xml"})"));
    EXPECT_EQ(trace["steps"].front()["file"], nullptr);
    const json steps = call({"steps", "--from", "27", "--to", "29"});
    EXPECT_EQ(steps["steps"][0]["class"], "V28_ClipLabelAdaptor");
    EXPECT_EQ(steps["input"], nullptr);
    for (const char* name : {"holiday-v3.xml", "holiday-v45.xml", "holiday-v60.json", "holiday-v76.json"}) {
        write("sample", sample(name));
        call({"migrate", "sample", "-o", "sample.json", "--force"});
        call({"info", "sample"});
        call({"verify", "sample"});
        call({"trace", "sample", "--output-dir", QStringLiteral("steps-") + name, "--diff"});
        call({"explain", "sample"});
        call({"timeline", "sample", "-o", QStringLiteral("film-") + name + ".svg"});
        EXPECT_EQ(call({"report", "sample", "-o", "page.html", "--force"})["output"], "page.html");
        const json exported = call({"export", "sample", "-o", "film.otio", "--force"});
        EXPECT_EQ(exported["output"], "film.otio");
        EXPECT_FALSE(exported["export"]["omissions"].empty());
        EXPECT_EQ(call({"diff", "sample", "sample.json"})["differences"], json::array());
        EXPECT_FALSE(call({"diff", "sample", "film.xml"})["differences"].empty());
    }
    expectSchemasHold();
}

TEST_F(JsonContractTest, EveryExitCodeKeepsTheSchemas) {
    // Nothing is known that makes the program fail unexpectedly; what it would print is.
    const Messages::Message unexpected = Messages::unexpected("vector::_M_range_check\n\x1b[31m");
    const auto line = JsonReport::line({"info", "film.xml", {}, 0.5}, {}, &unexpected);
    note("info", {1, QByteArray::fromStdString(line), ""});

    write("empty", "");
    write("text", "hello");
    write("broken.xml", "<Archive>\n<a></Archive>");
    write("broken.json", "{\"data\": }");
    write("project.xml", "<Project/>");
    write("doctype.xml", "<!DOCTYPE a><Archive/>");
    write("envelope.json", "{}");
    const std::map<QString, int> codes = {{"missing", 3},     {"empty", 4},         {"text", 5},
                                          {"broken.xml", 6},  {"broken.json", 7},   {"project.xml", 8},
                                          {"doctype.xml", 9}, {"envelope.json", 10}};
    for (const auto& [file, code] : codes) {
        for (const QStringList& before :
             {QStringList{"migrate"}, QStringList{"info"}, QStringList{"verify"},
              QStringList{"run", "V28", "-o", "x.xml"}, QStringList{"trace", "--output-dir", "steps"}}) {
            const json value = fail(code, before + QStringList{file});
            EXPECT_EQ(value["input"], file.toStdString());
            EXPECT_EQ(value["sha256"].is_null(), code == 3) << value.dump();
        }
    }
    EXPECT_EQ(fail(4, {"info", "empty"})["sha256"],
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    const json xml = fail(6, {"info", "broken.xml"})["error"];
    EXPECT_EQ(xml["kind"], "broken-xml");
    EXPECT_EQ(xml["line"], 2);
    EXPECT_GT(xml["column"], 0);
    EXPECT_EQ(fail(7, {"info", "broken.json"})["error"]["byte"], 10);

    write("old.xml", archive({}, ""));
    fail(11, {"migrate", "old.xml"});
    fail(11, {"trace", "old.xml", "--output-dir", "steps"});
    write("film.xml", archive());
    fail(12, {"migrate", "film.xml", "--to", "30"});
    write("failing.xml", failing());
    EXPECT_EQ(fail(13, {"migrate", "failing.xml"})["error"]["step"], "PortableLoadAdaptor");
    const json traced = fail(13, {"trace", "failing.xml", "--output-dir", "failed"});
    EXPECT_FALSE(traced["steps"].empty());
    EXPECT_EQ(fail(13, {"report", "failing.xml", "-o", "failing.html"})["output"], "failing.html");
    EXPECT_EQ(fail(3, {"report", "missing.xml"}).count("output"), 0U);
    write("losing.xml", losing());
    const json strict = fail(14, {"migrate", "losing.xml", "--strict"});
    EXPECT_EQ(strict["clips"]["lost"][0]["name"], "Harbour");
    EXPECT_EQ(strict["output"], nullptr);
    fail(15, {"migrate", "film.xml", "-o", "nowhere/film.json"});
    fail(15, {"run", "V28", "film.xml", "-o", "nowhere/film.json"});
    fail(15, {"trace", "film.xml", "--output-dir", "film.xml", "--from", "60"});
    fail(16, {"migrate", "film.xml", "-o", "film.xml"});
    fail(16, {"run", "V28", "film.xml", "-o", "film.xml"});
    write("dangling.json", Tests::jsonProject(R"({"@meta":{"class_name":"Timeline::Object","object_id":2},
        "clips":[{"clip":{"@meta_reference":9}}]})"));
    EXPECT_EQ(call({"verify", "dangling.json"})["findings"][0]["to"], 9);

    EXPECT_EQ(call({"migrate", "film.xml", "--check"})["output"], nullptr);
    // Version 57 loses the clips of a project whose root object is no project content.
    write("incomplete.xml", archive({}, " schemaVersion='56'"));
    EXPECT_EQ(call({"migrate", "incomplete.xml", "--to", "62"})["losses"][0]["intended"], false);
    EXPECT_EQ(call({"migrate", "incomplete.v62.xml", "--to", "62"})["output"], nullptr); // nothing to do

    // A sanitizer's own memory would not fit into the bound.
    if (!Tests::isSanitized) {
        write("large.json",
              Tests::jsonProject(R"({"@meta":{"class_name":"A","object_id":2},"a":[)" +
                                 QByteArray("{\"@meta\":{\"class_name\":\"A\"}},").repeated(200000) + "1]}"));
        for (const QStringList& before :
             {QStringList{"migrate"}, QStringList{"info"}, QStringList{"verify"}}) {
            const QStringList shell = {"-c", "ulimit -d 60000; exec \"$@\"", "sh",
                                       QString::fromStdString(Tests::program().string())};
            const json value =
                note(before.front().toStdString(),
                     Tests::runCommand("/bin/sh", shell + before + QStringList{"large.json", "--json"},
                                       m_folder.path()));
            EXPECT_EQ(value["error"]["kind"], "out-of-memory");
            EXPECT_EQ(value["seconds"], nullptr);
            EXPECT_FALSE(value["sha256"].is_null());
        }
    } else {
        const Messages::Message memory = Messages::outOfMemory("film.xml", "allowed");
        note(
            "info",
            {18, QByteArray::fromStdString(JsonReport::line({"info", "film.xml", {}, {}}, {}, &memory)), ""});
    }

    EXPECT_EQ(fail(2, {"run", "V1_Nothing", "film.xml", "-o", "x.xml"})["error"]["kind"], "unknown-step");
    EXPECT_EQ(fail(2, {"run", "V55", "film.xml", "-o", "x.xml"})["error"]["kind"], "ambiguous-step");
    for (const char* command : {"migrate", "run", "info", "verify", "trace", "steps", "diff", "explain"}) {
        EXPECT_EQ(fail(2, {command, "--what"})["error"]["kind"], "wrong-use");
        EXPECT_EQ(fail(2, {command, "a", "b", "c"})["command"], command);
    }
    for (const char* command : {"migrate", "run", "info", "verify", "trace", "diff", "explain"})
        fail(2, {command, ""});
    fail(2, {"migrate", "--in-place", "-"});
    fail(2, {"migrate", "film.xml", "--to", "x"});
    note("no-command", run({"--json"}));
    note("no-command", run({"--json", "fly"}));
    note("no-command", run({"fly", "film.xml", "--json"}));
    note("migrate", run({"--json", "migrate", "film.xml"}));
    for (int code = 0; code <= 19; ++code)
        EXPECT_TRUE(m_codes.count(code)) << code;
    EXPECT_TRUE(m_codes.count(22));
    expectSchemasHold();
}

TEST_F(JsonContractTest, JsonGivesWayToTheProject) {
    write("film.xml", archive());
    const QByteArray project = run({"migrate", "film.xml", "-o", "-"}).out;
    ASSERT_TRUE(project.startsWith('{'));
    for (const QStringList& arguments :
         {QStringList{"migrate", "film.xml", "-o", "-", "--json"}, QStringList{"migrate", "-", "--json"}}) {
        const Outcome outcome = run(arguments, archive());
        EXPECT_EQ(outcome.out, project);
        EXPECT_EQ(note("migrate", outcome, true)["output"], "standard output");
    }
    const Outcome ran = run({"run", "V28", "film.xml", "--json"});
    EXPECT_TRUE(ran.out.contains("<Archive")) << ran.out.toStdString();
    note("run", ran, true);
    // Also where it fails, and there is no project.
    const Outcome failed = run({"migrate", "-", "--json"}, failing());
    EXPECT_EQ(failed.out, "");
    EXPECT_EQ(note("migrate", failed, true)["error"]["code"], 13);
    const Outcome unknown = run({"run", "V1_Nothing", "film.xml", "--json"});
    EXPECT_EQ(unknown.out, "");
    note("run", unknown, true);
    expectSchemasHold();
}

TEST_F(JsonContractTest, NamesAreExactAndWhatIsNoTextIsReplaced) {
    const QString hostile = QStringLiteral("fi\nlm\x1b[31m\u202e\u009b.json");
    const QByteArray clip = R"(Be\nach\u001b[31m\u202e\u0000\u007f)";
    write(hostile, Tests::jsonProject(R"({"@meta":{"class_name":"Timeline::Object","object_id":2},"clips":[
        {"@meta":{"class_name":"Timeline::ClipTiming","object_id":3},"key":{"@meta":{"class_name":"Timeline::Clip",
        "object_id":4},"name":")" + clip +
                                      R"("}, "x":{"@meta":{"class_name":"A\u001b\nB","object_id":5}}}]})"));
    const json info = call({"info", hostile});
    EXPECT_EQ(info["input"], hostile.toStdString());
    EXPECT_EQ(info["objects"]["A\x1b\nB"], 1) << info.dump();
    call({"verify", hostile});
    call({"migrate", hostile, "-o", "out.json"});
    call({"trace", hostile, "--output-dir", "st\neps", "--from", "70"});
    // A name that is no UTF-8.
    const QStringList shell = {"-c", "exec \"$0\" info \"$(printf 'no\\377\\033file')\" --json",
                               QString::fromStdString(Tests::program().string())};
    const json missing = note("info", Tests::runCommand("/bin/sh", shell, m_folder.path()));
    EXPECT_EQ(missing["input"], "no\xef\xbf\xbd\x1b"
                                "file");
    // In a text that does not come by way of the toolkit.
    const Messages::Message message = Messages::unexpected("\xff\xfe half: \xe2\x80");
    Reader::MigrationReport report;
    report.objectsBefore = {{"A\xff", 1}};
    report.losses = {{{Reader::PartKind::Clip, 3, "Timeline::Clip", "\xc3", 3, {}}, "", "lost", false}};
    const json all =
        note("migrate", {1,
                         QByteArray::fromStdString(JsonReport::line(
                             {"migrate", "\xff", {}, 0},
                             JsonReport::migration({report, QStringLiteral("film.xml")}), &message)),
                         ""});
    EXPECT_EQ(all["clips"]["lost"][0]["name"], "\xef\xbf\xbd");
    expectSchemasHold();
}

TEST_F(JsonContractTest, TheSchemasRefuseWhatIsNotAsTheyDescribe) {
    const std::string good =
        JsonReport::line({"verify", "film.xml", std::string(64, 'a'), 0.25}, JsonReport::findings({}));
    json value = json::parse(good);
    const auto isRefused = [](const json& other) {
        const Outcome outcome =
            Tests::checkSchemas("verify\t" + QByteArray::fromStdString(other.dump()) + '\n');
        EXPECT_EQ(outcome.err, "");
        return outcome.exitCode == 1;
    };
    EXPECT_FALSE(isRefused(value));
    const auto with = [&value](const char* key, const json& changed) {
        json other = value;
        other[key] = changed;
        return other;
    };
    for (const auto& [key, ignored] : value.items()) {
        json other = value;
        other.erase(key);
        EXPECT_TRUE(isRefused(other)) << key;
    }
    EXPECT_TRUE(isRefused(with("more", 1)));
    EXPECT_TRUE(isRefused(with("format", 2)));
    EXPECT_TRUE(isRefused(with("command", "info")));
    EXPECT_TRUE(isRefused(with("sha256", "abc")));
    EXPECT_TRUE(isRefused(with("error", json::parse(R"({"code": 2, "kind": "wrong-use", "text": "x"})"))));
    EXPECT_TRUE(isRefused(with("findings", json::parse(R"([{"fault": "new"}])"))));
}

TEST_F(JsonContractTest, WithoutTheCheckerTestsFailAndSayWhy) {
    const Outcome outcome = Tests::runCommand(
        Tests::python, {"-I", "-S", QString::fromStdString(Tests::jsonChecker().string()), "/"},
        QStringLiteral("/"));
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_TRUE(outcome.out.contains("apt-get install python3-jsonschema")) << outcome.out.toStdString();
}

} // namespace
