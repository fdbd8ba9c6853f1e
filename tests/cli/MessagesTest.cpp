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

std::string textFor(ErrorKind kind, const ErrorFacts& facts) {
    return messageFor(Error(kind, facts)).text;
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
    EXPECT_EQ(Messages::notOneProject(film, 2).code, 3);
    EXPECT_EQ(Messages::refusedByStrict(film).code, 14);
    EXPECT_EQ(Messages::folderNotMade(film).code, 15);
    EXPECT_EQ(Messages::outOfMemory(film).code, 18);
}

TEST(Messages, PlacesComeFirst) {
    const Message xml = messageFor(Error(
        ErrorKind::BrokenXml, {.file = film, .line = 3, .column = 7, .reason = "Opening tag mismatch."}));
    EXPECT_EQ(xml.text,
              "film.xml:3:7: Opening tag mismatch.; mend the text there, or restore the file from a backup");
    EXPECT_EQ(xml.line, 3);
    EXPECT_EQ(xml.column, 7);
    EXPECT_FALSE(xml.byte);
    const Message json = messageFor(Error(ErrorKind::BrokenJson, {.file = film, .byte = 12, .reason = "no"}));
    EXPECT_TRUE(json.text.starts_with("film.xml: broken JSON at byte 12: no; ")) << json.text;
    EXPECT_EQ(json.byte, 12);
    const Message step = messageFor(
        Error(ErrorKind::StepFailed, {.file = film, .step = "V7_PenEnableAdaptor", .reason = "no id"}));
    EXPECT_TRUE(step.text.starts_with("film.xml: V7_PenEnableAdaptor: no id; ")) << step.text;
    EXPECT_EQ(step.step, "V7_PenEnableAdaptor");
}

TEST(Messages, ADocumentThatWasCutOffIsRestored) {
    for (const ErrorKind kind : {ErrorKind::BrokenXml, ErrorKind::BrokenJson})
        EXPECT_EQ(textFor(kind, {.file = film, .byte = 9, .reason = "the file ends", .isCutOff = true}),
                  "film.xml: the file ends; restore the file from a backup");
}

TEST(Messages, AFileThatIsNoProjectIsNamed) {
    EXPECT_EQ(textFor(ErrorKind::UnknownForm, {.file = film, .reason = "a gzip archive; unpack it first"}),
              "film.xml: a project is XML or JSON; this is a gzip archive; unpack it first");
    EXPECT_EQ(textFor(ErrorKind::ForeignEncoding, {.file = film, .reason = "UTF-32"}),
              "film.xml: the text is in UTF-32, an encoding that projects do not use; convert it to UTF-8");
}

TEST(Messages, RemediesNameTheOption) {
    const auto has = [](const std::string& text, const char* part) {
        return text.find(part) != std::string::npos;
    };
    EXPECT_TRUE(has(textFor(ErrorKind::NoVersion, someFacts()), "--from N"));
    EXPECT_TRUE(has(textFor(ErrorKind::BadVersion, someFacts()), "--from N"));
    EXPECT_TRUE(has(textFor(ErrorKind::WrongForm, {.file = film, .version = 70, .reason = "JSON"}),
                    "schema version 70 can't be JSON: documents are XML up to version 62, and JSON from "
                    "version 59 on; give the right version with --from"));
    EXPECT_TRUE(has(textFor(ErrorKind::OutputExists, someFacts()), "--force"));
    EXPECT_TRUE(has(textFor(ErrorKind::UnreachableVersion, someFacts()),
                    "from 27 to 77, not to 26; give another one with --to"));
    EXPECT_TRUE(has(textFor(ErrorKind::UnknownStep, someFacts()),
                    "no step V28_ClipLabelAdaptor; \"adaptors steps\""));
    EXPECT_TRUE(has(textFor(ErrorKind::Unwritable, {.file = film, .obstacle = WriteObstacle::NoFolder}),
                    "make its folder"));
    EXPECT_TRUE(has(textFor(ErrorKind::Unwritable, {.file = film, .obstacle = WriteObstacle::IsFolder}),
                    "a folder has this name"));
    EXPECT_TRUE(has(textFor(ErrorKind::Unwritable, {.file = film, .obstacle = WriteObstacle::NotPermitted}),
                    "permissions"));
    EXPECT_TRUE(has(textFor(ErrorKind::Unwritable, {.file = film}), "free some space"));
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
    EXPECT_EQ(
        Messages::asText(Messages::notOneProject(QStringLiteral("old"), 2)),
        "adaptors: error: old: a project's folder holds one .xml or .json file, this one 2; name the file\n");
}

} // namespace
