// Files that are written while other processes change what is around them, and names that are no regular files.

#include "Reader/Files.h"

#include "Reader/Backups.h"
#include "Reader/Error.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <functional>
#include <stdexcept>

using Reader::ErrorKind;
using Reader::Existing;
using Reader::FileInPlace;
using Reader::PendingFile;
using Reader::WriteObstacle;

namespace {

class Files : public testing::Test {
protected:
    QString path(const QString& name) const { return m_folder.filePath(name); }
    void write(const QString& name, const QByteArray& bytes) const { Reader::writeFile(path(name), bytes); }
    QByteArray read(const QString& name) const { return Reader::readFile(path(name)); }
    void makeFolder(const QString& name) const { ASSERT_TRUE(QDir(m_folder.path()).mkpath(name)); }
    void makeLink(const QString& name, const QString& target) const {
        ASSERT_EQ(symlink(QFile::encodeName(target).constData(), QFile::encodeName(path(name)).constData()),
                  0);
    }
    void makeSocket(const QString& name) const {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        const QByteArray file = QFile::encodeName(path(name));
        ASSERT_LT(static_cast<std::size_t>(file.size()), sizeof(address.sun_path));
        std::memcpy(address.sun_path, file.constData(), static_cast<std::size_t>(file.size()));
        const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
        ASSERT_GE(descriptor, 0);
        ASSERT_EQ(bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
        close(descriptor);
    }
    QStringList names() const {
        return QDir(m_folder.path())
            .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System, QDir::Name);
    }

    QTemporaryDir m_folder;
};

/// The error that a call throws.
Reader::Error errorOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const Reader::Error& error) {
        return error;
    }
    throw std::logic_error("no error was thrown");
}

// What is in the way

TEST_F(Files, AFolderOfThatNameIsInTheWay) {
    makeFolder("film");
    const Reader::Error error = errorOf([&] { Reader::writeFile(path("film"), "new"); });
    EXPECT_EQ(error.kind(), ErrorKind::Unwritable);
    EXPECT_EQ(error.facts().obstacle, WriteObstacle::IsFolder);
    EXPECT_EQ(error.facts().file, path("film"));
}

TEST_F(Files, AFolderThatIsMissingIsInTheWay) {
    const Reader::Error error = errorOf([&] { Reader::writeFile(path("missing/film"), "new"); });
    EXPECT_EQ(error.kind(), ErrorKind::Unwritable);
    EXPECT_EQ(error.facts().obstacle, WriteObstacle::NoFolder);
}

TEST_F(Files, AFolderThatIsMadeMeanwhileIsInTheWay) {
    PendingFile file(path("film"), "new");
    makeFolder("film/inner"); // not empty: nothing can take its name
    const Reader::Error error = errorOf([&] { file.commit(); });
    EXPECT_EQ(error.kind(), ErrorKind::Unwritable);
    EXPECT_EQ(error.facts().obstacle, WriteObstacle::IsFolder);
}

TEST_F(Files, AFolderThatIsRemovedMeanwhileIsMissing) {
    for (const Existing existing : {Existing::Replace, Existing::Refuse}) {
        makeFolder("films");
        PendingFile file(path("films/film"), "new", {existing});
        ASSERT_TRUE(QDir(path("films")).removeRecursively());
        const Reader::Error error = errorOf([&] { file.commit(); });
        EXPECT_EQ(error.kind(), ErrorKind::Unwritable);
        EXPECT_EQ(error.facts().obstacle, WriteObstacle::NoFolder);
    }
}

TEST_F(Files, AFileThatIsMadeMeanwhileIsNotReplacedUnlessItMayBe) {
    PendingFile file(path("film"), "new", {Existing::Refuse});
    write("film", "of another process");
    EXPECT_EQ(errorOf([&] { file.commit(); }).kind(), ErrorKind::OutputExists);
    EXPECT_EQ(read("film"), "of another process");
    write("film", "new");
    EXPECT_EQ(read("film"), "new");
}

