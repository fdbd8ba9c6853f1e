// What a batch reports: tables, files of them, JSON; and states of shards that are merged.

#include "repairs/OldProject.h"
#include "support/Batch.h"
#include "support/Sanitizers.h"
#include "support/Schemas.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <nlohmann/json.hpp>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <set>
#include <string>

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

const QString state = QStringLiteral("out/adaptors-batch.sqlite");
const QStringList toOut = {"in", "--output-dir", "out"};

class ReportTest : public Tests::BatchTest {
protected:
    void SetUp() override {
        put("in/film.xml", oldProject());
        put("in/newest.json", newestProject());
        put("in/cut.xml", oldProject().chopped(20));
        put("in/notes.txt", "no project");
    }
    static std::vector<json> linesOf(const QByteArray& text) {
        std::vector<json> lines;
        for (const QByteArray& line : text.trimmed().split('\n'))
            lines.push_back(json::parse(line.toStdString()));
        return lines;
    }
    /// A project that loses a clip without a schema version's intent.
    static QByteArray losing() {
        return oldProject().replace(
            "</Archive>",
            "<RootObject type='Timeline::Object' objectId='7'><clips type='Array' size='1'><Item>"
            "<Key type='ObjectRef' value='8'/><Value type='int32_t' value='0'/></Item></clips></RootObject>"
            "<RootObject type='Timeline::Clip' objectId='8'><name type='String' value='Harbour'/>"
            "</RootObject></Archive>");
    }
    /// Holds lines of JSON against their schema.
    void expectSchema(const QByteArray& schema, const std::vector<json>& lines) const {
        QByteArray input;
        for (const json& line : lines)
            input += schema + '\t' + QByteArray::fromStdString(line.dump()) + '\n';
        const Tests::Outcome checked = Tests::checkSchemas(input);
        EXPECT_EQ(checked.exitCode, 0) << checked.out.toStdString() << checked.err.toStdString();
    }
};

TEST_F(ReportTest, TheTableOfReasonsHasThreeExamplesEach) {
    for (int number = 0; number < 5; ++number)
        put("in/cut" + QByteArray::number(number) + ".xml", oldProject().chopped(20));
    put("in/version.xml", oldProject().replace(" schemaVersion='62'", ""));
    EXPECT_EQ(batch(toOut), 20);
    const std::string text = m_outcome.out.toStdString();
    EXPECT_THAT(text,
                HasSubstr("9 projects: 1 done, 1 current already, 7 failed\n1 other file passed over\n"));
    EXPECT_THAT(text, HasSubstr("       6  broken-xml\n"));
    EXPECT_THAT(text, HasSubstr("/in/cut.xml:1:"));
    EXPECT_THAT(text, HasSubstr("/in/cut1.xml:1:"));
    EXPECT_THAT(text, testing::Not(HasSubstr("/in/cut2.xml")));
    EXPECT_THAT(text, HasSubstr("and 3 more\n"));
    EXPECT_THAT(text, HasSubstr("       1  no-version\n"));
    EXPECT_THAT(text, HasSubstr("       1  no-project\n"));
    // It is the same later on.
    EXPECT_EQ(batch({"--status", state}), 20);
    EXPECT_EQ(m_outcome.out.toStdString(), text);
}

