// Which files a batch finds, which it passes over, and where their results go.

#include "support/Batch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

#include <set>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

namespace {

const QString state = QStringLiteral("out/adaptors-batch.sqlite");

class FindTest : public Tests::BatchTest {
protected:
    QStringList toOut(const QStringList& paths = {"in"}) const {
        return paths + QStringList{"--output-dir", "out"};
    }
    void link(const QByteArray& target, const QByteArray& name) const {
        ASSERT_EQ(symlink(target.constData(), QFile::encodeName(path(QString::fromUtf8(name))).constData()),
                  0);
    }
    std::map<std::string, std::string> kinds() const { return column(state, "kind"); }
};

TEST_F(FindTest, TheTreeIsKept) {
    put("in/film.xml", oldProject());
    put("in/a/b/c/film.xml", oldProject());
    put("in/a/newest.json", newestProject());
    EXPECT_EQ(batch(toOut()), 0) << m_outcome.err.toStdString();
    EXPECT_THAT(names("out"), ElementsAre("a/b/c/film.v77.json", "a/newest.v77.json", "film.v77.json"));
    // What has the version already is there too, as it was.
    EXPECT_EQ(read("out/a/newest.v77.json"), newestProject());
    EXPECT_THAT(column(state, "state"),
                UnorderedElementsAre(Pair("film.xml", "done"), Pair("a/b/c/film.xml", "done"),
                                     Pair("a/newest.json", "current")));
    // The results are those of the command migrate.
    EXPECT_EQ(run({"migrate", "in/film.xml", "-o", "single.json"}).exitCode, 0);
    EXPECT_EQ(read("out/film.v77.json"), read("single.json"));
}

TEST_F(FindTest, TheContentSaysWhatAFileIs) {
    put("in/no-suffix", oldProject());
    put("in/picture.png",
        "\xEF\xBB\xBF \n<?xml version='1.0'?><!-- a > b --><!DOCTYPE Archive [<!ENTITY a '>'>]>" +
            oldProject());
    put("in/reversed.dat",
        R"({"x": {"data": 1, "y": "\"}"}, "schemaVersion": 77, "version": "1.0", "data": {}})");
    QByteArray wide("\xFF\xFE");
    for (const char c : oldProject())
        wide += QByteArray(1, c) + '\0';
    put("in/wide.bin", wide);
    put("in/late.json", "{\"padding\": \"" + QByteArray(9000, 'x') + "\", \"schemaVersion\": 77}");
    put("in/drawing.xml", "<svg xmlns='http://www.w3.org/2000/svg'/>");
    put("in/package.json", R"({"name": "x", "version": "1.0", "data": [1, 2]})");
    put("in/list.json", "[1]");
    put("in/text.xml", "Archive");
    put("in/empty.xml", "");
    put("in/blank.xml", " \n");
    put("in/Archives.xml", "<Archives/>");
    put("in/cut.xml", "<?xml versi");
    put("in/cut.json", "{\"da");
    EXPECT_EQ(batch(toOut()), 20);
    auto found = column(state, "state || ' ' || coalesce(kind, '')");
    EXPECT_EQ(found["no-suffix"], "done ");
    EXPECT_EQ(found["wide.bin"], "done ");
    EXPECT_EQ(found["picture.png"], "failed refused-xml"); // a project all the same
    EXPECT_EQ(found["reversed.dat"], "failed wrong-envelope");
    EXPECT_EQ(found["late.json"], "failed wrong-envelope");
    EXPECT_EQ(found["cut.xml"], "failed broken-xml");
    EXPECT_EQ(found["cut.json"], "failed broken-json");
    for (const char* name : {"drawing.xml", "package.json", "list.json", "text.xml", "Archives.xml"})
        EXPECT_EQ(found[name], "skipped no-project") << name;
    for (const char* name : {"empty.xml", "blank.xml"})
        EXPECT_EQ(found[name], "skipped empty") << name;
}

TEST_F(FindTest, FilesThatAreCutOffEarlyAreFoundAndFail) {
    const std::pair<const char*, const char*> files[] = {
        {"<!-- no end", "broken-xml"},
        {"<!-- no element -->", "broken-xml"},
        {"<Archive", "broken-xml"},
        {"<!DOCTYPE Archive [<!ENTITY a '>'>", "refused-xml"}, // as all that declares a type of documents
        {"<!DOCTYPE Archive", "refused-xml"},
        {"<!DOCTYPE Archive>", "refused-xml"},
        {"{", "broken-json"},
        {R"({"version")", "broken-json"},
        {R"({"version":)", "broken-json"},
        {R"({"version": "1.0")", "broken-json"},
        {R"({"version": "1.0", )", "broken-json"},
    };
    for (const auto& [text, kind] : files) {
        write("in/cut", text);
        EXPECT_EQ(batch(toOut()), 20) << text;
        EXPECT_EQ(column(state, "state || ' ' || kind")["cut"], std::string("failed ") + kind) << text;
    }
}

