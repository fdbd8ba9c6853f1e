// What reaches a terminal: no text of a document as it is, colours where they are wanted, and a line that says how far
// a long migration is.

#include "Terminal.h"
#include "support/ProgramTest.h"
#include "support/PseudoTerminal.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

using Terminal::escaped;
using Tests::archive;
using Tests::Outcome;
using Tests::runInTerminal;
using Tests::Screen;

namespace {

TEST(Escaping, ShowsWhatATerminalWouldObey) {
    struct Row {
        std::string text;
        std::string shown;
    };
    const std::vector<Row> rows = {
        {"Beach", "Beach"},
        {"", ""},
        {"two\nlines\r\n\tand a tab", "two\\nlines\\r\\n\\tand a tab"},
        {"\x1b[31mred\x1b]0;title\x07", "\\x1b[31mred\\x1b]0;title\\x07"},
        {std::string("a\0b", 3), "a\\x00b"},
        {"\x7f\x1f\x01", "\\x7f\\x1f\\x01"},
        {"\xc2\x80\xc2\x85\xc2\x9b"
         "31m\xc2\x9f\xc2\xa0",
         "\\u0080\\u0085\\u009b31m\\u009f\xc2\xa0"},
        {"\xe2\x80\xaa\xe2\x80\xab\xe2\x80\xac\xe2\x80\xad\xe2\x80\xae",
         "\\u202a\\u202b\\u202c\\u202d\\u202e"},
        {"\xe2\x81\xa6\xe2\x81\xa7\xe2\x81\xa8\xe2\x81\xa9", "\\u2066\\u2067\\u2068\\u2069"},
        {"\xe2\x80\x8e\xe2\x80\x8f\xd8\x9c", "\\u200e\\u200f\\u061c"},
        {"\xe2\x80\xa8\xe2\x80\xa9\xef\xbb\xbf", "\\u2028\\u2029\\ufeff"},
        // Neighbours of what is escaped, and texts of all lengths.
        {" ~\xe2\x80\xa7\xe2\x80\xaf\xe2\x80\x90", " ~\xe2\x80\xa7\xe2\x80\xaf\xe2\x80\x90"},
        {"Gr\xc3\xb6\xc3\x9f"
         "e \xe6\xb5\xb7 \xf0\x9f\x8f\x96",
         "Gr\xc3\xb6\xc3\x9f"
         "e \xe6\xb5\xb7 \xf0\x9f\x8f\x96"},
        {"C:\\new \"x\"", "C:\\new \"x\""},
        // No UTF-8: bytes alone, cut short, too long for their value, surrogates, beyond Unicode.
        {"\xff\xfe"
         "a",
         "\\xff\\xfea"},
        {"\x9b"
         "31m",
         "\\x9b31m"},
        {"\xe2\x80", "\\xe2\\x80"},
        {"\xe2\x80"
         "x",
         "\\xe2\\x80x"},
        {"\xc0\x8a\xe0\x80\x8a\xf0\x80\x80\x8a", "\\xc0\\x8a\\xe0\\x80\\x8a\\xf0\\x80\\x80\\x8a"},
        {"\xed\xa0\x80", "\\xed\\xa0\\x80"},
        {"\xf4\x90\x80\x80\xf5\x80\x80\x80", "\\xf4\\x90\\x80\\x80\\xf5\\x80\\x80\\x80"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(escaped(row.text), row.shown);
    EXPECT_EQ(escaped(QString::fromUtf8("a\nb\u202e")), "a\\nb\\u202e");
}

/// Control characters, characters of direction, or escape sequences: the first of them, or nothing.
QByteArray rawIn(QByteArray text) {
    text.replace('\n', "");
    const QString characters = QString::fromUtf8(text);
    for (const QChar c : characters) {
        const ushort code = c.unicode();
        if (code < 0x20 || (code >= 0x7f && code < 0xa0) || (code >= 0x202a && code <= 0x202e) ||
            (code >= 0x2066 && code <= 0x2069) || code == 0x200e || code == 0x200f || code == 0xfffd)
            return QByteArray::number(code, 16);
    }
    return {};
}

class TerminalTest : public Tests::ProgramTest {
protected:
    Screen show(const QStringList& arguments, const Tests::TerminalSetup& setup = {}) const {
        return runInTerminal(arguments, m_folder.path(), setup);
    }
    bool isRed(const QStringList& before, std::map<std::string, std::string> environment) const {
        const Screen screen = show(before + QStringList{"info", "missing"}, {80, std::move(environment)});
        EXPECT_EQ(screen.exitCode, 3);
        return screen.text.contains("\x1b[31merror\x1b[0m");
    }
};

const QString hostile = QStringLiteral("fi\nlm\x1b[31m\t\u009b\u202e\u2066\u200f\x7f");
const QByteArray hostileShown = R"(fi\nlm\x1b[31m\t\u009b\u202e\u2066\u200f\x7f)";

TEST_F(TerminalTest, NothingOfADocumentArrivesAsItIs) {
    // In XML no reference makes an escape character; those of the second range do the same.
    const QByteArray lost = archive(
        "<RootObject type='Timeline::Object' objectId='7'><clips type='Array' size='1'><Item>"
        "<Key type='ObjectRef' value='8'/><Value type='int32_t' value='0'/></Item></clips></RootObject>"
        "<RootObject type='Timeline::Clip' objectId='8'><name type='String' "
        "value='Har&#10;bour&#x9b;31m&#x202e;&#x7f;'/></RootObject>"
        "<RootObject type='File&#10;&#x9b;2J&#x2067;' objectId='33'><x type='ObjectRef' "
        "value='55'/></RootObject>");
    // Without its predeclarations version 35 reports an error.
    const QByteArray logging = archive({}, " schemaVersion='34'").replace("'Predeclarator'", "'Other'");
    const QByteArray json = Tests::jsonProject(
        R"({"@meta":{"class_name":"Ro\u001b]0;x\u0007\not","object_id":2},"a\u001b[1mb":{"@meta_reference":9},
        "c":{"@meta":{"class_name":"\u202eB","object_id":2}},
        "encodedText":"content_\u001b[5m\n.svg","d":{"@meta":{"class_name":"Overlay::Item","object_id":12},
        "encodedText":"content_\u001b[5m\n.svg"}})");
    write(hostile + ".xml", lost);
    write(hostile + ".json", json);
    write(hostile + ".log", logging);
    write(hostile + ".bad", "<Archive>\n<a></b\xc2\x9b\xe2\x80\xae></Archive>");
    write(hostile + ".class", "{\"\\u001b[31m\": }");
    write(hostile + ".version", archive({}, " schemaVersion='6&#10;&#x9b;'"));
    write(hostile + ".root", "<R\xe2\x80\xae/>");
    write(hostile + ".failing", archive("<RootObject type='File' objectId='4'/>", " schemaVersion='34'")
                                    .replace("<name ", "<file type='ObjectRef' value='4'/><name "));
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(hostile));
    int shown = 0;
    for (const QString& file : QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot) +
                                   QStringList{hostile + ".missing", "\u202e\x1b[31m"}) {
        const QString out = "out" + hostile + QString::number(shown);
        for (const QStringList& arguments : {QStringList{"migrate", file, "-o", out},
                                             QStringList{"migrate", file, "-o", out, "--strict", "-q"},
                                             QStringList{"migrate", file, "-o", file, "-v"},
                                             QStringList{"migrate", file, "--bundle", out + "b"},
                                             QStringList{"migrate", file, "--bundle", "no/" + out},
                                             QStringList{"migrate", file, "--from", file},
                                             QStringList{"info", file},
                                             QStringList{"info", file, file},
                                             QStringList{"info", "--" + file},
                                             QStringList{"verify", file},
                                             QStringList{"run", file, file},
                                             QStringList{"run", "V35", file, "-o", out + "r"},
                                             QStringList{"run", "V28", file, "-o", out + "s", "-v"},
                                             QStringList{"trace", file, "--output-dir", out + "t"},
                                             QStringList{"steps", file},
                                             QStringList{file},
                                             QStringList{"help", file},
                                             QStringList{"--" + file},
                                             QStringList{"migrate", file, "--in-place", "--to", "62"},
                                             QStringList{"--color", file, "steps"}}) {
            const Screen screen = show(arguments, {200, {{"NO_COLOR", "1"}}});
            EXPECT_EQ(rawIn(screen.text), "") << arguments.join(" ").toStdString() << "\n"
                                              << screen.text.toStdString();
            shown += screen.text.contains(hostileShown);
        }
    }
    EXPECT_GT(shown, 60); // names were there to be escaped
    write(hostile + ".xml", lost);
    const Screen clip = show({"migrate", hostile + ".xml", "-o", "clip", "--color=never"});
    EXPECT_TRUE(clip.text.contains(R"("Har\nbour\u009b31m\u202e\x7f" (id 8))")) << clip.text.toStdString();
    write(hostile + ".json", json);
    const Screen classes = show({"info", hostile + ".json"});
    EXPECT_TRUE(classes.text.contains(R"(Ro\x1b]0;x\x07\not)")) << classes.text.toStdString();
    EXPECT_TRUE(show({"verify", hostile + ".json"}).text.contains(R"(a\x1b[1mb)"));
    EXPECT_TRUE(show({"migrate", hostile + ".json", "-o", "log"}).text.contains(R"(content_\x1b[5m\n.svg)"));
}