TEST_F(ReportTest, JsonHasAnObjectForEachFileAndOneForTheEnd) {
    EXPECT_EQ(batch(toOut + QStringList{"--json"}), 20);
    EXPECT_EQ(m_outcome.err, "");
    auto lines = linesOf(m_outcome.out);
    ASSERT_EQ(lines.size(), 4U);
    const json end = lines.back();
    lines.pop_back();
    expectSchema("migrate", lines);
    std::map<std::string, json> files;
    for (const json& line : lines)
        files[line["input"]] = line;
    const std::string folder = QFileInfo(path("in")).canonicalFilePath().toStdString();
    // But for its name and the time, each is what `migrate --json` prints.
    json single =
        json::parse(run({"migrate", "in/film.xml", "-o", "single.json", "--json"}).out.toStdString());
    json film = files.at(folder + "/film.xml");
    EXPECT_EQ(film["output"], QFileInfo(path("out")).canonicalFilePath().toStdString() + "/film.v77.json");
    for (const char* key : {"input", "output", "seconds"}) {
        single.erase(key);
        film.erase(key);
    }
    EXPECT_EQ(film, single);
    EXPECT_EQ(files.at(folder + "/cut.xml")["error"]["code"], 6);
    EXPECT_EQ(end["command"], "batch");
    EXPECT_EQ(end["stopped"], false);
    EXPECT_EQ(end["run"],
              json::parse(R"({"total": 3, "migrated": 1, "current": 1, "failed": 1, "incomplete": 0,
                                         "kept": 0})"));
    EXPECT_EQ(end["counts"]["done"], 1);
    EXPECT_EQ(end["counts"]["skipped"], 1);
    EXPECT_EQ(end["reasons"].size(), 2U);
    std::vector<json> ends = {end};
    for (const QStringList& arguments :
         {QStringList{"--status", state}, QStringList{"--status", "missing"},
          toOut + QStringList{"--to", "70"}, QStringList{"in", "--check"}, QStringList{"--shard", "x"}}) {
        batch(arguments + QStringList{"--json"});
        ends.push_back(linesOf(m_outcome.out).back());
        EXPECT_EQ(ends.back().contains("error") ? ends.back()["error"]["code"].get<int>()
                                                : m_outcome.exitCode,
                  m_outcome.exitCode);
    }
    expectSchema("batch", ends);
}

TEST_F(ReportTest, JsonOfFilesThatFailWithoutAWord) {
    // A worker that has no file at that moment costs none.
    qint64 crashed = 0;
    for (int attempt = 0; attempt < 50 && crashed == 0; ++attempt) {
        QDir(path("out")).removeRecursively();
        Tests::BackgroundRun run(QStringList{"batch"} + toOut + QStringList{"--json", "-j1"},
                                 m_folder.path());
        const pid_t worker = run.aWorker();
        if (worker > 0)
            kill(worker, SIGKILL);
        auto lines = linesOf(run.outcome().out);
        lines.pop_back();
        EXPECT_EQ(lines.size(), 3U);
        crashed = std::count_if(lines.begin(), lines.end(), [](const json& line) {
            return line.contains("error") && line["error"]["kind"] == "crashed";
        });
        expectSchema("migrate", lines);
    }
    EXPECT_EQ(crashed, 1);
}

TEST_F(ReportTest, TablesInFiles) {
    put("in/sub/x", oldProject().chopped(20));
    const QByteArray name = "in/<b>&\"x\",y\n\xff.xml";
    put(name, oldProject().chopped(20));
    EXPECT_EQ(batch(toOut + QStringList{"--report", "table.csv"}), 20);
    EXPECT_EQ(batch({"--status", state, "--report", "table.jsonl"}), 20);
    EXPECT_EQ(batch({"--status", state, "--report", "table.html"}), 20);

    const auto lines = linesOf(read("table.jsonl"));
    EXPECT_EQ(lines.size(), 6U);
    expectSchema("batch-row", lines);

    const QByteArray csv = read("table.csv");
    EXPECT_TRUE(csv.startsWith("\"path\",\"state\",\"code\",\"kind\",\"reason\"")) << csv.toStdString();
    EXPECT_TRUE(csv.contains("/in/<b>&\"\"x\"\",y\n\xef\xbf\xbd.xml\",\"failed\",\"6\",\"broken-xml\""))
        << csv.toStdString();
    EXPECT_EQ(csv.count("\r\n"), 7);

    const QByteArray html = read("table.html");
    EXPECT_TRUE(html.contains(
        "/in/&lt;b&gt;&amp;&quot;x&quot;,y\\u000a\xef\xbf\xbd.xml</td><td>failed</td><td>6</td>"))
        << html.toStdString();
    EXPECT_TRUE(
        html.contains("<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
                      "'sha256-"));
    EXPECT_TRUE(html.contains("; script-src 'none';"));
    EXPECT_FALSE(html.contains("<b>"));
    EXPECT_FALSE(html.contains("<script"));
    EXPECT_FALSE(html.contains("http:") || html.contains("https:"));
    EXPECT_EQ(html.count("<tr>"), 7);
    EXPECT_EQ(batch({"--status", state, "--report", "nowhere/table.csv"}), 15);
}