TEST_F(FindTest, TextThatOnlyBeginsLikeADocumentIsNoProject) {
    put("in/comment.xml", "<!-- a comment --> and words");
    put("in/doctype.xml", "<!DOCTYPE html>\n<html/>");
    put("in/style.css", "{ color: red }");
    put("in/no-colon.json", "{\"schemaVersion\" 77}");
    put("in/other-end.json", "{\"a\": 1], \"schemaVersion\": 77}");
    EXPECT_EQ(batch(toOut()), 0) << m_outcome.out.toStdString();
    for (const auto& [name, kind] : kinds())
        EXPECT_EQ(kind, "no-project") << name;
    EXPECT_EQ(kinds().size(), 5U);
}

TEST_F(FindTest, ADamagedCharacterDoesNotHideAProject) {
    QByteArray wide("\xFF\xFE");
    for (const char c : oldProject())
        wide += QByteArray(1, c) + '\0';
    const int name = wide.indexOf(QByteArray("B\0", 2));
    wide[name + 1] = '\xDC'; // the second half of a character that has no first
    put("in/damaged.xml", wide);
    EXPECT_EQ(batch(toOut()), 20);
    EXPECT_EQ(column(state, "state")["damaged.xml"], "failed");
}

TEST_F(FindTest, TheNamesOfSideFilesMeanNothingWithoutAProject) {
    put("in/drawings/content_1.svg", "<svg xmlns='http://www.w3.org/2000/svg'/>");
    put("in/films/content_1.xml", oldProject());
    EXPECT_EQ(batch(toOut()), 0) << m_outcome.out.toStdString();
    EXPECT_THAT(kinds(), UnorderedElementsAre(Pair("drawings/content_1.svg", "no-project"),
                                              Pair("films/content_1.xml", "")));
    EXPECT_THAT(names("out"), ElementsAre("films/content_1.v77.json"));
}

TEST_F(FindTest, AFileThatIsNamedMayBeExcludedAllTheSame) {
    put("in/film.xml", oldProject());
    put("in/other.xml", oldProject());
    EXPECT_EQ(batch(toOut({"in/film.xml", "in/other.xml"}) + QStringList{"--exclude", "other.*"}), 0);
    EXPECT_THAT(kinds(), UnorderedElementsAre(Pair("film.xml", ""), Pair("other.xml", "excluded")));
    EXPECT_THAT(names("out"), ElementsAre("in/film.v77.json"));
}

TEST_F(FindTest, WhatIsNoRegularFileIsPassedOverAndCounted) {
    put("in/film.xml", oldProject());
    put("elsewhere/film.xml", oldProject());
    ASSERT_EQ(mkfifo(QFile::encodeName(path("in/pipe.xml")).constData(), 0600), 0);
    link("film.xml", "in/inner.xml");
    link("../elsewhere", "in/outer");
    link("../elsewhere/film.xml", "in/outer.xml");
    link(".", "in/circle");
    link("../in", "in/upward");
    link("self", "in/self");
    link("nowhere", "in/broken");
    EXPECT_EQ(batch(toOut()), 0) << m_outcome.err.toStdString();
    EXPECT_THAT(names("out"), ElementsAre("film.v77.json"));
    EXPECT_THAT(kinds(),
                UnorderedElementsAre(Pair("film.xml", ""), Pair("pipe.xml", "not-regular"),
                                     Pair("inner.xml", "inner-link"), Pair("outer", "outer-link"),
                                     Pair("outer.xml", "outer-link"), Pair("circle", "circular-link"),
                                     Pair("upward", "circular-link"), Pair("self", "broken-link"),
                                     Pair("broken", "broken-link")));
    EXPECT_TRUE(m_outcome.out.contains("8 other files passed over")) << m_outcome.out.toStdString();
    // Pipes that are named are not waited for either, and a folder that a link names is searched.
    EXPECT_EQ(batch(toOut({"in/pipe.xml", "in/outer"})), 0);
    EXPECT_TRUE(exists("out/in/outer/film.v77.json"));
}

