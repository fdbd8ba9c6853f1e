// What the program says of each error: exit code, a word for programs, and a sentence with a remedy.

#include "Messages.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

using Messages::Message;
using Messages::messageFor;
using Reader::Error;
using Reader::ErrorFacts;
using Reader::ErrorKind;
using Reader::WriteObstacle;

namespace {

const QString film = QStringLiteral("film.xml");

std::vector<ErrorKind> allKinds() {
    std::vector<ErrorKind> kinds;
    for (int kind = 0; kind <= static_cast<int>(ErrorKind::ChangedMeanwhile); ++kind)
        kinds.push_back(static_cast<ErrorKind>(kind));
    return kinds;
}

ErrorFacts someFacts() {
    return {.file = film, .step = "V28_ClipLabelAdaptor", .version = 27, .target = 26, .reason = "reason"};
}

TEST(Messages, EachKindHasACodeAWordAndARemedy) {
    std::set<std::string> words;
    for (const ErrorKind kind : allKinds()) {
        const Message message = messageFor(Error(kind, someFacts()));
        EXPECT_GE(message.code, 2) << message.kind;
        EXPECT_LE(message.code, 16) << message.kind;
        EXPECT_EQ(message.kind, Reader::nameOf(kind));
        EXPECT_TRUE(words.insert(message.kind).second) << message.kind;
        EXPECT_EQ(message.kind.find_first_not_of("abcdefghijklmnopqrstuvwxyz-"), std::string::npos)
            << message.kind;
        EXPECT_TRUE(message.text.starts_with("film.xml: ")) << message.text;
        EXPECT_NE(message.text.find("; "), std::string::npos) << message.text;
    }
}

TEST(Messages, CodesAreThoseOfTheTable) {
    const std::vector<std::pair<ErrorKind, int>> codes = {
        {ErrorKind::UnknownStep, 2},       {ErrorKind::NoSuchForm, 2},
        {ErrorKind::Unreadable, 3},        {ErrorKind::TooLarge, 3},
        {ErrorKind::NoRegularFile, 3},     {ErrorKind::Empty, 4},
        {ErrorKind::UnknownForm, 5},       {ErrorKind::BrokenXml, 6},
        {ErrorKind::BrokenJson, 7},        {ErrorKind::NoArchive, 8},
        {ErrorKind::MissingRoot, 8},       {ErrorKind::RefusedXml, 9},
        {ErrorKind::ForeignEncoding, 9},   {ErrorKind::WrongEnvelope, 10},
        {ErrorKind::NoVersion, 11},        {ErrorKind::BadVersion, 11},
        {ErrorKind::TooNew, 12},           {ErrorKind::UnreachableVersion, 12},
        {ErrorKind::NoWayBack, 12},        {ErrorKind::StepFailed, 13},
        {ErrorKind::Unwritable, 15},       {ErrorKind::InUse, 15},
        {ErrorKind::ChangedMeanwhile, 15}, {ErrorKind::OutputExists, 16},
        {ErrorKind::WrongForm, 12},
    };
    EXPECT_EQ(codes.size(), allKinds().size());
    for (const auto& [kind, code] : codes)
        EXPECT_EQ(messageFor(Error(kind, {})).code, code) << Reader::nameOf(kind);
    EXPECT_EQ(Messages::unexpected("x").code, 1);
    EXPECT_EQ(Messages::inPlaceNeedsFile().code, 2);
    EXPECT_EQ(Messages::notOneProject(film, {}).code, 3);
    EXPECT_EQ(Messages::refusedByStrict(film).code, 14);
    EXPECT_EQ(Messages::folderNotMade(film).code, 15);
    EXPECT_EQ(Messages::outOfMemory(film, "allowed").code, 18);
}

struct Sentence {
    Message message;
    std::string text;
};

void expectTexts(const std::vector<Sentence>& sentences) {
    for (const auto& [message, text] : sentences)
        EXPECT_EQ(message.text, text);
}

Message of(ErrorKind kind, ErrorFacts facts = {}) {
    if (facts.file.isEmpty())
        facts.file = film;
    return messageFor(Error(kind, facts));
}

TEST(Messages, EveryKindHasItsSentence) {
    const std::vector<Sentence> sentences = {
        {of(ErrorKind::Unreadable, {.reason = "No such file or directory"}),
         "film.xml: No such file or directory; check its name and its permissions"},
        {of(ErrorKind::TooLarge),
         "film.xml: larger than 1 GiB, which no project is; name the project's own file"},
        {of(ErrorKind::NoRegularFile),
         "film.xml: is no regular file, and only those are replaced; give -o instead of --in-place"},
        {of(ErrorKind::Empty), "film.xml: the file is empty; restore it from a backup"},
        {of(ErrorKind::UnknownForm),
         "film.xml: neither XML nor JSON, and a project begins with '<' or '{'; name the project's own file"},
        {of(ErrorKind::BrokenXml, {.line = 3, .column = 7, .reason = "Opening and ending tag mismatch."}),
         "film.xml:3:7: Opening and ending tag mismatch; mend the text there, or restore the file from a "
         "backup"},
        {of(ErrorKind::RefusedXml, {.line = 1, .column = 1, .reason = "a document type declaration"}),
         "film.xml:1:1: a document type declaration, which no project has; name the project's own file"},
        {of(ErrorKind::UnknownForm, {.reason = "a gzip archive; unpack it first"}),
         "film.xml: a project is XML or JSON; this is a gzip archive; unpack it first"},
        {of(ErrorKind::BrokenXml, {.byte = 9, .reason = "the file ends", .isCutOff = true}),
         "film.xml: the file ends; restore the file from a backup"},
        {of(ErrorKind::BrokenJson, {.byte = 9, .reason = "the file ends", .isCutOff = true}),
         "film.xml: the file ends; restore the file from a backup"},
        {of(ErrorKind::ForeignEncoding, {.reason = "UTF-32"}),
         "film.xml: the text is in UTF-32, an encoding that projects do not use; convert it to UTF-8"},
        {of(ErrorKind::WrongForm, {.version = 70, .reason = "an XML archive"}),
         "film.xml: a document of schema version 70 can't be an XML archive: documents are XML up to version "
         "62, and "
         "JSON from version 59 on; give the right version with --from"},
        {of(ErrorKind::NoArchive, {.reason = "the document element is <Project>"}),
         "film.xml: the document element is <Project> (a project is one <Archive>); name the project's own "
         "file"},
        {of(ErrorKind::MissingRoot, {.reason = "<RootRef> names the object 44"}),
         "film.xml: <RootRef> names the object 44, and there is no such <RootObject>; restore the file from "
         "a backup"},
        {of(ErrorKind::BrokenJson, {.byte = 12, .reason = "unexpected end of input"}),
         "film.xml: broken JSON at byte 12: unexpected end of input; mend the text there, or restore the "
         "file from a "
         "backup"},
        {of(ErrorKind::BrokenJson, {.reason = "too deep"}),
         "film.xml: broken JSON: too deep; mend the text there, or restore the file from a backup"},
        {of(ErrorKind::WrongEnvelope, {.reason = "\"data\" is missing"}),
         R"(film.xml: "data" is missing (a project is an object with "version" "1.0" and its root object in "data"); )"
         "name the project's own file"},
        {of(ErrorKind::NoVersion), "film.xml: the document names no schema version; give it with --from N"},
        {of(ErrorKind::BadVersion, {.reason = "\"x\""}),
         "film.xml: the schema version \"x\" is no version number; give the right one with --from N"},
        {of(ErrorKind::TooNew, {.version = 78, .target = 77}),
         "film.xml: schema version 78 is too new: this program knows versions up to 77; use a newer version "
         "of "
         "adaptors"},
        {of(ErrorKind::UnreachableVersion, {.version = 27, .target = 26}),
         "film.xml: a document of schema version 27 can go to a version from 27 to 77, not to 26; give "
         "another one "
         "with --to"},
        {of(ErrorKind::NoWayBack, {.version = 60, .target = 62}),
         "film.xml: a JSON document can't become an archive again; ask for version 63 or above with --to"},
        {of(ErrorKind::UnknownStep, {.step = "V1_Nothing"}),
         "film.xml: there is no step V1_Nothing; \"adaptors steps\" lists them all"},
        {of(ErrorKind::NoSuchForm, {.step = "V72_TrackTypeAdaptor", .reason = "XML archive"}),
         "film.xml: V72_TrackTypeAdaptor has no form for this document (XML archive); \"adaptors steps\" "
         "lists "
         "the forms of each step"},
        {of(ErrorKind::StepFailed, {.step = "V7_PenEnableAdaptor", .reason = "no id"}),
         "film.xml: V7_PenEnableAdaptor: no id; \"adaptors verify\" and \"adaptors trace\" help to find what "
         "is wrong "
         "in the document"},
        {of(ErrorKind::Unwritable, {.reason = "Input/output error"}),
         "film.xml: Input/output error; give another output"},
        {of(ErrorKind::Unwritable, {.reason = "No space left on device", .obstacle = WriteObstacle::NoSpace}),
         "film.xml: No space left on device; free some space on its disk, or give another output"},
        {of(ErrorKind::Unwritable, {.reason = "is a link", .obstacle = WriteObstacle::NotRegular}),
         "film.xml: is a link; only a regular file is replaced here; remove what has the name, or give "
         "another output"},
        {of(ErrorKind::Unwritable,
            {.reason = "No such file or directory", .obstacle = WriteObstacle::NoFolder}),
         "film.xml: No such file or directory; make its folder first, or give another output"},
        {of(ErrorKind::Unwritable, {.reason = "Is a directory", .obstacle = WriteObstacle::IsFolder}),
         "film.xml: Is a directory; a folder has this name; give another output"},
        {of(ErrorKind::Unwritable, {.reason = "Permission denied", .obstacle = WriteObstacle::NotPermitted}),
         "film.xml: Permission denied; it is not yours to write; give another output, or have its "
         "permissions "
         "changed"},
        {of(ErrorKind::OutputExists),
         "film.xml: exists already; give --force to replace it, or another output"},
        {of(ErrorKind::InUse),
         "film.xml: another run is at work on it; wait until that is done and run this again"},
        {of(ErrorKind::ChangedMeanwhile),
         "film.xml: it was changed or removed while it was migrated, and was left alone; run this again"},
    };
    expectTexts(sentences);
    std::set<std::string> kinds;
    for (const auto& [message, text] : sentences)
        kinds.insert(message.kind);
    EXPECT_EQ(kinds.size(), allKinds().size());
}

TEST(Messages, EveryOtherFailureHasItsSentence) {
    expectTexts({
        {Messages::inPlaceNeedsFile(),
         "--in-place needs a file, not standard input; name the file, or give -o"},
        {Messages::notOneProject("old", {"a.xml", "b.json"}),
         "old: the folder of a project holds one .xml or .json file, and this one holds 2: a.xml, b.json; "
         "name the "
         "project's own file"},
        {Messages::notOneProject("old", {}), "old: the folder of a project holds one .xml or .json file, and "
                                             "this one holds none; name the project's own "
                                             "file"},
        {Messages::folderNotMade("a/b"), "a/b: can't make this folder; make the one above it first, check "
                                         "its permissions, or give another one"},
        {Messages::refusedByStrict(film), "film.xml: not written, because --strict allows neither errors nor "
                                          "losses; look at those listed here, or leave "
                                          "--strict out to write the result all the same"},
        {Messages::outOfMemory(film, "--max-memory allows, 64 MiB"),
         "film.xml: the document needs more memory than --max-memory allows, 64 MiB; nothing was written; "
         "check that "
         "it is a project, or give more with --max-memory"},
        {Messages::wouldLose(film), "film.xml: a migration would lose something or report an error, see the "
                                    "lines above; nothing was written"},
        {Messages::outputLost("No space left on device"),
         "standard output: No space left on device; free some space where it goes, or send it somewhere "
         "else"},
        {Messages::unexpected("bad cast"),
         "unexpected: bad cast; please report this with the file, if you can"},
        {Messages::noCommand(), "no command is given; \"adaptors help\" lists the commands"},
        {Messages::unknownCommand("mig", "migrate"),
         R"(there is no command "mig"; did you mean "migrate"? "adaptors help" lists the commands)"},
        {Messages::unknownCommand("fly", ""),
         R"(there is no command "fly"; "adaptors help" lists the commands)"},
        {Messages::unknownOption("--too", "migrate", "--to"),
         R"("migrate" has no option --too; did you mean --to? "adaptors help migrate" lists the options)"},
        {Messages::unknownOption("--too", "", ""),
         R"(there is no option --too; "adaptors help" lists the options)"},
        {Messages::oneArgumentTooMany("b", "run", "STEP FILE"),
         R"("run" takes STEP FILE, and "b" is one argument more; give one file a run, and put names with spaces in )"
         "quotes"},
        {Messages::oneArgumentTooMany("b", "steps", ""), R"("steps" takes options only; leave "b" out)"},
        {Messages::missingArgument("FILE", "info"),
         R"("info" needs FILE; "adaptors help info" shows examples)"},
        {Messages::missingValue("--to", "migrate"),
         R"(--to needs a value behind it; "adaptors help migrate" says which)"},
        {Messages::emptyValue("FILE"),
         "the name given for FILE is empty; give another one (or is a variable of your shell not set?)"},
        {Messages::badValue("--to", "x", "a number"), R"(--to can't be "x"; give a number)"},
        {Messages::givenTwice("--to"), "--to is given more than once; give it once"},
        {Messages::excludeEachOther("-a", "-b"), "-a and -b exclude each other; give only one of them"},
        {Messages::otherWrongUse("this is odd", "info"),
         R"(this is odd; "adaptors help info" shows examples)"},
        {Messages::unknownStep("V1", "V2_X"),
         R"(there is no step "V1"; did you mean V2_X? "adaptors steps" lists them all)"},
        {Messages::unknownStep("V1", ""), R"(there is no step "V1"; "adaptors steps" lists them all)"},
        {Messages::ambiguousStep("V", {"V1", "V2"}),
         R"("V" is the beginning of 2 steps: V1, V2; give more of the name)"},
    });
}

TEST(Messages, FactsAreKeptForPrograms) {
    const Message xml = of(ErrorKind::BrokenXml, {.line = 3, .column = 7, .reason = "x"});
    EXPECT_EQ(xml.line, 3);
    EXPECT_EQ(xml.column, 7);
    EXPECT_FALSE(xml.byte);
    EXPECT_EQ(xml.step, "");
    EXPECT_EQ(of(ErrorKind::BrokenJson, {.byte = 12}).byte, 12);
    EXPECT_EQ(of(ErrorKind::StepFailed, {.step = "V7_PenEnableAdaptor"}).step, "V7_PenEnableAdaptor");
    EXPECT_EQ(Messages::unknownStep("V1", "").step, "V1");
}

TEST(Messages, TheLibraryNamesNeitherOptionsNorCommands) {
    for (const ErrorKind kind : allKinds()) {
        const std::string text = Error(kind, someFacts()).what();
        EXPECT_TRUE(text.starts_with("film.xml: ")) << text;
        EXPECT_EQ(text.find("--"), std::string::npos) << text;
        EXPECT_EQ(text.find("adaptors "), std::string::npos) << text;
    }
}

TEST(Messages, AMessageIsALineForPeople) {
    const std::string two =
        Messages::asText(Messages::notOneProject(QStringLiteral("old"), {"a.xml", "b.json"}));
    EXPECT_EQ(
        two,
        "adaptors: error: old: the folder of a project holds one .xml or .json file, and this one holds 2: "
        "a.xml, b.json; name the project's own file\n");
    const Message message = Messages::unexpected("two\nlines\x1b[31m \xff");
    EXPECT_EQ(Messages::asText(message),
              "adaptors: error: unexpected: two\\nlines\\x1b[31m \\xff; please report this "
              "with the file, if you can\n");
    EXPECT_EQ(Messages::asText(Messages::givenTwice("--to"), Terminal::Colours(true)),
              "adaptors: \x1b[31merror\x1b[0m: --to is given more than once; give it once\n");
}

} // namespace