/// The pages that a table links to.
QStringList linksIn(const QByteArray& table) {
    QStringList links;
    const QRegularExpression link(QStringLiteral("<a href=\"([^\"]*)\""));
    for (auto matches = link.globalMatch(QString::fromUtf8(table)); matches.hasNext();)
        links << matches.next().captured(1);
    return links;
}

TEST_F(ReportTest, TheTableInHtmlShowsEveryCharacterOfANameOrItsNumber) {
    put("in/a\x01\xf0\x9f\x8e\xac.xml", oldProject());
    EXPECT_EQ(batch(toOut + QStringList{"--report", "table.html"}), 20);
    EXPECT_TRUE(read("table.html").contains("/in/a\\u0001\xf0\x9f\x8e\xac.xml</td>"))
        << read("table.html").toStdString();
}

TEST_F(ReportTest, TheTableLinksToPagesOfWhatFailedOrLostSomething) {
    put("in/lost.xml", oldProject().replace("schemaVersion='62'", "schemaVersion='56'"));
    put("in/<b>&\"'.xml", oldProject().chopped(20));
    EXPECT_EQ(batch(toOut + QStringList{"--report", "table.html"}), 20);
    const QStringList links = linksIn(read("table.html"));
    EXPECT_EQ(links.size(), 3)
        << read("table.html").toStdString(); // cut.xml, lost.xml and the one with signs
    std::set<std::string> verdicts;
    for (const QString& link : links) {
        EXPECT_TRUE(QRegularExpression("^table-pages/[0-9a-f]{20}\\.html$").match(link).hasMatch())
            << link.toStdString();
        const QByteArray page = read(link);
        EXPECT_TRUE(page.startsWith("<!DOCTYPE html>"));
        const bool hasFailed = page.contains("The migration failed.");
        verdicts.insert(hasFailed ? "failed" : page.contains("missing in the result") ? "lost" : "fine");
        EXPECT_FALSE(page.contains("<b>&"));
        EXPECT_EQ(page.contains("it was cut off; restore the file from a backup"), hasFailed);
    }
    EXPECT_EQ(verdicts, (std::set<std::string>{"failed", "lost"}));

    // The same on every run.
    const QByteArray before = read(links[0]);
    EXPECT_EQ(batch({"--status", state, "--report", "table.html"}), 20);
    EXPECT_EQ(linksIn(read("table.html")), links);
    EXPECT_EQ(read(links[0]), before);
    EXPECT_EQ(batch({"--status", state, "--report", "all.html", "--pages", "all"}), 20);
    EXPECT_EQ(linksIn(read("all.html")).size(), 5);
    EXPECT_EQ(batch({"--status", state, "--report", "none.html", "--pages", "none"}), 20);
    EXPECT_TRUE(linksIn(read("none.html")).isEmpty());
    EXPECT_FALSE(exists("none-pages"));
    EXPECT_EQ(batch({"--status", state, "--report", "rows.csv"}), 20);
    EXPECT_FALSE(exists("rows-pages"));
    EXPECT_EQ(batch({"--status", state, "--report", "x.html", "--pages", "some"}), 2);
}

TEST_F(ReportTest, PagesAreAboutTheResultsOfTheBatch) {
    const QStringList onlyFilm = {"in",       "--output-dir", "old",           "--to",    "62", "--include",
                                  "film.xml", "--report",     "in/table.html", "--pages", "all"};
    EXPECT_EQ(batch(onlyFilm), 0);
    const QStringList links = linksIn(read("in/table.html"));
    ASSERT_EQ(links.size(), 1);
    const auto hashOf = [](const QByteArray& bytes) {
        return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
    };
    EXPECT_TRUE(read("in/" + links[0]).contains(hashOf(read("old/film.v62.xml"))));
    // Neither the table nor its pages are found by the next run.
    EXPECT_EQ(batch(onlyFilm), 0);
    EXPECT_EQ(query("old/adaptors-batch.sqlite", "SELECT count(*) FROM files WHERE path LIKE '%table%'"),
              "0");
    // A file that was replaced is shown as it was before.
    put("there/film.xml", oldProject());
    EXPECT_EQ(batch({"there", "--in-place", "--report", "there.html", "--pages", "all"}), 0);
    const QStringList replaced = linksIn(read("there.html"));
    ASSERT_EQ(replaced.size(), 1);
    EXPECT_TRUE(read(replaced[0]).contains(hashOf(oldProject())));
}