TEST_F(FindTest, ResultsAndBackupsArePassedOver) {
    put("in/film.xml", oldProject());
    ASSERT_EQ(run({"migrate", "in/film.xml"}).exitCode, 0);
    ASSERT_EQ(run({"migrate", "in/film.xml", "--to", "70"}).exitCode, 0);
    put("in/film.xml.bak", oldProject());
    put("in/film.xml.bak2", oldProject());
    put("in/film.v77.json.4711-1.tmp", newestProject());
    put("in/alone.v70.json", read("in/film.v70.json")); // what it was made of is not here
    put("in/gone.xml.bak", oldProject());
    EXPECT_EQ(batch(toOut()), 0) << m_outcome.out.toStdString();
    EXPECT_THAT(kinds(), UnorderedElementsAre(Pair("film.xml", ""), Pair("film.v77.json", "result"),
                                              Pair("film.v70.json", "result"), Pair("film.xml.bak", "backup"),
                                              Pair("film.xml.bak2", "backup"),
                                              Pair("film.v77.json.4711-1.tmp", "temporary"),
                                              Pair("alone.v70.json", ""), Pair("gone.xml.bak", "")));
    EXPECT_THAT(names("out"), ElementsAre("alone.v70.v77.json", "film.v77.json", "gone.xml.v77.json"));
}

TEST_F(FindTest, TwoInputsNeverMeetInOneOutput) {
    put("in/film.xml", oldProject("one"));
    put("in/film.json", Tests::sample("holiday-v63.json"));
    put("in/film", oldProject("two"));
    put("in/film.xml.json", Tests::sample("holiday-v76.json")); // would be written where film.xml is
    put("in/other.xml", oldProject("three"));
    EXPECT_EQ(batch(toOut()), 0) << m_outcome.err.toStdString();
    const auto outputs = column(state, "output");
    EXPECT_EQ(outputs.at("other.xml"), "other.v77.json");
    std::set<std::string> all;
    for (const auto& [name, output] : outputs) {
        EXPECT_TRUE(all.insert(output).second) << output;
        EXPECT_TRUE(exists("out/" + QString::fromStdString(output)));
    }
    EXPECT_EQ(all.size(), 5U);
    EXPECT_TRUE(read("out/" + QString::fromStdString(outputs.at("film"))).contains("two"));
    EXPECT_TRUE(read("out/" + QString::fromStdString(outputs.at("film.xml"))).contains("one"));
    // One that comes later doesn't take an output that another one has.
    put("in/other.json", Tests::sample("holiday-v63.json"));
    EXPECT_EQ(batch(toOut()), 0);
    EXPECT_EQ(column(state, "output")["other.xml"], "other.v77.json");
    EXPECT_EQ(column(state, "output")["other.json"], "other.json.v77.json");
    EXPECT_TRUE(read("out/other.v77.json").contains("three"));
}

TEST_F(FindTest, SeveralPathsKeepTheirWholeNames) {
    put("in/a/film.xml", oldProject());
    put("in/b/film.xml", oldProject());
    put("film.xml", oldProject());
    EXPECT_EQ(batch(toOut({"in/a", "./in/../in/b", "film.xml", "in/a/film.xml"})), 0)
        << m_outcome.err.toStdString();
    EXPECT_THAT(names("out"), ElementsAre("film.v77.json", "in/a/film.v77.json", "in/b/film.v77.json"));
}

TEST_F(FindTest, AnyNameIsKeptToTheByte) {
    const std::vector<QByteArray> all = {"with space.xml",     "line\nfeed.xml",         "-dash.xml",
                                         "--output-dir=x.xml", "inv\xff\xfe.xml",        "quote\"'.xml",
                                         "per%20cent.xml",     "gr\xc3\xbc\xc3\x9f.xml", "back\\slash.xml",
                                         "tab\t.xml",          "\x1b[31m.xml",           "*.xml"};
    for (const QByteArray& name : all)
        put("in/fol\xfe\nder/" + name, oldProject());
    EXPECT_EQ(batch(toOut()), 0) << m_outcome.err.toStdString();
    std::vector<std::string> expected;
    for (const QByteArray& name : all)
        expected.push_back("fol\xfe\nder/" + name.chopped(4).toStdString() + ".v77.json");
    EXPECT_THAT(names("out"), testing::UnorderedElementsAreArray(expected));
    EXPECT_EQ(batch(toOut({"--", "in"})), 2); // behind "--" are only paths
    EXPECT_EQ(run({"batch", "--output-dir", "dash", "--", "-x"}).exitCode, 20);
    // Nothing of it reaches a terminal.
    put("in/\x1b[31mbad.xml", "<Archive");
    EXPECT_EQ(batch(toOut()), 20);
    EXPECT_FALSE(m_outcome.out.contains('\x1b'));
}

