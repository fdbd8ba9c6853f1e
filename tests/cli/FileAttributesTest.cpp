// A file keeps what is its own: permissions, owner, times, extended attributes, links to it.

#include "Reader/Files.h"
#include "support/ProgramTest.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <ctime>
#include <vector>

using Reader::Existing;
using Reader::FileInPlace;
using Tests::archive;
using Tests::migratedName;
using Tests::Outcome;
using Tests::sample;

namespace {

/// An access control list that lets user 1234 read: version 2, then an entry each of owner, user, group, mask, others.
const QByteArray accessList = QByteArray::fromHex("02000000"
                                                  "01000600ffffffff"
                                                  "02000400d2040000"
                                                  "04000000ffffffff"
                                                  "10000400ffffffff"
                                                  "20000000ffffffff");

class FileAttributesTest : public Tests::ProgramTest {
protected:
    void SetUp() override { write("film.xml", archive()); }

    QByteArray bytesOf(const QString& name) const { return QFile::encodeName(path(name)); }
    struct stat statusOf(const QString& name) const {
        struct stat status = {};
        EXPECT_EQ(lstat(bytesOf(name).constData(), &status), 0) << name.toStdString();
        return status;
    }
    unsigned int permissionsOf(const QString& name) const { return statusOf(name).st_mode & 07777U; }
    void setPermissions(const QString& name, mode_t permissions) const {
        ASSERT_EQ(chmod(bytesOf(name).constData(), permissions), 0);
    }
    void migrate(const QStringList& arguments) const {
        const Outcome outcome = run(QStringList("migrate") + arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    }
    bool setAttribute(const QString& name, const char* attribute, const QByteArray& value) const {
        return setxattr(bytesOf(name).constData(), attribute, value.constData(),
                        static_cast<std::size_t>(value.size()), 0) == 0;
    }
    QByteArray attribute(const QString& name, const char* attribute) const {
        std::array<char, 256> value = {};
        const auto size = getxattr(bytesOf(name).constData(), attribute, value.data(), value.size());
        return size < 0 ? QByteArray("<none>") : QByteArray(value.data(), static_cast<int>(size));
    }
};

TEST_F(FileAttributesTest, ANewResultTakesThePermissionsOfTheInput) {
    for (const mode_t permissions : {0600U, 0640U, 0664U}) {
        setPermissions("film.xml", permissions);
        migrate({"film.xml", "--force"});
        EXPECT_EQ(permissionsOf(migratedName("film")), permissions);
        migrate({"film.xml", "-o", "named.json"});
        EXPECT_EQ(permissionsOf("named.json"), permissions);
        EXPECT_EQ(run({"run", "V28_ClipLabelAdaptor", "film.xml", "-o", "step.xml"}).exitCode, 0);
        EXPECT_EQ(permissionsOf("step.xml"), permissions);
        for (const char* name : {"named.json", "step.xml"})
            QFile::remove(path(name));
        QFile::remove(path(migratedName("film")));
    }
}

TEST_F(FileAttributesTest, StandardInputThatIsAFileHasPermissionsToo) {
    setPermissions("film.xml", 0600);
    EXPECT_EQ(runAfter("exec <film.xml; ", {"migrate", "-", "-o", "out.json"}).exitCode, 0);
    EXPECT_EQ(permissionsOf("out.json"), 0600U);
    EXPECT_EQ(runAfter("umask 027; cat film.xml | ", {"migrate", "-", "-o", "piped.json"}).exitCode, 0);
    EXPECT_EQ(permissionsOf("piped.json"), 0640U);
}

TEST_F(FileAttributesTest, APrivateProjectHasPrivateSideFilesAndTraces) {
    const QString bundle = QString::fromStdString((Tests::samplesFolder() / "holiday-v20-bundle").string());
    for (const QString& name : QDir(bundle).entryList(QDir::Files)) {
        QFile::copy(bundle + '/' + name, path(name));
        setPermissions(name, 0600);
    }
    QFile::remove(path("film.xml"));
    migrate({".", "--bundle", "new"});
    const QStringList made = QDir(path("new")).entryList(QDir::Files);
    EXPECT_EQ(made.size(), 5);
    for (const QString& name : made)
        EXPECT_EQ(permissionsOf("new/" + name), 0600U) << name.toStdString();
    EXPECT_EQ(run({"trace", ".", "--output-dir", "steps", "--to", "30"}).exitCode, 0);
    const QStringList documents = QDir(path("steps")).entryList(QDir::Files);
    EXPECT_GE(documents.size(), 1);
    for (const QString& name : documents)
        EXPECT_EQ(permissionsOf("steps/" + name), 0600U) << name.toStdString();
}

TEST_F(FileAttributesTest, AFileThatIsReplacedGetsNoMorePermissions) {
    write("out.json", "old");
    setPermissions("out.json", 0600);
    setPermissions("film.xml", 0644);
    migrate({"film.xml", "-o", "out.json", "--force"});
    EXPECT_EQ(permissionsOf("out.json"), 0600U);
    setPermissions("out.json", 0644);
    setPermissions("film.xml", 0640);
    migrate({"film.xml", "-o", "out.json", "--force"});
    EXPECT_EQ(permissionsOf("out.json"), 0640U);
}

TEST_F(FileAttributesTest, InPlaceResultAndBackupHavePermissionsAndTimes) {
    setPermissions("film.xml", 0640);
    const std::array<timespec, 2> times = {timespec{1000000001, 123456789}, timespec{1000000002, 987654321}};
    ASSERT_EQ(utimensat(AT_FDCWD, bytesOf("film.xml").constData(), times.data(), 0), 0);
    migrate({"film.xml", "--in-place"});
    EXPECT_EQ(permissionsOf("film.xml"), 0640U);
    EXPECT_EQ(permissionsOf("film.xml.bak"), 0640U);
    const struct stat backup = statusOf("film.xml.bak");
    EXPECT_EQ(backup.st_atim.tv_sec, times[0].tv_sec);
    EXPECT_EQ(backup.st_atim.tv_nsec, times[0].tv_nsec);
    EXPECT_EQ(backup.st_mtim.tv_sec, times[1].tv_sec);
    EXPECT_EQ(backup.st_mtim.tv_nsec, times[1].tv_nsec);
    EXPECT_GT(statusOf("film.xml").st_mtim.tv_sec, times[1].tv_sec);
    EXPECT_EQ(read("film.xml.bak"), archive());
}

TEST_F(FileAttributesTest, InPlaceResultAndBackupHaveTheOwner) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root may give files away";
    ASSERT_EQ(chown(bytesOf("film.xml").constData(), 1234, 2345), 0);
    setPermissions("film.xml", 0640);
    migrate({"film.xml", "--in-place"});
    for (const char* name : {"film.xml", "film.xml.bak"}) {
        EXPECT_EQ(statusOf(name).st_uid, 1234U) << name;
        EXPECT_EQ(statusOf(name).st_gid, 2345U) << name;
        EXPECT_EQ(permissionsOf(name), 0640U) << name;
    }
}

TEST_F(FileAttributesTest, AnotherGroupGetsNoRightsOfTheOwnersGroup) {
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can run the program as another user";
    // A user who may write the file, but is neither its owner nor in its group.
    setPermissions("film.xml", 0676);
    setPermissions(".", 0777);
    const Outcome outcome = runAfter("set -- setpriv --reuid=65534 --regid=65534 --clear-groups \"$@\"; ",
                                     {"migrate", "film.xml", "--in-place"});
    if (outcome.exitCode == 126 || outcome.exitCode == 127)
        GTEST_SKIP() << "the program can't be run as another user here";
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_EQ(statusOf("film.xml").st_uid, 65534U);
    EXPECT_EQ(permissionsOf("film.xml"), 0666U); // of the group what everyone has
}

TEST_F(FileAttributesTest, InPlaceResultAndBackupHaveExtendedAttributes) {
    if (!setAttribute("film.xml", "user.colour", "red"))
        GTEST_SKIP() << "the file system knows no extended attributes";
    const bool hasAccessList = setAttribute("film.xml", "system.posix_acl_access", accessList);
    const auto permissions = permissionsOf("film.xml");
    migrate({"film.xml", "--in-place"});
    for (const char* name : {"film.xml", "film.xml.bak"}) {
        EXPECT_EQ(attribute(name, "user.colour"), "red") << name;
        EXPECT_EQ(permissionsOf(name), permissions) << name;
        if (hasAccessList) {
            EXPECT_EQ(attribute(name, "system.posix_acl_access"), accessList) << name;
        }
    }
}

TEST_F(FileAttributesTest, ALinkStaysAndItsTargetIsReplaced) {
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("far"));
    write("far/film.xml", archive());
    QFile::remove(path("film.xml"));
    ASSERT_EQ(symlink("far/film.xml", bytesOf("film.xml").constData()), 0);
    const Outcome outcome = run({"migrate", "film.xml", "--in-place"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_TRUE(QFileInfo(path("film.xml")).isSymLink());
    EXPECT_EQ(QDir(path("far")).entryList(QDir::Files, QDir::Name),
              (QStringList{"film.xml", "film.xml.bak"}));
    EXPECT_TRUE(read("far/film.xml").startsWith('{'));
    EXPECT_EQ(read("far/film.xml.bak"), archive());
    EXPECT_EQ(files(), QStringList{"film.xml"});
    EXPECT_TRUE(outcome.err.contains("film.xml is a link, and stays one")) << outcome.err.toStdString();
    EXPECT_TRUE(outcome.err.contains("far/film.xml.bak")) << outcome.err.toStdString();
}

TEST_F(FileAttributesTest, OtherNamesOfTheFileKeepTheOldContentAndThatIsSaid) {
    ASSERT_EQ(link(bytesOf("film.xml").constData(), bytesOf("second.xml").constData()), 0);
    ASSERT_EQ(link(bytesOf("film.xml").constData(), bytesOf("third.xml").constData()), 0);
    const Outcome outcome = run({"migrate", "film.xml", "--in-place"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_TRUE(outcome.err.contains("film.xml has 2 other names (hard links), which keep the old content"))
        << outcome.err.toStdString();
    EXPECT_EQ(read("second.xml"), archive());
    EXPECT_EQ(read("third.xml"), archive());
    EXPECT_TRUE(read("film.xml").startsWith('{'));
    EXPECT_EQ(FileInPlace(path("second.xml")).replace("new").otherNames, 1);
    EXPECT_EQ(FileInPlace(path("film.xml")).replace("new").otherNames, 0);
    EXPECT_FALSE(run({"migrate", "third.xml", "--in-place"}).err.contains("other name"));
}

TEST_F(FileAttributesTest, NothingPrivateIsReadableMeanwhile) {
    const QByteArray text(3000000, 'x');
    write("film.xml", archive("<RootObject type='Note' objectId='6'><text type='String' value='" + text +
                              "'/></RootObject>")
                          .replace("<clips ", "<note type='ObjectRef' value='6'/><clips "));
    setPermissions("film.xml", 0600);
    int seen = 0;
    const auto watch = [&](const QString& options) {
        QProcess process;
        process.setWorkingDirectory(m_folder.path());
        process.start(QString::fromStdString(Tests::program().string()),
                      QStringList("migrate") + options.split(' '));
        do {
            for (const QFileInfo& file : QDir(m_folder.path()).entryInfoList(QDir::Files)) {
                struct stat status = {};
                if (lstat(QFile::encodeName(file.filePath()).constData(), &status) != 0)
                    continue;
                EXPECT_EQ(status.st_mode & 0077U, 0U) << file.fileName().toStdString();
                seen += file.fileName().endsWith(".tmp");
            }
        } while (!process.waitForFinished(0) && process.state() != QProcess::NotRunning);
        EXPECT_EQ(process.exitCode(), 0) << options.toStdString();
    };
    for (const char* options : {"film.xml", "film.xml -o out.json"})
        watch(options);
    // A temporary file lives for a moment only: on a busy machine it takes some runs to see one.
    for (int attempt = 0; attempt < 60 && seen == 0; ++attempt)
        watch("film.xml -o out.json --force");
    watch("film.xml --in-place");
    EXPECT_GE(seen, 1);
}

} // namespace