TEST_F(TerminalTest, ColoursFollowTheOptionThenTheVariablesThenTheTerminal) {
    EXPECT_TRUE(isRed({}, {}));
    EXPECT_FALSE(isRed({}, {{"TERM", "dumb"}}));
    EXPECT_FALSE(isRed({}, {{"NO_COLOR", "1"}}));
    EXPECT_TRUE(isRed({}, {{"NO_COLOR", ""}}));
    EXPECT_TRUE(isRed({}, {{"TERM", "dumb"}, {"CLICOLOR_FORCE", "1"}}));
    EXPECT_FALSE(isRed({}, {{"TERM", "dumb"}, {"CLICOLOR_FORCE", "0"}}));
    EXPECT_FALSE(isRed({}, {{"NO_COLOR", "1"}, {"CLICOLOR_FORCE", "1"}}));
    EXPECT_TRUE(isRed({"--color=always"}, {{"NO_COLOR", "1"}, {"TERM", "dumb"}}));
    EXPECT_TRUE(isRed({"--color", "always"}, {{"NO_COLOR", "1"}}));
    EXPECT_FALSE(isRed({"--color=never"}, {{"CLICOLOR_FORCE", "1"}}));
    EXPECT_FALSE(isRed({"--color=auto"}, {{"NO_COLOR", "1"}}));
    EXPECT_TRUE(isRed({"--color=auto"}, {}));
    // Where no terminal is.
    EXPECT_FALSE(run({"info", "missing"}).err.contains('\x1b'));
    EXPECT_TRUE(run({"info", "missing", "--color=always"}).err.contains("\x1b[31m"));
    const QString command = QString::fromStdString(Tests::program().string());
    EXPECT_TRUE(
        Tests::runCommand("/usr/bin/env", {"CLICOLOR_FORCE=1", command, "info", "missing"}, m_folder.path())
            .err.contains("\x1b[31m"));
    // Also where the command line itself is wrong.
    EXPECT_TRUE(run({"--color=always", "fly"}).err.contains("\x1b[31m"));
    EXPECT_TRUE(run({"fly", "--color", "always"}).err.contains("\x1b[31m"));
    EXPECT_FALSE(show({"fly", "--color=never"}).text.contains('\x1b'));
}

