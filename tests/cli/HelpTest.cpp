// Help fits the terminal, and what it shows works.

#include "support/ProgramTest.h"
#include "support/PseudoTerminal.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

#include <set>

using Tests::Outcome;
using Tests::runInTerminal;
using Tests::sample;
using Tests::Screen;

namespace {

const QStringList commands = {"migrate", "steps",    "run",    "info",    "verify",  "trace",  "diff",
                              "explain", "timeline", "report", "repairs", "restore", "export", "help"};

class HelpTest : public Tests::ProgramTest {
protected:
    QList<QByteArray> linesAt(int columns, const QStringList& arguments) const {
        const Screen screen = runInTerminal(arguments, m_folder.path(), {columns});
        EXPECT_EQ(screen.exitCode, 0);
        return screen.text.split('\n');
    }
    static int longest(const QList<QByteArray>& lines) {
        int length = 0;
        for (const QByteArray& line : lines)
            length = std::max(length, line.size());
        return length;
    }
};

QList<QStringList> helpCalls() {
    QList<QStringList> calls = {{}, {"--help"}, {"-h"}, {"help"}, {"--help-all"}};
    for (const QString& command : commands)
        calls << QStringList{command, "--help"} << QStringList{"help", command};
    return calls;
}

TEST_F(HelpTest, FitsTheTerminal) {
    for (const int columns : {60, 80, 120}) {
        for (const QStringList& call : helpCalls()) {
            const auto lines = linesAt(columns, call);
            EXPECT_LE(longest(lines), columns) << call.join(' ').toStdString();
            EXPECT_GT(lines.size(), 5) << call.join(' ').toStdString();
        }
        EXPECT_GT(longest(linesAt(columns, {"--help"})), columns * 3 / 4); // the width is used
    }
    // Never below 60, 80 where there is no terminal, and COLUMNS comes first.
    EXPECT_EQ(linesAt(20, {"--help"}), linesAt(60, {"--help"}));
    const auto lines = linesAt(80, {"--help"});
    EXPECT_EQ(run({"--help"}).out.split('\n'), lines);
    EXPECT_EQ(runInTerminal({"--help"}, m_folder.path(), {60, {{"COLUMNS", "80"}}}).text.split('\n'), lines);
    EXPECT_EQ(runInTerminal({"--help"}, m_folder.path(), {80, {{"COLUMNS", "wide"}}}).text.split('\n'),
              lines);
}

TEST_F(HelpTest, ColumnsAreAligned) {
    const QRegularExpression option(QStringLiteral("^  (-\\w, |    )--[a-z-]+( [A-Z]+)?(?<gap>  +)\\S"));
    const QRegularExpression continued(QStringLiteral("^(?<indent> {12,})\\S"));
    for (const int columns : {60, 80, 120}) {
        for (const QString& command : commands + QStringList{""}) {
            std::set<int> places;
            bool isOption = false;
            for (const QByteArray& line :
                 linesAt(columns,
                         QStringList{"help"} + (command.isEmpty() ? QStringList() : QStringList{command}))) {
                const QString text = QString::fromUtf8(line);
                const auto match = option.match(text);
                const auto more = continued.match(text);
                if (match.hasMatch())
                    places.insert(match.capturedEnd("gap"));
                else if (isOption && more.hasMatch())
                    places.insert(more.capturedEnd("indent"));
                isOption = match.hasMatch() || (isOption && more.hasMatch());
            }
            EXPECT_EQ(places.size(), 1U) << command.toStdString() << " at " << columns;
        }
    }
}

TEST_F(HelpTest, TextsOfExamplesAreIndented) {
    const QByteArray shown = linesAt(80, {"run", "--help"}).join('\n');
    EXPECT_TRUE(shown.contains("\n  adaptors run V28 film.xml > labelled.xml\n      the same\n"))
        << shown.toStdString();
}

TEST_F(HelpTest, ArgumentsThatMayRepeatSaySo) {
    EXPECT_EQ(linesAt(80, {"batch", "--help"})[3], "Usage: adaptors batch [OPTIONS] [PATH...]");
    EXPECT_EQ(linesAt(80, {"diff", "--help"})[2], "Usage: adaptors diff [OPTIONS] OLD NEW");
}

TEST_F(HelpTest, NoCommandAndHelpAreTheSame) {
    const Outcome none = run({});
    EXPECT_EQ(none.exitCode, 0);
    EXPECT_EQ(none.err, "");
    EXPECT_TRUE(none.out.contains("Exit codes") && none.out.contains("Commands:"));
    EXPECT_EQ(none.out, run({"help"}).out);
    EXPECT_EQ(none.out, run({"--help"}).out);
    for (const QString& command : commands) {
        EXPECT_EQ(run({"help", command}).out, run({command, "--help"}).out);
        EXPECT_EQ(run({"help", command}).out, run({"--help", command}).out);
        EXPECT_TRUE(none.out.contains("  " + command.toUtf8() + "  ")) << command.toStdString();
        EXPECT_TRUE(run({"help", command}).out.contains("--quiet")) << command.toStdString();
    }
    EXPECT_EQ(run({"-V"}).out, run({"--version"}).out);
    EXPECT_EQ(run({"migrate", "-V"}).out, run({"--version"}).out);
    EXPECT_TRUE(QRegularExpression("^adaptors \\d+\\.\\d+\\.\\d+, schema version 77\n$")
                    .match(QString::fromUtf8(run({"-V"}).out))
                    .hasMatch());
}

/// The calls of the program in the examples of a help text.
QStringList examplesIn(const QByteArray& help) {
    QStringList examples;
    const QRegularExpression line(QStringLiteral("^  (adaptors .*?)(  .*)?$"));
    for (const QByteArray& text : help.split('\n')) {
        const auto match = line.match(QString::fromUtf8(text));
        if (match.hasMatch())
            examples << match.captured(1);
    }
    return examples;
}

TEST_F(HelpTest, EveryExampleWorks) {
    const QString folder = QFileInfo(QString::fromStdString(Tests::program().string())).path();
    int number = 0;
    for (const QString& command : commands + QStringList{""}) {
        const QByteArray help = run(QStringList{command, "--help"}.filter(QRegularExpression("."))).out;
        const QStringList examples = examplesIn(help);
        EXPECT_FALSE(examples.isEmpty()) << command.toStdString();
        for (const QString& example : examples) {
            const QString place = QString::number(++number);
            ASSERT_TRUE(QDir(m_folder.path()).mkdir(place));
            write(place + "/film.xml", sample("holiday-v27.xml"));
            if (command == "verify" || command == "diff") {
                ASSERT_EQ(run({"migrate", place + "/film.xml"}).exitCode, 0);
            }
            if (command == "restore")
                write(place + "/film.xml.bak", sample("holiday-v27.xml"));
            const Outcome outcome =
                Tests::runCommand("/bin/sh", {"-c", "PATH=\"$0:$PATH\"; " + example, folder}, path(place));
            const int expected = example.contains("--check") ? 19 : 0;
            EXPECT_EQ(outcome.exitCode, expected) << example.toStdString() << "\n"
                                                  << outcome.err.toStdString();
        }
    }
    EXPECT_GE(number, 10);
}

} // namespace