TEST_F(ReportTest, TheFolderOfPagesMustBeOne) {
    write("table-pages", "a file where a folder is to be");
    EXPECT_EQ(batch(toOut + QStringList{"--report", "table.html"}), 15);
    EXPECT_TRUE(m_outcome.err.contains("table-pages")) << m_outcome.err.toStdString();
    EXPECT_EQ(read("table-pages"), "a file where a folder is to be");
    EXPECT_EQ(column(state, "state")["film.xml"], "done"); // what was done stays recorded
}

TEST_F(ReportTest, APageSaysWhyThereIsNoMoreToSay) {
    QFile::remove(path("in/cut.xml"));
    put("in/losing.xml", losing());
    EXPECT_EQ(batch(toOut + QStringList{"--strict"}), 20);
    EXPECT_EQ(column(state, "state || ' ' || kind")["losing.xml"], "failed strict");
    const QStringList withPages = {"--status", state, "--report", "table.html", "--pages", "all"};
    // Files that are gone: the one that failed has its reason, the one that was done has that of its page.
    for (const char* name : {"in/losing.xml", "in/film.xml", "in/newest.json"})
        QFile::remove(path(name));
    EXPECT_EQ(batch(withPages), 20) << m_outcome.err.toStdString();
    const QStringList links = linksIn(read("table.html"));
    EXPECT_EQ(links.size(), 3);
    int strict = 0;
    int gone = 0;
    for (const QString& link : links) {
        strict += read(link).contains("--strict");
        gone += read(link).contains("film.xml: No such file or directory");
    }
    EXPECT_EQ(strict, 1);
    EXPECT_EQ(gone, 1);
}

TEST_F(ReportTest, MemoryThatRunsOutCostsOnePage) {
    if (Tests::isSanitized)
        GTEST_SKIP() << "a sanitizer's own memory would not fit into the bound";
    put("in/large.xml", largeProject());
    EXPECT_EQ(batch({"in/large.xml", "--output-dir", "out"}), 0) << m_outcome.err.toStdString();
    EXPECT_EQ(batch({"--status", state, "--report", "table.html", "--pages", "all", "--max-memory", "4M"}),
              0);
    const QStringList links = linksIn(read("table.html"));
    ASSERT_EQ(links.size(), 1);
    EXPECT_TRUE(read(links[0]).contains("the document needs more memory than --max-memory allows, 4 MiB"));
}

TEST_F(ReportTest, APageThatTakesTooLongIsGivenUp) {
    EXPECT_EQ(batch(toOut), 20);
    QFile::remove(path("in/film.xml"));
    ASSERT_EQ(mkfifo(QFile::encodeName(path("in/film.xml")).constData(), 0600), 0);
    EXPECT_EQ(batch({"--status", state, "--report", "table.html", "--pages", "all", "--timeout", "1"}), 20);
    int ended = 0;
    for (const QString& link : linksIn(read("table.html")))
        ended += read(link).contains("the page of this file could not be made: its process was ended");
    EXPECT_EQ(ended, 1);
}

