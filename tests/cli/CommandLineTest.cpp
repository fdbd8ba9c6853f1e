// What the program says of a command line: names that were mistyped, options for every command, names of steps.

#include "Messages.h"
#include "Names.h"
#include "support/ProgramTest.h"

#include <gtest/gtest.h>

#include <vector>

using Tests::archive;
using Tests::migratedName;
using Tests::Outcome;
using Tests::ProgramTest;

namespace {

class CommandLineTest : public ProgramTest {
protected:
    /// The call fails with code 2 and exactly this text.
    void expectWrongUse(const QStringList& arguments, const QByteArray& text) const {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err.toStdString(), "adaptors: error: " + text.toStdString() + "\n");
    }
};

TEST_F(CommandLineTest, MistypedNamesAreSuggested) {
    expectWrongUse(
        {"migrat", "film.xml"},
        R"(there is no command "migrat"; did you mean "migrate"? "adaptors help" lists the commands)");
    expectWrongUse(
        {"VERIFI"},
        R"(there is no command "VERIFI"; did you mean "verify"? "adaptors help" lists the commands)");
    expectWrongUse({"fly"}, R"(there is no command "fly"; "adaptors help" lists the commands)");
    expectWrongUse(
        {"help", "trcae"},
        R"(there is no command "trcae"; did you mean "trace"? "adaptors help" lists the commands)");
    expectWrongUse(
        {"migrate", "film.xml", "--inplace"},
        R"("migrate" has no option --inplace; did you mean --in-place? "adaptors help migrate" lists the options)");
    expectWrongUse(
        {"info", "film.xml", "--jsno"},
        R"("info" has no option --jsno; did you mean --json? "adaptors help info" lists the options)");
    expectWrongUse(
        {"trace", "--output-dri=x", "film.xml", "--output-dir", "y"},
        R"("trace" has no option --output-dri; did you mean --output-dir? "adaptors help trace" lists the options)");
    expectWrongUse({"info", "--what"},
                   R"("info" has no option --what; "adaptors help info" lists the options)");
    expectWrongUse({"info", "film.xml", "-x"},
                   R"("info" has no option -x; "adaptors help info" lists the options)");
    expectWrongUse(
        {"--verbos"},
        R"(there is no option --verbos; did you mean --verbose? "adaptors help" lists the options)");
    expectWrongUse(
        {"run", "V28_ClipLable", "film.xml"},
        R"(there is no step "V28_ClipLable"; did you mean V28_ClipLabelAdaptor? "adaptors steps" lists them all)");
    expectWrongUse(
        {"run", "PortableLoader", "film.xml"},
        R"(there is no step "PortableLoader"; did you mean PortableLoadAdaptor? "adaptors steps" lists them all)");
    expectWrongUse({"run", "Nothing", "film.xml"},
                   R"(there is no step "Nothing"; "adaptors steps" lists them all)");
}

TEST_F(CommandLineTest, WhatIsWrongIsNamedWithARemedy) {
    write("a.xml", archive());
    write("b.xml", archive());
    expectWrongUse(
        {"migrate", "a.xml", "b.xml"},
        R"("migrate" takes FILE, and "b.xml" is one argument more; give one file a run, and put names with spaces in quotes)");
    expectWrongUse(
        {"run", "V28", "a.xml", "b.xml"},
        R"("run" takes STEP FILE, and "b.xml" is one argument more; give one file a run, and put names with spaces in quotes)");
    expectWrongUse({"steps", "a.xml"}, R"("steps" takes options only; leave "a.xml" out)");
    for (const QStringList& before : {QStringList{"migrate"}, QStringList{"info"}, QStringList{"verify"},
                                      QStringList{"run", "V28"}, QStringList{"trace", "--output-dir", "x"}})
        expectWrongUse(
            before + QStringList{""},
            "the name given for FILE is empty; give another one (or is a variable of your shell not set?)");
    for (const char* option :
         {"--output", "--bundle", "--packages-root", "--ai-models-root", "--downloadable-root"}) {
        expectWrongUse({"migrate", "a.xml", option, ""},
                       "the name given for " + QByteArray(option) +
                           " is empty; give another one (or is a variable of your shell not set?)");
        expectWrongUse({"migrate", option + QStringLiteral("="), "a.xml"},
                       QByteArray(option) +
                           R"( needs a value behind it; "adaptors help migrate" says which)");
    }
    expectWrongUse(
        {"run", "", "a.xml"},
        "the name given for STEP is empty; give another one (or is a variable of your shell not set?)");
    expectWrongUse({"migrate"}, R"("migrate" needs FILE; "adaptors help migrate" shows examples)");
    expectWrongUse({"run", "V28"}, R"("run" needs FILE; "adaptors help run" shows examples)");
    expectWrongUse({"trace", "a.xml"},
                   R"("trace" needs --output-dir DIR; "adaptors help trace" shows examples)");
    expectWrongUse({"migrate", "a.xml", "--to"},
                   R"(--to needs a value behind it; "adaptors help migrate" says which)");
    for (const char* value : {"x", "78", "-1", "1.5", "", "7 ", "99999999999"})
        expectWrongUse({"migrate", "a.xml", "--from", value},
                       "--from can't be \"" + QByteArray(value) + "\"; give a schema version from 0 to 77");
    expectWrongUse({"steps", "--from", "40", "--to", "20"},
                   R"(--to can't be "20"; give a schema version that is not below that of --from)");
    expectWrongUse({"steps", "--to", "78"}, R"(--to can't be "78"; give a schema version from 0 to 77)");
    expectWrongUse({"migrate", "a.xml", "-o", "c", "-o", "d"},
                   "--output is given more than once; give it once");
    expectWrongUse({"migrate", "a.xml", "-o", "c", "--in-place"},
                   "--output and --in-place exclude each other; give only one of them");
    expectWrongUse({"migrate", "a.xml", "--bundle", "c", "--in-place"},
                   "--in-place and --bundle exclude each other; give only one of them");
    expectWrongUse({"--color=purple", "steps"}, R"(--color can't be "purple"; give auto, always or never)");
    EXPECT_EQ(files(), (QStringList{"a.xml", "b.xml"}));
}

