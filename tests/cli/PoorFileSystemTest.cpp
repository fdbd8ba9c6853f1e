// File systems that know neither links nor a renaming that replaces nothing.

#include "support/ProgramTest.h"
#include "support/Sanitizers.h"

#include <gtest/gtest.h>

#include <cerrno>

using Tests::archive;
using Tests::migratedName;
using Tests::Outcome;

namespace {

class PoorFileSystemTest : public Tests::ProgramTest {
protected:
    void SetUp() override {
        if (Tests::isSanitized)
            GTEST_SKIP() << "a sanitizer wants to be loaded first";
        write("film.xml", archive());
    }
    /// Each pair is a call and the error that it gives.
    Outcome runWithout(const QList<std::pair<const char*, int>>& calls, const QStringList& arguments) const {
        QString list;
        for (const auto& [call, error] : calls)
            list += QString(call) + '=' + QString::number(error) + ' ';
        return runAfter("export POOR_FILE_SYSTEM='" + list + "' LD_PRELOAD='" +
                            QString::fromStdString(Tests::poorFileSystem().string()) + "'; ",
                        arguments);
    }
};

TEST_F(PoorFileSystemTest, ANewFileIsWrittenAllTheSame) {
    for (const int rename : {EINVAL, ENOSYS, EPERM, EOPNOTSUPP}) {
        for (const int link : {0, EPERM, EOPNOTSUPP, ENOSYS}) {
            const QList<std::pair<const char*, int>> missing = {{"renameat2", rename}, {"link", link}};
            const Outcome first = runWithout(missing, {"migrate", "film.xml"});
            EXPECT_EQ(first.exitCode, 0) << first.err.toStdString();
            EXPECT_TRUE(read(migratedName("film")).startsWith('{'));
            EXPECT_EQ(files(), (QStringList{migratedName("film"), "film.xml"}));
            // And nothing is replaced.
            write(migratedName("film"), "precious");
            EXPECT_EQ(runWithout(missing, {"migrate", "film.xml"}).exitCode, 16);
            EXPECT_EQ(read(migratedName("film")), "precious");
            QFile::remove(path(migratedName("film")));
        }
    }
}

TEST_F(PoorFileSystemTest, InPlaceKeepsBackups) {
    const QList<std::pair<const char*, int>> missing = {
        {"renameat2", EINVAL}, {"link", EPERM}, {"fchown", EPERM}, {"fchmod", EPERM}};
    write("film.xml.bak", "earlier");
    const Outcome outcome = runWithout(missing, {"migrate", "film.xml", "--in-place"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err.toStdString();
    EXPECT_EQ(read("film.xml.bak"), "earlier");
    EXPECT_EQ(read("film.xml.bak2"), archive());
    EXPECT_TRUE(read("film.xml").startsWith('{'));
    EXPECT_EQ(files(), (QStringList{"film.xml", "film.xml.bak", "film.xml.bak2"}));
}

TEST_F(PoorFileSystemTest, WhereThereIsNoSafeWayThatIsSaid) {
    const Outcome outcome =
        runWithout({{"renameat2", EINVAL}, {"link", EPERM}, {"rename", EPERM}}, {"migrate", "film.xml"});
    EXPECT_EQ(outcome.exitCode, 15) << outcome.err.toStdString();
    EXPECT_TRUE(outcome.err.contains(": Operation not permitted; give another output"))
        << outcome.err.toStdString();
    EXPECT_FALSE(outcome.err.contains("space"));
    EXPECT_EQ(files(), QStringList{"film.xml"});
}

TEST_F(PoorFileSystemTest, WhereFilesCannotBeExchangedTheBackupIsCopied) {
    ASSERT_EQ(run({"migrate", "film.xml", "--in-place"}).exitCode, 0);
    const QByteArray migrated = read("film.xml");
    const Outcome exchanged = runWithout({{"renameat2", EINVAL}}, {"restore", "film.xml"});
    EXPECT_EQ(exchanged.exitCode, 0) << exchanged.err.toStdString();
    EXPECT_EQ(read("film.xml"), archive());
    EXPECT_EQ(read("film.xml.bak"), archive());
    EXPECT_EQ(read("film.xml.bak2"), migrated);
    // And where the file is gone.
    for (const int link : {0, EPERM}) {
        QFile::remove(path("film.xml"));
        QFile::remove(path("film.xml.bak2"));
        write("film.xml.bak", archive());
        const Outcome back = runWithout({{"renameat2", ENOSYS}, {"link", link}}, {"restore", "film.xml"});
        EXPECT_EQ(back.exitCode, 0) << back.err.toStdString();
        EXPECT_EQ(read("film.xml"), archive());
    }
}

} // namespace
