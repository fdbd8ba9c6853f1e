#include "Reader/SideFiles.h"
#include "Reader/StepLog.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <algorithm>
#include <csignal>
#include <string>
#include <vector>

#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using Reader::Existing;
using Reader::SideFiles;

namespace {

/// Collects log lines for as long as it exists.
class Log {
public:
    const std::vector<Reader::LogLine>& lines() const { return m_lines; }

private:
    std::vector<Reader::LogLine> m_lines;
    Reader::StepLog m_log{"", m_lines};
};

/// A folder that contains a bundle and, outside of the bundle, further files.
class SideFilesTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral("film/sub")));
        ASSERT_TRUE(QDir(m_folder.path()).mkpath(QStringLiteral("film2")));
        put("secret.svg", "<svg>secret</svg>");
        put("film2/secret.svg", "<svg>secret</svg>");
        put("film/content_1.svg", "<svg/>");
        put("film/sub/inner.svg", "<svg>inner</svg>");
    }
    QString path(const char* name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    QString bundle() const { return path("film"); }
    void put(const char* name, const QByteArray& bytes) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QByteArray get(const char* name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
    }
    QStringList files() const {
        return QDir(bundle()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                        QDir::Name);
    }
    /// The only line of a log, without the name at its start.
    static std::string reasonIn(const Log& log, const QString& name) {
        if (log.lines().size() != 1 || !log.lines().front().isError())
            return std::to_string(log.lines().size()) + " lines";
        const std::string start = "side file \"" + name.toStdString() + "\": ";
        const std::string& text = log.lines().front().text;
        return text.starts_with(start) ? text.substr(start.size()) : text;
    }
    void expectRefused(const QString& name, const std::string& reason) const {
        const Log log;
        EXPECT_EQ(SideFiles(bundle()).read(name), QByteArray()) << name.toStdString();
        EXPECT_EQ(reasonIn(log, name), reason) << name.toStdString();
    }
    void expectNotWritten(const SideFiles& sideFiles, const std::string& reason) const {
        const Log log;
        const QString name = QStringLiteral("content_1.svg");
        EXPECT_FALSE(sideFiles.write(name, "<svg>new</svg>"));
        const std::string found = reasonIn(log, name);
        EXPECT_EQ(found.substr(0, reason.size()), reason);
        EXPECT_NE(found.find("so the text stays in the document"), std::string::npos) << found;
    }

    QTemporaryDir m_folder;
};

constexpr const char* outside = "refused, since it lies outside the project's folder";
constexpr const char* noFile = "refused, since it is no regular file of a sensible size";