TEST_F(CommandLineTest, NamesOfCommandsAreNamesOfFilesToo) {
    write("info", archive());
    write("--json", archive());
    EXPECT_TRUE(run({"info", "info"}).out.startsWith("info\n"));
    EXPECT_TRUE(run({"info", "--", "--json"}).out.startsWith("--json\n"));
}

TEST_F(CommandLineTest, StepsAreFoundByABeginning) {
    EXPECT_EQ(Names::stepFor("V28_ClipLabelAdaptor"), "V28_ClipLabelAdaptor");
    EXPECT_EQ(Names::stepFor("Project::V28_ClipLabelAdaptor"), "V28_ClipLabelAdaptor");
    for (const char* name : {"V28", "V28_", "V28_Clip", "V28_ClipLabel", "Project::V28", "V28_ClipLabelAd"})
        EXPECT_EQ(Names::stepFor(name), "V28_ClipLabelAdaptor") << name;
    EXPECT_EQ(Names::stepFor("V7"), "V7_PenEnableAdaptor"); // and not one of version 77
    EXPECT_EQ(Names::stepFor("PortableLoad"), "PortableLoadAdaptor");
    const auto messageFor = [](const char* name) {
        try {
            Names::stepFor(name);
        } catch (const Messages::Failure& failure) {
            EXPECT_EQ(failure.message().code, 2);
            EXPECT_EQ(failure.message().step, name);
            return failure.message().kind + ": " + failure.message().text;
        }
        return std::string();
    };
    EXPECT_EQ(messageFor("V21"),
              R"(ambiguous-step: "V21" is the beginning of 2 steps: V21_KeepAspectAdaptor, )"
              "V21_PresetTypeAdaptor; give more of the name");
    EXPECT_EQ(messageFor("Portable"),
              R"(ambiguous-step: "Portable" is the beginning of 2 steps: PortableLoadAdaptor, )"
              "PortableSaveAdaptor; give more of the name");
    EXPECT_EQ(messageFor("v28_cliplabel"), R"(unknown-step: there is no step "v28_cliplabel"; did you mean )"
                                           R"(V28_ClipLabelAdaptor? "adaptors steps" lists them all)");
    EXPECT_EQ(messageFor("XmlToJson"),
              R"(unknown-step: there is no step "XmlToJson"; "adaptors steps" lists them all)");
    EXPECT_EQ(messageFor(""), R"(unknown-step: there is no step ""; "adaptors steps" lists them all)");
    EXPECT_EQ(messageFor("Project::"),
              R"(unknown-step: there is no step "Project::"; "adaptors steps" lists them all)");

    write("film.xml", archive());
    EXPECT_EQ(run({"run", "V28_Clip", "film.xml"}).out, run({"run", "V28_ClipLabelAdaptor", "film.xml"}).out);
    EXPECT_TRUE(run({"run", "V28", "film.xml"}).out.contains("<labels"));
    expectFailure({"run", "V55", "film.xml"}, 2,
                  "V55_AudioEffectsGroupIdAdaptor, V55_AudioEffectsIntensityAdaptor");
}