TEST_F(ReportTest, TheStateIsWhatItsDescriptionSays) {
    EXPECT_EQ(batch(toOut), 20);
    EXPECT_EQ(query(state, "PRAGMA user_version"), "1");
    EXPECT_EQ(query(state, "PRAGMA integrity_check"), "ok");
    EXPECT_EQ(query(state, "SELECT group_concat(name, ' ') FROM pragma_table_info('files')"),
              "path name output bundle state size time sha256 from_version to_version code kind reason "
              "losses repairs seconds "
              "output_size output_time backup fresh replaceable tool");
    const std::string film = " FROM files WHERE name = 'film.xml'";
    EXPECT_EQ(
        query(state,
              "SELECT state, size, time, from_version, to_version, code, kind, reason, losses, tool" + film),
        "done|" + std::to_string(oldProject().size()) + "|1600000000123456789|62|77|0|||0|1.0.0");
    EXPECT_EQ(query(state, "SELECT path" + film),
              QFileInfo(path("in/film.xml")).canonicalFilePath().toStdString());
    EXPECT_EQ(query(state, "SELECT sha256" + film),
              json::parse(run({"migrate", "in/film.xml", "--check", "--json"}).out.toStdString())["sha256"]);
    EXPECT_EQ(query(state, "SELECT seconds >= 0" + film), "1");
}

TEST_F(ReportTest, ShardsAreMerged) {
    for (int number = 0; number < 20; ++number)
        put("in/more/" + QByteArray::number(number) + ".xml", oldProject());
    put("in/film.json", Tests::sample("holiday-v63.json"));
    EXPECT_EQ(batch(toOut), 20);
    const auto wholeTree = tree("out");
    const auto wholeRows = rows(state);
    QStringList states;
    std::size_t sum = 0;
    for (int number = 1; number <= 3; ++number) {
        const QString shard = QString::number(number) + "/3";
        EXPECT_NE(batch({"in", "--output-dir", "parts", "--shard", shard}), 2) << m_outcome.err.toStdString();
        states += "parts/adaptors-batch." + QString::number(number) + "-of-3.sqlite";
        const std::size_t count = rows(states.back()).size();
        EXPECT_GT(count, 1U);
        EXPECT_LT(count, wholeRows.size());
        sum += count;
    }
    EXPECT_EQ(sum, wholeRows.size());
    EXPECT_EQ(tree("parts"), wholeTree);
    EXPECT_EQ(batch(QStringList{"--merge"} + states + QStringList{"--output-dir", "parts"}), 20)
        << m_outcome.err.toStdString();
    const QString merged = "parts/adaptors-batch.sqlite";
    EXPECT_EQ(rows(merged), wholeRows);
    // The whole batch goes on with it.
    EXPECT_EQ(batch({"in", "--output-dir", "parts", "--json"}), 20);
    EXPECT_EQ(m_outcome.out.count('\n'), 1);
    EXPECT_EQ(tree("parts"), wholeTree);
    // A part is the same on every machine, wherever the folder is.
    ASSERT_TRUE(QFile::rename(path("in"), path("moved")));
    EXPECT_NE(batch({"moved", "--output-dir", "again", "--shard", "2/3"}), 2);
    EXPECT_EQ(query("again/adaptors-batch.2-of-3.sqlite", "SELECT name FROM files ORDER BY name"),
              query(states[1], "SELECT name FROM files ORDER BY name"));
    // States that don't belong together.
    EXPECT_EQ(batch({"--merge", state, states[0], "--state", "mixed"}), 2);
    EXPECT_TRUE(m_outcome.err.contains("other options")) << m_outcome.err.toStdString();
    EXPECT_EQ(batch({"--merge", "missing", "--state", "mixed2"}), 15);
    query(states[0], "UPDATE files SET state = 'working' WHERE state = 'done'");
    EXPECT_EQ(batch(QStringList{"--merge"} + states + QStringList{"--state", "mixed3"}), 2);
    EXPECT_TRUE(m_outcome.err.contains("run it to its end first")) << m_outcome.err.toStdString();
}

TEST_F(ReportTest, OfTwoStatesOfAFileTheBetterOneIsMerged) {
    EXPECT_EQ(batch(toOut), 20);
    const std::pair<const char*, const char*> pairs[] = {
        {"done", "failed"}, {"current", "failed"}, {"failed", "skipped"}, {"skipped", "waiting"}};
    for (const auto& [better, worse] : pairs) {
        for (const auto& [name, value] : {std::pair("better", better), std::pair("worse", worse)}) {
            QFile::remove(path(name));
            ASSERT_TRUE(QFile::copy(path(state), path(name)));
            query(name, "UPDATE files SET state = '" + std::string(value) + "' WHERE name = 'film.xml'");
        }
        for (const QStringList& order : {QStringList{"better", "worse"}, QStringList{"worse", "better"}}) {
            QFile::remove(path("merged"));
            EXPECT_NE(batch(QStringList{"--merge"} + order + QStringList{"--state", "merged"}), 2);
            EXPECT_EQ(column("merged", "state")["film.xml"], better) << order[0].toStdString();
            EXPECT_EQ(rows("merged").size(), rows(state).size());
        }
    }
}

