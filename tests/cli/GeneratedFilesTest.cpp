// Completions and manual pages, which the program makes of the texts of its help. `./dev installed` tries them in the
// shells and formatters themselves; here bash alone is needed.

#include "support/ProgramTest.h"

#include <QRegularExpression>
#include <QSet>

#include <gtest/gtest.h>

namespace {

class GeneratedFilesTest : public Tests::ProgramTest {
protected:
    QString textOf(const QStringList& arguments) const {
        const Tests::Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
        EXPECT_EQ(outcome.err, "");
        return QString::fromUtf8(outcome.out);
    }
    QString generated(const QString& name) const { return textOf({"--generate", name}); }

    QStringList commands() const {
        const QString help = textOf({"--help"});
        const qsizetype begin = help.indexOf("Commands:\n");
        return allOf("(?m)^  ([a-z]+) ", help.mid(int(begin), help.indexOf("\n\n", int(begin)) - int(begin)));
    }
    QStringList optionsInHelp(const QStringList& command) const {
        return allOf("(?m)^ {2,6}(?:-\\w, )?(--[a-z][a-z0-9-]*)", textOf(command + QStringList{"--help"}));
    }

    /// What bash offers for the last of these words.
    QSet<QString> offered(const QStringList& words) const {
        const QString script = QStringLiteral(
            "compopt() { COMPREPLY=(\"$2\"); }; complete() { :; }; . ./completion; COMP_WORDS=(\"$@\"); "
            "COMP_CWORD=$(($# - 1)); _adaptors; printf '%s\\n' \"${COMPREPLY[@]}\"");
        const Tests::Outcome outcome = Tests::runCommand(
            QStringLiteral("bash"), QStringList{"-uc", script, "bash"} + words, m_folder.path());
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
        EXPECT_EQ(outcome.err, "");
        const QStringList lines = QString::fromUtf8(outcome.out).split('\n', Qt::SkipEmptyParts);
        return QSet<QString>(lines.begin(), lines.end());
    }