TEST(Names, TheNearestIsSuggested) {
    const std::vector<std::string> names = {"migrate", "steps", "run", "info", "verify", "trace"};
    EXPECT_EQ(Names::nearest("mgirate", names), "migrate"); // a swap is one mistake
    EXPECT_EQ(Names::nearest("step", names), "steps");
    EXPECT_EQ(Names::nearest("inof", names), "info");
    EXPECT_EQ(Names::nearest("rum", names), "run");
    EXPECT_EQ(Names::nearest("MIGRATE", names), "migrate");
    EXPECT_EQ(Names::nearest("convert", names), "");
    EXPECT_EQ(Names::nearest("x", names), "");
    EXPECT_EQ(Names::nearest("", names), "");
    EXPECT_EQ(Names::nearest(std::string(100000, 'm'), names), "");
    EXPECT_EQ(Names::nearest("migrate", {}), "");
}

TEST_F(CommandLineTest, QuietSaysNothingButErrors) {
    write("film.xml", archive());
    for (const QStringList& arguments :
         {QStringList{"migrate", "film.xml", "-q"}, QStringList{"-q", "migrate", "film.xml", "-o", "a.json"},
          QStringList{"migrate", "--quiet", "film.xml", "-o", "b.json"},
          QStringList{"run", "V28", "film.xml", "-o", "a.xml", "-q"}}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err, "");
    }
    EXPECT_TRUE(exists(migratedName("film")));
    // What a command is for stays.
    EXPECT_EQ(run({"verify", "film.xml", "-q"}).out, run({"verify", "film.xml"}).out);
    EXPECT_EQ(run({"-q", "info", "film.xml"}).out, run({"info", "film.xml"}).out);
    EXPECT_EQ(run({"info", "missing", "-q"}).err.toStdString(), run({"info", "missing"}).err.toStdString());
    // Errors of steps are errors, and warnings are not.
    write("odd.xml", archive({}, " schemaVersion='34'").replace("'Predeclarator'", "'Other'"));
    const QByteArray error = "odd.xml: error: V35_UserCollectionAdaptor: Can't adapt user collection";
    const Outcome outcome = run({"migrate", "odd.xml", "-q", "--to", "35"});
    EXPECT_TRUE(outcome.err.startsWith(error)) << outcome.err.toStdString();
    EXPECT_EQ(outcome.err.count('\n'), outcome.err.count("error: ")) << outcome.err.toStdString();
    EXPECT_TRUE(run({"run", "V35", "odd.xml", "-q", "-o", "c.xml"}).err.startsWith(error));
}

TEST_F(CommandLineTest, VerboseListsTheSteps) {
    write("film.xml", archive({}, " schemaVersion='60'"));
    for (const QStringList& arguments : {QStringList{"-v", "migrate", "film.xml"},
                                         QStringList{"migrate", "film.xml", "--verbose", "--force"}}) {
        const Outcome outcome = run(arguments);
        EXPECT_TRUE(outcome.err.contains("  steps:   13 run\n"
                                         "           V61_EffectProcessedRangeAdaptor\n"
                                         "           V62_CollectionItemPayloadAdaptor\n"))
            << outcome.err.toStdString();
        EXPECT_TRUE(outcome.err.contains("           V77_TrackLevelAdaptor\n"));
    }
    EXPECT_FALSE(run({"migrate", "film.xml", "--force"}).err.contains("V61_"));
    EXPECT_EQ(run({"run", "V28", "film.xml", "-v", "-o", "a.xml"}).err,
              "steps that ran:\n           V28_ClipLabelAdaptor\n");
}

TEST_F(CommandLineTest, WhatGetsLostOnItsWayOutIsAnError) {
    write("film.xml", archive());
    for (const char* command : {"info", "verify"}) {
        for (const char* form : {"--json", "--color=never"}) {
            const QStringList shell = {"-c",    "exec \"$@\" >/dev/full",
                                       "sh",    QString::fromStdString(Tests::program().string()),
                                       command, "film.xml",
                                       form};
            const Outcome outcome = Tests::runCommand("/bin/sh", shell, m_folder.path());
            EXPECT_EQ(outcome.exitCode, 15) << command << form;
            EXPECT_TRUE(outcome.err.contains("standard output: No space left on device; "))
                << outcome.err.toStdString();
            EXPECT_EQ(outcome.err.count('\n'), 1);
        }
    }
}

TEST_F(ProgramTest, FlagsTakeNoOtherValues) {
    expectFailure({"--version=x"}, 2, "--version");
    expectFailure({"info", "--json=maybe", "film.xml"}, 2, "--json");
}

} // namespace
