// Names of files may be any bytes.

#include "FileNames.h"
#include "Terminal.h"
#include "support/ProgramTest.h"
#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

using FileNames::decode;
using FileNames::encode;
using nlohmann::json;
using Tests::archive;

namespace {

const std::vector<QByteArray> oddNames = {"caf\xE9",
                                          "\xFF\xFE",
                                          "\x80",
                                          "a\xC3",        // a character without its end
                                          "\xE2\x82",     // the same of three bytes
                                          "\xF0\x9F\x8E", // and of four
                                          "\xED\xA0\x80", // a surrogate
                                          "\xED\xB2\x80", // one of those that hold single bytes
                                          "\xC0\xAF",     // longer than it has to be
                                          "\xF5\x80\x80\x80",
                                          "\xEF\xBB\xBF"
                                          "bom",
                                          "\xEF\xBF\xBD", // what broken text is replaced by
                                          "caf\xC3\xA9 \xF0\x9F\x8E\xAC \xE9 %1",
                                          "new\nline\x1B[31m"};

TEST(FileNames, EveryByteComesBack) {
    for (const QByteArray& name : oddNames)
        EXPECT_EQ(encode(decode(name)).toHex(), name.toHex());
    QByteArray all;
    for (int first = 1; first < 256; ++first) {
        for (int second = 1; second < 256; ++second) {
            all += static_cast<char>(first);
            all += static_cast<char>(second);
        }
    }
    EXPECT_EQ(encode(decode(all)), all);
    EXPECT_EQ(encode(QString()), QByteArray());
}

TEST(FileNames, Utf8IsTextAndTheRestIsNot) {
    EXPECT_EQ(decode("caf\xC3\xA9 \xF0\x9F\x8E\xAC"), QString::fromUtf8("caf\xC3\xA9 \xF0\x9F\x8E\xAC"));
    EXPECT_EQ(decode("caf\xE9"), QString("caf") + QChar(0xDCE9));
    EXPECT_NE(decode("\xE9"), decode("\xE8"));
    EXPECT_EQ(encode(QString::fromUtf8("\xF0\x9F\x8E\xAC")), "\xF0\x9F\x8E\xAC");
}

TEST(FileNames, WhatCannotBePrintedIsEscaped) {
    EXPECT_EQ(Terminal::escaped(decode("caf\xC3\xA9.xml")), "caf\xC3\xA9.xml");
    EXPECT_EQ(Terminal::escaped(decode("caf\xE9.xml")), "caf\\xe9.xml");
    EXPECT_EQ(Terminal::escaped(decode("a\nb\x1B[31m\x7F")), "a\\nb\\x1b[31m\\x7f");
    EXPECT_EQ(FileNames::bytesOf(decode("caf\xE9.xml")), "caf\xE9.xml");
}

/// Runs the program through a shell, since Qt can't hand such names on.
class FileNamesTest : public Tests::ProgramTest {
protected:
    using Path = std::filesystem::path;