    static QStringList allOf(const QString& pattern, const QString& text) {
        QStringList found;
        auto matches = QRegularExpression(pattern).globalMatch(text);
        while (matches.hasNext())
            found.append(matches.next().captured(1));
        return found;
    }
};

using Names = QSet<QString>;

TEST_F(GeneratedFilesTest, BashOffersWhatFits) {
    write("completion", generated("adaptors").toUtf8());
    const QStringList all = commands();
    ASSERT_GE(all.size(), 7);
    EXPECT_EQ(offered({"adaptors", ""}), Names(all.begin(), all.end()));
    EXPECT_EQ(offered({"adaptors", "mi"}), Names({"migrate"}));
    EXPECT_EQ(offered({"adaptors", "--json", "in"}), Names({"info"}));
    EXPECT_EQ(offered({"adaptors", "help", "ve"}), Names({"verify"}));
    for (const QString& command : all) {
        const QStringList options = optionsInHelp({command});
        Names got = offered({"adaptors", command, "--"});
        EXPECT_EQ(got, Names(options.begin(), options.end())) << command.toStdString();
    }
    EXPECT_EQ(offered({"adaptors", "run", "V28"}), Names({"V28_ClipLabelAdaptor"}));
    EXPECT_EQ(offered({"adaptors", "run", "--force", "V28"}), Names({"V28_ClipLabelAdaptor"}));
    EXPECT_EQ(offered({"adaptors", "info", "--color", ""}), Names({"auto", "always", "never"}));
    EXPECT_EQ(offered({"adaptors", "info", "--color", "=", "ne"}), Names({"never"}));
    EXPECT_EQ(offered({"adaptors", "verify", "--fail-on", "w"}), Names({"warning"}));
    // Names of files and folders are the shell's own work, which is asked for by these words.
    EXPECT_EQ(offered({"adaptors", "run", "V28_ClipLabelAdaptor", "fi"}), Names({"default"}));
    EXPECT_EQ(offered({"adaptors", "migrate", "-o", "other.xml", "fi"}), Names({"default"}));
    EXPECT_EQ(offered({"adaptors", "migrate", "--bundle", "fi"}), Names({"dirnames"}));
    // A number, and what is behind the last argument.
    EXPECT_EQ(offered({"adaptors", "migrate", "--from", "fi"}), Names());
    EXPECT_EQ(offered({"adaptors", "info", "other.xml", "fi"}), Names());
}

TEST_F(GeneratedFilesTest, ZshAndFishKnowAllCommandsAndOptions) {
    const QString zsh = generated("_adaptors");
    const QString fish = generated("adaptors.fish");
    EXPECT_TRUE(zsh.startsWith("#compdef adaptors\n"));
    for (const QString& command : commands()) {
        EXPECT_TRUE(zsh.contains("        '" + command + ':')) << command.toStdString();
        const qsizetype begin = zsh.indexOf("\n    " + command + ")\n");
        ASSERT_GE(begin, 0) << command.toStdString();
        const QString part = zsh.mid(int(begin), zsh.indexOf(";;", int(begin)) - int(begin));
        EXPECT_TRUE(part.contains("$everywhere"));
        const QString atCommand = "complete -c adaptors -n '__adaptors_at " + command + '\'';
        const QStringList everywhere = optionsInHelp({});
        for (const QString& option : optionsInHelp({command})) {
            if (everywhere.contains(option))
                continue;
            EXPECT_TRUE(part.contains(')' + option)) << (command + ' ' + option).toStdString();
            const QRegularExpression line("(?m)^" + QRegularExpression::escape(atCommand) + ".* -l " +
                                          option.mid(2) + "( |$)");
            EXPECT_TRUE(line.match(fish).hasMatch()) << (command + ' ' + option).toStdString();
        }
    }
    for (const QString& option : optionsInHelp({}))
        EXPECT_TRUE(fish.contains("\ncomplete -c adaptors" + QString(" -l ") + option.mid(2)) ||
                    fish.contains(QRegularExpression("\ncomplete -c adaptors -s \\w -l " + option.mid(2))))
            << option.toStdString();
    EXPECT_TRUE(zsh.contains("'V28_ClipLabelAdaptor:"));
    EXPECT_TRUE(fish.contains("V28_ClipLabelAdaptor"));
}

TEST_F(GeneratedFilesTest, ManualPagesHaveAllOfTheHelp) {
    const auto check = [this](const QString& page, const QStringList& command) {
        QString text = generated(page + ".1");
        EXPECT_TRUE(text.startsWith(".TH " + page.toUpper() + " 1 ")) << page.toStdString();
        for (const char* section :
             {"\n.SH NAME\n", "\n.SH SYNOPSIS\n", "\n.SH DESCRIPTION\n", "\n.SH SEE ALSO\n"})
            EXPECT_TRUE(text.contains(section)) << page.toStdString() << section;
        EXPECT_FALSE(text.contains(QRegularExpression("\\.S[HS] [^\n]*\n\\.PP\n"))) << page.toStdString();
        // As the formatter shows it: fonts and escapes leave, lines are joined.
        text.remove(QRegularExpression("\\\\f[BR]|\\\\&")).replace("\\-", "-").replace("\\(aq", "'");
        text.replace("\\(ha", "^").replace("\\(ti", "~").replace("\\(ga", "`").replace("\\e", "\\");
        const QStringList words =
            textOf(command + QStringList{"--help"}).split(QRegularExpression("\\s+"), Qt::SkipEmptyParts);
        for (const QString& word : words)
            EXPECT_TRUE(word.endsWith(':') || text.contains(word, Qt::CaseInsensitive))
                << page.toStdString() << " lacks " << word.toStdString();
    };
    check("adaptors", {});
    for (const QString& command : commands())
        check("adaptors-" + command, {command});
}

TEST_F(GeneratedFilesTest, OnlyTheseFilesAreMade) {
    for (const char* name : {"nothing", "adaptors-nothing.1", "adaptors.2", "../adaptors"}) {
        const Tests::Outcome outcome = run({"--generate", name});
        EXPECT_NE(outcome.exitCode, 0) << name;
        EXPECT_EQ(outcome.out, "") << name;
        EXPECT_NE(outcome.err, "") << name;
    }
}

} // namespace