TEST_F(TerminalTest, WhatNeedsNoAttentionHasNoColour) {
    write("film.xml", archive());
    for (const QStringList& arguments :
         {QStringList{"migrate", "film.xml"}, QStringList{"info", "film.xml"}, QStringList{"steps"},
          QStringList{"run", "V28", "film.xml", "-o", "a.xml"},
          QStringList{"trace", "film.xml", "--output-dir", "s"}, QStringList{"--help"}, QStringList{"-V"}}) {
        const Screen screen = show(arguments + QStringList{"--color=always"});
        EXPECT_EQ(screen.exitCode, 0) << screen.text.toStdString();
        EXPECT_FALSE(screen.text.contains('\x1b')) << screen.text.toStdString();
    }
}

TEST_F(TerminalTest, AProjectReadFromTheTerminalIsAskedFor) {
    const QByteArray question = "reading the project from the terminal; end with Ctrl-D\n";
    const QByteArray typed = "<Archive schemaVersion='62'/>\n\x04";
    const Screen screen = show({"info", "-"}, {.typed = typed});
    EXPECT_EQ(screen.text.indexOf(question), 0) << screen.text.toStdString();
    EXPECT_TRUE(screen.text.contains("version: 62"));
    EXPECT_FALSE(show({"info", "-", "-q"}, {.typed = typed}).text.contains("reading"));
    EXPECT_FALSE(show({"info", "-", "--json"}, {.typed = typed}).text.contains("reading"));
    EXPECT_FALSE(show({"info", "-"}, {.piped = archive()}).text.contains("reading"));
    EXPECT_EQ(run({"info", "-"}, archive()).err, "");
}