TEST_F(Files, APendingFileThatIsNotCommittedLeavesNothing) {
    write("film", "old");
    { const PendingFile file(path("film"), "new"); }
    EXPECT_EQ(read("film"), "old");
    EXPECT_EQ(names(), QStringList{"film"});
}

TEST_F(Files, ASocketTakesNoBytes) {
    makeSocket("socket");
    EXPECT_TRUE(Reader::isStream(path("socket")));
    const Reader::Error error = errorOf([&] { Reader::writeFile(path("socket"), "new"); });
    EXPECT_EQ(error.kind(), ErrorKind::Unwritable);
    EXPECT_EQ(error.facts().file, path("socket"));
    EXPECT_EQ(names(), QStringList{"socket"}); // no file takes its place
}

TEST_F(Files, WhatIsNoRegularFileIsRefusedWhereOnlyThoseMayBeWritten) {
    makeFolder("folder");
    makeSocket("socket");
    makeLink("link", path("target"));
    ASSERT_EQ(mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
    const auto reasonOf = [&](const QString& file) {
        const Reader::Error error =
            errorOf([&] { Reader::checkTarget(file, {.permissions = {}, .onlyRegularFiles = true}); });
        EXPECT_EQ(error.facts().obstacle, WriteObstacle::NotRegular);
        return error.facts().reason;
    };
    EXPECT_EQ(reasonOf(path("folder")), "a folder has this name");
    EXPECT_EQ(reasonOf(path("socket")), "a socket has this name");
    EXPECT_EQ(reasonOf(path("link")), "a link has this name");
    EXPECT_EQ(reasonOf(path("pipe")), "a pipe has this name");
    EXPECT_EQ(reasonOf("/dev/null"), "a device has this name");
}

// Links

TEST_F(Files, LinksAreFollowedToTheFileThatTheyLeadTo) {
    makeLink("first", path("second"));
    makeLink("second", path("film"));
    Reader::writeFile(path("first"), "new");
    EXPECT_EQ(read("film"), "new");
    EXPECT_TRUE(QFileInfo(path("first")).isSymLink());
    EXPECT_EQ(Reader::targetOfLinks(path("first")), path("film"));
}

TEST_F(Files, LinksThatLeadToEachOtherHaveAnEnd) {
    makeLink("first", path("second"));
    makeLink("second", path("first"));
    EXPECT_FALSE(Reader::isStream(path("first")));
    EXPECT_TRUE(QFileInfo(Reader::targetOfLinks(path("first"))).isSymLink());
}

TEST_F(Files, ALinkToADescriptorOfThisProcessIsAStream) {
    makeLink("link", "/dev/stdout");
    EXPECT_TRUE(Reader::isStream(path("link")));
    EXPECT_TRUE(Reader::isStandardOutput(path("link")));
    makeLink("errors", "/dev/stderr");
    EXPECT_TRUE(Reader::isStream(path("errors")));
    EXPECT_FALSE(Reader::isStandardOutput(path("errors")));
    write("1", "a file whose name is a number");
    EXPECT_FALSE(Reader::isStream(path("1")));
}

TEST_F(Files, OfWhichTheFolderIsMissingAreNotSynced) {
    EXPECT_NO_THROW(Reader::syncFolder(path("missing/film"))); // only the name could come late
}

TEST_F(Files, PermissionsAreThoseOfRegularFiles) {
    write("film", "content");
    ASSERT_EQ(chmod(QFile::encodeName(path("film")).constData(), 0640), 0);
    EXPECT_EQ(Reader::permissionsOf(path("film")), mode_t(0640));
    EXPECT_EQ(Reader::permissionsOf(path("missing")), std::nullopt);
    EXPECT_EQ(Reader::permissionsOf(m_folder.path()), std::nullopt);
}

// In place

TEST_F(Files, AFileInPlaceMustBeARegularFile) {
    EXPECT_EQ(errorOf([&] { FileInPlace file(path("missing")); }).kind(), ErrorKind::Unreadable);
    EXPECT_EQ(errorOf([&] { FileInPlace file(m_folder.path()); }).kind(), ErrorKind::NoRegularFile);
    EXPECT_EQ(errorOf([&] { FileInPlace file("/dev/null"); }).kind(), ErrorKind::NoRegularFile);
}

TEST_F(Files, AFileInPlaceBelongsToOneRunAtATime) {
    write("film", "old");
    {
        const FileInPlace first(path("film"));
        EXPECT_EQ(errorOf([&] { FileInPlace second(path("film")); }).kind(), ErrorKind::InUse);
    }
    EXPECT_EQ(FileInPlace(path("film")).bytes(), "old");
}

TEST_F(Files, AFileInPlaceThatIsRemovedMeanwhileIsNotWritten) {
    write("film", "old");
    FileInPlace file(path("film"));
    ASSERT_TRUE(QFile::remove(path("film")));
    EXPECT_EQ(errorOf([&] { file.replace("new"); }).kind(), ErrorKind::ChangedMeanwhile);
    EXPECT_EQ(names(), QStringList());
}

TEST_F(Files, AFileInPlaceKeepsEachBackup) {
    write("film", "first");
    const Reader::Replacement one = FileInPlace(path("film")).replace("second");
    EXPECT_EQ(one.backup, path("film.bak"));
    EXPECT_FALSE(one.isLinked);
    EXPECT_EQ(one.otherNames, 0);
    makeLink("link", path("film"));
    const Reader::Replacement other = FileInPlace(path("link")).replace("third");
    EXPECT_EQ(other.backup, path("film.bak2"));
    EXPECT_EQ(other.target, path("film"));
    EXPECT_TRUE(other.isLinked);
    EXPECT_EQ(read("film.bak"), "first");
    EXPECT_EQ(read("film.bak2"), "second");
    EXPECT_EQ(read("film"), "third");
}

// Backups

TEST_F(Files, BackupsAreThoseWithTheNameOfTheFile) {
    for (const char* name :
         {"film", "film.bak", "film.bak2", "film.bak10", "film.bak1", "film.bak02", "film.bak+2",
          "film.bak-2", "film.bak0", "film.bakx", "film.bak2x", "other.bak", "film.ba"})
        write(name, "content");
    makeFolder("film.bak3");
    makeLink("film.bak4", path("film"));
    QStringList found;
    for (const Reader::Backup& backup : Reader::backupsOf(path("film")))
        found.push_back(QFileInfo(backup.path).fileName());
    found.sort();
    EXPECT_EQ(found, (QStringList{"film.bak", "film.bak10", "film.bak2"}));
}

TEST_F(Files, ABackupOfAMissingFileTakesItsName) {
    write("film.bak", "old");
    const auto backups = Reader::backupsOf(path("film"));
    ASSERT_EQ(backups.size(), 1U);
    const Reader::Restored restored = Reader::restore(path("film"), backups[0]);
    EXPECT_EQ(restored.target, path("film"));
    EXPECT_EQ(restored.kept, "");
    EXPECT_EQ(names(), QStringList{"film"});
    EXPECT_EQ(read("film"), "old");
}

TEST_F(Files, ABackupIsExchangedWithTheFile) {
    write("film", "new");
    write("film.bak", "old");
    const Reader::Restored restored = Reader::restore(path("film"), Reader::backupsOf(path("film")).at(0));
    EXPECT_EQ(restored.kept, path("film.bak"));
    EXPECT_EQ(read("film"), "old");
    EXPECT_EQ(read("film.bak"), "new");
}

TEST_F(Files, ABackupDoesNotTakeTheNameOfALinkThatLeadsNowhere) {
    // The name that the link leads to is free, so the backup gets that.
    makeLink("film", path("target"));
    write("target.bak", "old");
    const Reader::Restored restored = Reader::restore(path("film"), Reader::backupsOf(path("film")).at(0));
    EXPECT_EQ(restored.target, path("target"));
    EXPECT_TRUE(QFileInfo(path("film")).isSymLink());
    EXPECT_EQ(read("target"), "old");
}

} // namespace