TEST_F(SideFilesTest, FilesOfTheFolderAreRead) {
    const Log log;
    const SideFiles sideFiles(bundle());
    EXPECT_EQ(sideFiles.read(QStringLiteral("content_1.svg")), "<svg/>");
    EXPECT_EQ(sideFiles.read(QStringLiteral("sub/inner.svg")), "<svg>inner</svg>");
    EXPECT_EQ(sideFiles.read(QStringLiteral("sub/../content_1.svg")), "<svg/>");
    ASSERT_TRUE(QFile::link(QStringLiteral("sub/inner.svg"), path("film/link.svg")));
    EXPECT_EQ(sideFiles.read(QStringLiteral("link.svg")), "<svg>inner</svg>");
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(SideFilesTest, TheFolderMayItselfBeNamedByALink) {
    ASSERT_TRUE(QFile::link(bundle(), path("link")));
    EXPECT_EQ(SideFiles(path("link")).read(QStringLiteral("content_1.svg")), "<svg/>");
}

TEST_F(SideFilesTest, NamesThatLeaveTheFolderAreRefused) {
    expectRefused(QStringLiteral("../secret.svg"), outside);
    expectRefused(QStringLiteral("sub/../../secret.svg"), outside);
    expectRefused(QStringLiteral("../film2/secret.svg"),
                  outside); // although its path starts with the folder's
    expectRefused(QStringLiteral("../nowhere.svg"), outside);
    expectRefused(QStringLiteral("../film/content_1.svg"), outside);
    expectRefused(QStringLiteral(".."), outside);
}

TEST_F(SideFilesTest, AbsoluteNamesAreRefused) {
    expectRefused(path("secret.svg"), outside);
    expectRefused(path("film/content_1.svg"), outside);
    expectRefused(path("nowhere.svg"), outside);
    expectRefused(QStringLiteral("/dev/zero"), outside);
    expectRefused(QStringLiteral(":/resource"), outside);
}

TEST_F(SideFilesTest, LinksOutOfTheFolderAreRefused) {
    ASSERT_TRUE(QFile::link(QStringLiteral("../secret.svg"), path("film/near.svg")));
    ASSERT_TRUE(QFile::link(path("secret.svg"), path("film/far.svg")));
    ASSERT_TRUE(QFile::link(QStringLiteral("near.svg"), path("film/twice.svg")));
    ASSERT_TRUE(QFile::link(m_folder.path(), path("film/folder")));
    ASSERT_TRUE(QFile::link(QStringLiteral("/dev/zero"), path("film/device.svg")));
    for (const char* name : {"near.svg", "far.svg", "twice.svg", "folder/secret.svg", "device.svg"})
        expectRefused(QString::fromLatin1(name), outside);
}

TEST_F(SideFilesTest, OnlyRegularFilesAreRead) {
    ASSERT_EQ(mkfifo(QFile::encodeName(path("film/pipe.svg")).constData(), 0600), 0);
    expectRefused(QStringLiteral("pipe.svg"), noFile);
    expectRefused(QStringLiteral("sub"), noFile);
    expectRefused(QStringLiteral(""), outside);
    expectRefused(QStringLiteral("."), outside);

    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const QByteArray name = QFile::encodeName(path("film/socket.svg"));
    ASSERT_LT(static_cast<std::size_t>(name.size()), sizeof address.sun_path);
    std::copy(name.begin(), name.end(), address.sun_path);
    const int number = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(number, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    expectRefused(QStringLiteral("socket.svg"), noFile);
    close(number);
}

TEST_F(SideFilesTest, ATooLargeFileIsRefused) {
    QFile file(path("film/huge.svg"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(file.resize((qint64(256) << 20) + 1)); // a sparse file: uses no disk space
    expectRefused(QStringLiteral("huge.svg"), noFile);
}

TEST_F(SideFilesTest, AMissingFileIsRefused) {
    expectRefused(QStringLiteral("content_2.svg"), "missing");
    expectRefused(QStringLiteral("content_1.svg/content_2.svg"), "missing");
    ASSERT_TRUE(QFile::link(QStringLiteral("nowhere.svg"), path("film/broken.svg")));
    expectRefused(QStringLiteral("broken.svg"), "missing");
    ASSERT_TRUE(QFile::link(QStringLiteral("round.svg"), path("film/round.svg")));
    expectRefused(QStringLiteral("round.svg"), noFile);
}

TEST_F(SideFilesTest, WithoutAFolderNothingIsReadOrWritten) {
    const Log log;
    const SideFiles none{QString()};
    EXPECT_EQ(none.read(QStringLiteral("content_1.svg")), QByteArray());
    EXPECT_EQ(reasonIn(log, QStringLiteral("content_1.svg")),
              "the project was not read from a folder that could hold it");
    EXPECT_FALSE(none.write(QStringLiteral("content_1.svg"), "<svg/>"));
}

TEST_F(SideFilesTest, FilesAreWrittenUnchanged) {
    const Log log;
    EXPECT_TRUE(SideFiles(bundle()).write(QStringLiteral("content_2.svg"), "<svg>\r\n\xc3\xa9</svg>"));
    EXPECT_EQ(get("film/content_2.svg"), "<svg>\r\n\xc3\xa9</svg>");
    EXPECT_TRUE(
        SideFiles(bundle(), {Existing::Replace}).write(QStringLiteral("content_1.svg"), "<svg>new</svg>"));
    EXPECT_EQ(get("film/content_1.svg"), "<svg>new</svg>");
    EXPECT_EQ(files(), QStringList({"content_1.svg", "content_2.svg", "sub"}));
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(SideFilesTest, AnExistingFileIsNotReplacedByDefault) {
    expectNotWritten(SideFiles(bundle()), "exists already");
    EXPECT_EQ(get("film/content_1.svg"), "<svg/>");
}

TEST_F(SideFilesTest, NothingIsWrittenThroughALinkOrIntoAPipe) {
    const auto expectRefusal = [this] {
        for (const Existing existing : {Existing::Refuse, Existing::Replace})
            expectNotWritten(SideFiles(bundle(), {existing}), "refused, since no regular file is there");
        ASSERT_TRUE(QFile::remove(path("film/content_1.svg")));
    };
    ASSERT_TRUE(QFile::remove(path("film/content_1.svg")));
    ASSERT_TRUE(QFile::link(QStringLiteral("../secret.svg"), path("film/content_1.svg")));
    expectRefusal();
    EXPECT_EQ(get("secret.svg"), "<svg>secret</svg>");
    ASSERT_TRUE(QFile::link(QStringLiteral("../nowhere.svg"), path("film/content_1.svg")));
    expectRefusal();
    EXPECT_FALSE(QFileInfo::exists(path("nowhere.svg")));
    ASSERT_EQ(mkfifo(QFile::encodeName(path("film/content_1.svg")).constData(), 0600), 0);
    expectRefusal();
    ASSERT_TRUE(QDir(bundle()).mkdir(QStringLiteral("content_1.svg")));
    expectNotWritten(SideFiles(bundle(), {Existing::Replace}), "refused, since no regular file is there");
}

TEST_F(SideFilesTest, AMissingFolderGetsNoFile) {
    expectNotWritten(SideFiles(path("nowhere")), "not written");
    EXPECT_FALSE(QFileInfo::exists(path("nowhere")));
    expectNotWritten(SideFiles(path("secret.svg")), "not written");
}

TEST_F(SideFilesTest, AnInterruptedWriteKeepsTheOldFile) {
    rlimit before = {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit little = {5, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &little), 0);
    expectNotWritten(SideFiles(bundle(), {Existing::Replace}), "not written");
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(get("film/content_1.svg"), "<svg/>");
    EXPECT_EQ(files(), QStringList({"content_1.svg", "sub"}));
}

} // namespace