TEST_F(ReportTest, StatesThatContradictEachOtherAreNotMerged) {
    EXPECT_EQ(batch(toOut), 20);
    ASSERT_TRUE(QFile::copy(path(state), path("other")));
    query("other", "UPDATE files SET path = path || '.old'");
    EXPECT_EQ(batch({"--merge", state, "other", "--state", "merged"}), 2);
    EXPECT_TRUE(m_outcome.err.contains("have the same output")) << m_outcome.err.toStdString();
    EXPECT_TRUE(rows("merged").empty()); // not even a part of them
    query("other", "DELETE FROM settings");
    EXPECT_EQ(batch({"--merge", "other", "--state", "merged"}), 2);
    EXPECT_TRUE(m_outcome.err.contains("other: this state holds nothing")) << m_outcome.err.toStdString();
}

TEST_F(ReportTest, OptionsOfMigrateHoldForEachFile) {
    put("in/none.xml", oldProject().replace(" schemaVersion='62'", ""));
    EXPECT_EQ(
        batch({"in", "--output-dir", "out", "--from", "62", "--exclude", "*.json", "--exclude", "cut.xml"}),
        0)
        << m_outcome.out.toStdString();
    EXPECT_THAT(names("out"), ElementsAre("film.v77.json", "none.v77.json"));
    EXPECT_EQ(batch({"in", "--output-dir", "old", "--to", "62", "--include", "film.xml"}), 0);
    EXPECT_THAT(names("old"), ElementsAre("film.v62.xml"));
    const QByteArray import =
        "<RootObject type='File' objectId='6'><path type='String' value='/opt/packages/a.svg'/></RootObject>";
    put("in/import.xml", Tests::archive(import));
    for (const char* folder : {"/opt/packages", "/elsewhere"}) {
        ASSERT_EQ(
            run({"migrate", "in/import.xml", "-o", "out/single.json", "--force", "--packages-root", folder})
                .exitCode,
            0);
        ASSERT_EQ(batch({"in/import.xml", "--output-dir", "out", "--packages-root", folder, "--force"}), 0);
        EXPECT_EQ(read("out/import.v77.json"), read("out/single.json"));
    }
}

TEST_F(ReportTest, RepairsAreRecordedByTheirNames) {
    Tests::OldProject old(12);
    old.root(2).timeline(2, "Film", {{3, 4, 16, 0, 5000}, {5, 6, 0, 1000, 2000}});
    put("in/old.xml", old.clip(3, 1, "Beach").title(5, "Welcome", 7).bytes()); // a clip on no track
    const QStringList onlyOld = {"in/old.xml", "--output-dir", "out"};
    EXPECT_EQ(batch(onlyOld), 20);
    EXPECT_EQ(query(state, "SELECT state, code, repairs FROM files"), "failed|13|");
    EXPECT_EQ(batch(onlyOld + QStringList{"--repair", "--force"}), 0) << m_outcome.out.toStdString();
    EXPECT_EQ(query(state, "SELECT state, code, repairs FROM files"), "done|0|clips-without-track");
}

/// What a worker answers to lines that it reads.
class WorkerTest : public ReportTest {
protected:
    /// A request for the project film.xml.
    json request() const {
        return {{"input", path("in/film.xml").toStdString()},
                {"output", path("out/film.v77.json").toStdString()},
                {"bundle", false},
                {"force", false},
                {"report", false}};
    }
    Tests::Outcome answersTo(const std::string& lines) const {
        return run({"batch-worker"}, QByteArray::fromStdString(lines));
    }
};