TEST_F(FindTest, ListsOfNamesEndedByNul) {
    put("in/a.xml", oldProject());
    put("in/b\nc.xml", oldProject());
    put("in/sub/d.xml", oldProject());
    const QByteArray list("in/a.xml\0in/b\nc.xml\0\0in/sub", 27);
    EXPECT_EQ(run({"batch", "--files0-from", "-", "--output-dir", "out"}, list).exitCode, 0);
    EXPECT_THAT(names("out"), ElementsAre("in/a.v77.json", "in/b\nc.v77.json", "in/sub/d.v77.json"));
    write("list", list);
    EXPECT_EQ(run({"batch", "--files0-from", "list", "--output-dir", "out2"}).exitCode, 0);
    EXPECT_EQ(names("out2"), names("out"));
    EXPECT_EQ(run({"batch", "--files0-from", "missing", "--output-dir", "out3"}).exitCode, 3);
}

TEST_F(FindTest, PatternsIncludeAndExclude) {
    for (const char* name :
         {"in/a.xml", "in/b.xml", "in/b.json", "in/old/c.xml", "in/new/old/d.xml", "in/new/e.xml"})
        put(name, oldProject());
    EXPECT_EQ(batch(toOut() + QStringList{"--include", "*.xml", "--exclude", "old"}), 0);
    EXPECT_THAT(names("out"), ElementsAre("a.v77.json", "b.v77.json", "new/e.v77.json"));
    EXPECT_EQ(column(state, "kind")["b.json"], "excluded");
    EXPECT_EQ(column(state, "kind")["old"], "excluded");
    EXPECT_EQ(run({"batch", "in", "--output-dir", "out2", "--include", "new/*.xml", "--include", "[ab].xml",
                   "--exclude", "b*"})
                  .exitCode,
              0);
    EXPECT_THAT(names("out2"), ElementsAre("a.v77.json", "new/e.v77.json"));
    // What was passed over is found once the patterns are others.
    EXPECT_EQ(batch(toOut()), 0);
    EXPECT_EQ(names("out").size(), 6U);
}

TEST_F(FindTest, ABundleStaysOne) {
    for (const char* name : {"content_1.svg", "content_2.svg", "content_3.svg", "content_4.html",
                             "content_5.quiz", "holiday.xml"})
        put("in/sub/holiday/" + QByteArray(name),
            Tests::sample(("holiday-v20-bundle/" + std::string(name)).c_str()));
    put("in/sub/film.xml", oldProject());
    EXPECT_EQ(batch(toOut()), 0) << m_outcome.out.toStdString();
    // Paths inside a project depend on how deep it lies.
    ASSERT_TRUE(QDir(m_folder.path()).mkpath("alone/sub"));
    for (const char* folder : {"alone/sub/holiday", "alone2"}) {
        ASSERT_EQ(run({"migrate", "in/sub/holiday", "--bundle", folder}).exitCode, 0);
        ASSERT_GT(tree(folder).size(), 3U);
    }
    EXPECT_EQ(tree("out/sub/holiday"), tree("alone/sub/holiday"));
    EXPECT_TRUE(exists("out/sub/film.v77.json"));
    EXPECT_EQ(kinds()["sub/holiday/content_5.quiz"], "side-file");
    // The folder of a bundle may be the one that is searched.
    EXPECT_EQ(run({"batch", "in/sub/holiday", "--output-dir", "out2"}).exitCode, 0);
    EXPECT_EQ(tree("out2"), tree("alone2"));
}

TEST_F(FindTest, TheFolderOfTheResultsIsNotSearched) {
    put("in/film.xml", oldProject());
    put("in/sub/film.xml", oldProject());
    for (const char* folder : {"in/new", "in"}) {
        QDir(path("in/new")).removeRecursively();
        const QStringList arguments = {"in", "--output-dir", folder};
        EXPECT_EQ(batch(arguments), 0);
        const auto before = tree("in");
        EXPECT_EQ(batch(arguments), 0);
        EXPECT_EQ(tree("in"), before);
    }
    EXPECT_THAT(names("in"), ElementsAre("film.v77.json", "film.xml", "sub/film.v77.json", "sub/film.xml"));
}