TEST_F(TerminalTest, LongWorkShowsItsStepsAndTakesThemAway) {
    const QByteArray erase = "\r\x1b[K";
    // The second in which the program waits for the rest of the document counts.
    const Tests::TerminalSetup slow = {.piped = archive({}, " schemaVersion='60'"),
                                       .pauseAfterFirstByte = 1100};
    const Screen screen = show({"migrate", "-", "-o", "a.json"}, slow);
    EXPECT_EQ(screen.exitCode, 0) << screen.text.toStdString();
    const auto first = screen.text.indexOf(erase + "step 1 of ");
    EXPECT_EQ(first, 0) << screen.text.toStdString();
    EXPECT_TRUE(screen.text.contains(erase + "step 2 of 13: V62_CollectionItemPayloadAdaptor" + erase))
        << screen.text.toStdString();
    const auto last = screen.text.lastIndexOf(erase);
    EXPECT_TRUE(screen.text.mid(last).startsWith(erase + "standard input: XML archive"))
        << screen.text.toStdString();
    EXPECT_FALSE(screen.text.mid(last).contains(" of 13"));
    // It is gone before an error is shown.
    Tests::TerminalSetup failing = slow;
    failing.piped = archive("<RootObject type='File' objectId='4'/>")
                        .replace("<name ", "<file type='ObjectRef' value='4'/><name ");
    const Screen failed = show({"migrate", "-", "-o", "f.json"}, failing);
    EXPECT_EQ(failed.exitCode, 13);
    EXPECT_TRUE(failed.text.contains(erase + "adaptors: ")) << failed.text.toStdString();
    EXPECT_TRUE(show({"trace", "-", "--output-dir", "steps"}, slow).text.contains(erase + "step 2 of 13"));

    for (const QStringList& option : {QStringList{"-q"}, QStringList{"--json"}}) {
        const Screen silent = show(QStringList{"migrate", "-", "-o", "b.json", "--force"} + option, slow);
        EXPECT_FALSE(silent.text.contains(" of 13")) << silent.text.toStdString();
        EXPECT_FALSE(silent.text.contains('\x1b')) << silent.text.toStdString();
    }
    Tests::TerminalSetup dumb = slow;
    dumb.environment = {{"TERM", "dumb"}};
    EXPECT_FALSE(show({"migrate", "-", "-o", "c.json"}, dumb).text.contains(" of 13"));
    write("film", *slow.piped);
    const Outcome piped = Tests::runCommand("/bin/sh",
                                            {"-c", "(sleep 1.1; cat film) | \"$0\" migrate - -o d.json",
                                             QString::fromStdString(Tests::program().string())},
                                            m_folder.path());
    EXPECT_EQ(piped.exitCode, 0) << piped.err.toStdString();
    EXPECT_FALSE(piped.err.contains(" of 13") || piped.err.contains('\x1b')) << piped.err.toStdString();
    // Short work shows none.
    const Screen quick = show({"migrate", "film", "-o", "e.json"});
    EXPECT_EQ(quick.exitCode, 0);
    EXPECT_FALSE(quick.text.contains('\x1b')) << quick.text.toStdString();
}

} // namespace