TEST_F(WorkerTest, AnswersEachRequestWithALine) {
    json again = request();
    again["report"] = true;
    const Tests::Outcome outcome = answersTo(request().dump() + '\n' + again.dump() + '\n');
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    const std::vector<json> answers = linesOf(outcome.out);
    ASSERT_EQ(answers.size(), 2U);
    EXPECT_EQ(answers[0]["state"], "done");
    EXPECT_EQ(answers[0]["code"], 0);
    EXPECT_EQ(answers[0].value("size", 0), oldProject().size());
    EXPECT_EQ(answers[0].value("from", 0), 62);
    EXPECT_EQ(answers[0].value("to", 0), 77);
    EXPECT_EQ(answers[0].value("outputSize", 0), read("out/film.v77.json").size());
    EXPECT_FALSE(answers[0].contains("report"));
    // The output is there now.
    EXPECT_EQ(answers[1]["state"], "failed");
    EXPECT_EQ(answers[1]["code"], 16);
    EXPECT_EQ(answers[1].value("report", json::object()).value("command", ""), "migrate");
}

TEST_F(WorkerTest, AnythingElseIsRefused) {
    json without = request();
    without.erase("bundle");
    json other = request();
    other["force"] = "yes";
    json number = request();
    number["input"] = 5;
    for (const std::string& line : {std::string("film.xml"), std::string("[]"), std::string(), without.dump(),
                                    other.dump(), number.dump()}) {
        const Tests::Outcome outcome = answersTo(line + '\n' + request().dump() + '\n');
        EXPECT_EQ(outcome.exitCode, 2) << line;
        EXPECT_TRUE(outcome.err.contains("a line is no request of a batch")) << outcome.err.toStdString();
        EXPECT_EQ(outcome.out, "") << line;
    }
    EXPECT_FALSE(exists("out"));
}

TEST_F(WorkerTest, WithoutItsBatchItDoesNothing) {
    std::array<int, 2> ends = {};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    const std::string line = request().dump() + '\n';
    ASSERT_EQ(::write(ends[1], line.data(), line.size()), static_cast<ssize_t>(line.size()));
    close(ends[1]); // the batch has ended
    const std::string program = Tests::program().string();
    const pid_t worker = fork();
    if (worker == 0) {
        dup2(ends[0], STDIN_FILENO);
        execl(program.c_str(), "adaptors", "batch-worker", nullptr);
        _exit(127);
    }
    close(ends[0]);
    int status = 0;
    ASSERT_EQ(waitpid(worker, &status, 0), worker);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_FALSE(exists("out"));
}

TEST_F(WorkerTest, EndsWhereNobodyReadsItsAnswers) {
    write("requests", QByteArray::fromStdString(request().dump()) + '\n');
    EXPECT_EQ(runAfter("exec <requests >/dev/full; ", {"batch-worker"}).exitCode, 15);
}

TEST_F(ReportTest, TheUsualFormsCanBeNamed) {
    EXPECT_EQ(batch(toOut + QStringList{"--progress", "auto", "--report", "usual.html"}), 20);
    EXPECT_EQ(m_outcome.err, "");
    EXPECT_EQ(batch({"--status", state, "--report", "named.html", "--pages", "needed"}), 20);
    EXPECT_EQ(linksIn(read("named.html")).size(), linksIn(read("usual.html")).size());
}

TEST_F(ReportTest, TheHelpNamesTheCommandButNotThatOfWorkers) {
    const QByteArray help = run({"--help"}).out;
    EXPECT_TRUE(help.contains("\n  batch "));
    EXPECT_FALSE(help.contains("batch-worker"));
    EXPECT_FALSE(run({"--help-all"}).out.contains("batch-worker"));
    const QByteArray ofBatch = run({"help", "batch"}).out;
    for (const char* option :
         {"--output-dir", "--in-place",      "--files0-from",  "--include", "--exclude", "--jobs",
          "--timeout",    "--state",         "--retry-failed", "--force",   "--status",  "--report",
          "--progress",   "--check",         "--shard",        "--merge",   "--to",      "--from",
          "--strict",     "--packages-root", "--max-memory",   "--pages"})
        EXPECT_TRUE(ofBatch.contains(option)) << option;
}

} // namespace