TEST_F(FindTest, FoldersThatCannotBeReadAreReported) {
    if (geteuid() == 0)
        GTEST_SKIP() << "root may read every folder";
    put("in/film.xml", oldProject());
    put("in/closed/film.xml", oldProject());
    ASSERT_EQ(chmod(QFile::encodeName(path("in/closed")).constData(), 0), 0);
    EXPECT_EQ(batch(toOut()), 20);
    EXPECT_EQ(column(state, "code")["closed"], "3");
    EXPECT_EQ(column(state, "reason")["closed"],
              path("in/closed").toStdString() + ": Permission denied; check its name and its permissions");
    ASSERT_EQ(chmod(QFile::encodeName(path("in/closed")).constData(), 0700), 0);
}

TEST_F(FindTest, WhatIsMissingFails) {
    put("in/film.xml", oldProject());
    EXPECT_EQ(batch(toOut({"in", "missing.xml"})), 20);
    EXPECT_EQ(query(state, "SELECT state, code, kind FROM files WHERE path LIKE '%missing.xml'"),
              "failed|3|unreadable");
    EXPECT_THAT(names("out"), ElementsAre("in/film.v77.json"));
}

TEST_F(FindTest, AListMayEndWithNul) {
    put("in/film.xml", oldProject());
    write("list", QByteArray("in/film.xml\0\0", 13)); // an empty name is none
    EXPECT_EQ(batch({"--files0-from", "list", "--output-dir", "out"}), 0) << m_outcome.err.toStdString();
    EXPECT_THAT(kinds(), UnorderedElementsAre(Pair("film.xml", "")));
}

TEST_F(FindTest, WhatIsExcludedLaterIsPassedOverUnlessItIsDone) {
    put("in/fine.xml", oldProject());
    put("in/cut.xml", oldProject().chopped(20));
    EXPECT_EQ(batch(toOut()), 20);
    EXPECT_EQ(batch(toOut() + QStringList{"--exclude", "*.xml"}), 0);
    EXPECT_THAT(column(state, "state || ' ' || coalesce(kind, '')"),
                UnorderedElementsAre(Pair("fine.xml", "done "), Pair("cut.xml", "skipped excluded")));
}

TEST_F(FindTest, StandardInputIsNotTheListAndAProject) {
    EXPECT_EQ(batch({"-", "--files0-from", "-", "--output-dir", "out"}), 2);
    EXPECT_TRUE(m_outcome.err.contains("standard input can't be the list and a project"))
        << m_outcome.err.toStdString();
    EXPECT_FALSE(exists("out"));
}

TEST_F(FindTest, WrongUse) {
    const std::vector<std::pair<QStringList, QByteArray>> calls = {
        {{}, "\"batch\" needs PATH"},
        {{"in"}, "needs --output-dir DIR, --in-place or --check"},
        {{"in", "--output-dir", "out", "--in-place"}, "exclude each other"},
        {{"in", "--output-dir", "out", "--check"}, "exclude each other"},
        {{"in", "--check", "--in-place"}, "exclude each other"},
        {{"in", "--output-dir", "out", "--shard", "3/2"}, "--shard can't be \"3/2\""},
        {{"in", "--output-dir", "out", "--shard", "0/2"}, "--shard can't be"},
        {{"in", "--output-dir", "out", "--shard", "1"}, "--shard can't be"},
        {{"in", "--output-dir", "out", "-j", "0"}, "can't be \"0\""},
        {{"in", "--output-dir", "out", "--timeout", "x"}, "--timeout can't be"},
        {{"in", "--output-dir", "out", "--progress", "x"}, "--progress can't be"},
        {{"in", "--output-dir", "out", "--report", "x.pdf"}, "ends in .csv, .jsonl or .html"},
        {{"in", "--output-dir", "out", "--strict=x"}, "--strict can't be"},
        {{"in", "--output-dir", ""}, "is empty"},
        {{"in", "--status", "x"}, "take no PATH"},
        {{"in", "other", "--in-place"}, "--in-place needs --state"},
        {{"in/film.xml", "--in-place"}, "--in-place needs --state"},
        {{"--files0-from", "list", "--in-place"}, "--in-place needs --state"},
        {{"--merge", "a", "b"}, "--merge needs --state FILE or --output-dir DIR"},
    };
    for (const auto& [arguments, part] : calls) {
        EXPECT_EQ(batch(arguments), 2) << part.toStdString();
        EXPECT_TRUE(m_outcome.err.contains(part)) << m_outcome.err.toStdString();
    }
    EXPECT_THAT(names("in"), IsEmpty());
    EXPECT_FALSE(exists("out"));
}

} // namespace