    /// Qt removes nothing that it can't name.
    void TearDown() override {
        for (const std::string& left : namesIn(folder()))
            std::filesystem::remove_all(folder() / left);
    }
    Path folder() const { return m_folder.path().toStdString(); }
    void writeBytes(const QByteArray& name, const QByteArray& bytes) const {
        std::ofstream file(folder() / name.toStdString(), std::ios::binary);
        ASSERT_TRUE(file << bytes.toStdString());
    }
    /// Names of files and folders, sorted.
    static std::vector<std::string> namesIn(const Path& place) {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(place))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
    Tests::Outcome runBytes(const QByteArray& line, const QByteArray& locale = "C.UTF-8") const {
        std::ofstream script(folder() / "script", std::ios::binary);
        script << "export LC_ALL=" << locale.toStdString() << "\nadaptors() { '" << Tests::program().string()
               << "' \"$@\"; }\n"
               << line.toStdString() << '\n';
        script.close();
        Tests::Outcome outcome = Tests::runCommand("/bin/sh", {"./script"}, m_folder.path());
        std::filesystem::remove(folder() / "script");
        return outcome;
    }
    static QByteArray quoted(const QByteArray& name) { return '\'' + name + '\''; }
};

TEST_F(FileNamesTest, InputsAndResultsMayHaveAnyName) {
    for (const QByteArray& locale : {QByteArray("C.UTF-8"), QByteArray("C")}) {
        for (const QByteArray& name : oddNames) {
            const std::string base = name.toStdString();
            writeBytes(name + ".xml", archive());
            const auto succeeds = [&](const QByteArray& line) {
                const Tests::Outcome outcome = runBytes(line, locale);
                EXPECT_EQ(outcome.exitCode, 0) << line.toStdString() << outcome.err.toStdString();
                return outcome;
            };
            const auto done = succeeds("adaptors migrate " + quoted(name + ".xml"));
            EXPECT_EQ(namesIn(folder()), (std::vector<std::string>{base + ".v77.json", base + ".xml"}));
            EXPECT_TRUE(QString::fromUtf8(done.err).toUtf8() == done.err);
            succeeds("adaptors info --json " + quoted(name + ".v77.json"));
            succeeds("adaptors verify " + quoted(name + ".xml"));
            succeeds("adaptors migrate " + quoted(name + ".xml") + " -o " + quoted(name));
            EXPECT_TRUE(std::filesystem::exists(folder() / base));
            writeBytes(name, archive());
            succeeds("adaptors migrate --in-place " + quoted(name));
            EXPECT_TRUE(std::filesystem::exists(folder() / (base + ".bak")));
            std::filesystem::remove(folder() / base);
            std::filesystem::remove(folder() / (base + ".bak"));
            succeeds("adaptors migrate " + quoted(name + ".xml") + " --bundle " + quoted(name));
            EXPECT_EQ(namesIn(folder() / base), std::vector<std::string>{base + ".v77.json"});
            succeeds("adaptors info " + quoted(name)); // the folder that holds one project
            succeeds("adaptors trace " + quoted(name + ".xml") + " --output-dir " + quoted("t" + name));
            EXPECT_TRUE(std::filesystem::is_directory(folder() / ("t" + base)));
            for (const std::string& left : namesIn(folder()))
                std::filesystem::remove_all(folder() / left);
        }
    }
}

TEST_F(FileNamesTest, SuchNamesAreShownEscaped) {
    writeBytes("caf\xE9.xml", archive());
    const auto done = runBytes("adaptors migrate --json 'caf\xE9.xml'");
    const json summary = json::parse(done.out.toStdString());
    EXPECT_EQ(summary["input"], "caf\xEF\xBF\xBD.xml"); // JSON holds no other bytes than UTF-8
    EXPECT_EQ(summary["output"], "caf\xEF\xBF\xBD.v77.json");
    const auto missing = runBytes("adaptors info 'm\xE8.xml'");
    EXPECT_EQ(missing.exitCode, 3);
    EXPECT_TRUE(missing.err.startsWith("adaptors: error: m\\xe8.xml: ")) << missing.err.toStdString();
    EXPECT_EQ(runBytes("adaptors migrate 'caf\xE9.xml'").exitCode, 16);
}

TEST_F(FileNamesTest, EmptyNamesAreWrongUse) {
    write("film.xml", archive());
    expectFailure({"migrate", ""}, 2, "empty");
    expectFailure({"info", ""}, 2, "empty");
    expectFailure({"verify", ""}, 2, "empty");
    expectFailure({"migrate", "film.xml", "-o", ""}, 2, "empty");
    expectFailure({"migrate", "film.xml", "--bundle", ""}, 2, "empty");
    expectFailure({"trace", "film.xml", "--output-dir", ""}, 2, "empty");
    expectFailure({"run", "V28_ClipLabelAdaptor", "film.xml", "-o", ""}, 2, "empty");
    EXPECT_EQ(files(), QStringList{"film.xml"});
}

TEST_F(FileNamesTest, TwoFilesWhereOneGoesAreWrongUse) {
    for (const char* command : {"migrate", "info", "verify"})
        expectFailure({command, "a.xml", "b.xml"}, 2, "b.xml");
}

TEST_F(FileNamesTest, ALongLogLineIsStillJson) {
    // The name of a side file that is not there; glog cuts the line in a character.
    for (int shift = 0; shift < 2; ++shift) {
        write("film.json", Tests::jsonProject(R"({"@meta":{"class_name":"Overlay::Item","object_id":2},)"
                                              R"("encodedText":"content_)" +
                                              QByteArray(shift, 'a') +
                                              QByteArray("\xC3\xA9").repeated(20000) + ".svg\"}"));
        const auto outcome = run({"migrate", "film.json", "--json", "--force"});
        ASSERT_EQ(outcome.exitCode, 22) << outcome.err.toStdString();
        const json log = json::parse(outcome.out.toStdString())["log"];
        ASSERT_FALSE(log.empty());
        EXPECT_GT(log[0]["text"].get<std::string>().size(), 29000u);
    }
}

} // namespace
