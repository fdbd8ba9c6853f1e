// How much memory a document may take, here and in containers.

#include "SystemMemory.h"
#include "support/ProgramTest.h"
#include "support/Sanitizers.h"

#include <gtest/gtest.h>

#include <cstdint>

using Tests::archive;
using Tests::Outcome;

namespace {

constexpr std::uint64_t kib = 1024;

class SystemMemoryTest : public Tests::ProgramTest {
protected:
    void put(const QString& name, const QByteArray& bytes) const {
        ASSERT_TRUE(QDir(m_folder.path()).mkpath(QFileInfo(name).path()));
        write(name, bytes);
    }
    void putMachine(std::uint64_t kilobytes) const {
        put("proc/meminfo", "MemTotal:       " + QByteArray::number(static_cast<qulonglong>(kilobytes)) +
                                " kB\nMemFree:         1000 kB\n");
    }
    std::optional<SystemMemory> find() const { return SystemMemory::find(m_folder.path().toStdString()); }
    void expectMemory(std::uint64_t bytes, bool isContainers) const {
        const auto found = find();
        ASSERT_TRUE(found);
        EXPECT_EQ(found->bytes, bytes);
        EXPECT_EQ(found->isContainers, isContainers);
    }
};

TEST_F(SystemMemoryTest, NothingIsKnownOfASystemThatSaysNothing) {
    EXPECT_FALSE(find());
    put("proc/meminfo", "nonsense\nMemTotal: x\n");
    put("proc/self/cgroup", "\n:\nnonsense\n0\n4:memory\n");
    EXPECT_FALSE(find());
}

TEST_F(SystemMemoryTest, WithoutAGroupItIsTheMachines) {
    putMachine(8000);
    expectMemory(8000 * kib, false);
    put("proc/self/cgroup", "0::/app\n");
    expectMemory(8000 * kib, false);
    put("sys/fs/cgroup/app/memory.max", "max\n");
    expectMemory(8000 * kib, false);
    put("sys/fs/cgroup/app/memory.max", "99999999999\n"); // more than there is
    expectMemory(8000 * kib, false);
}

TEST_F(SystemMemoryTest, TheLeastLimitOfTheGroupsCounts) {
    putMachine(8000);
    put("proc/self/cgroup", "0::/user.slice/app/part\n");
    put("sys/fs/cgroup/user.slice/app/part/memory.max", "5000000\n");
    expectMemory(5000000, true);
    put("sys/fs/cgroup/user.slice/app/memory.max", "max\n");
    put("sys/fs/cgroup/user.slice/memory.max", "3000000\n");
    expectMemory(3000000, true);
    put("sys/fs/cgroup/user.slice/app/memory.max", "2000000\n");
    expectMemory(2000000, true);
    put("sys/fs/cgroup/other/memory.max", "1000\n");
    expectMemory(2000000, true);
}

TEST_F(SystemMemoryTest, AContainerSeesItsLimitAtTheTop) {
    putMachine(8000);
    put("sys/fs/cgroup/memory.max", "4000000\n");
    for (const char* group : {"0::/\n", "0::/docker/0123\n", "0::/../outside\n"}) {
        put("proc/self/cgroup", group);
        expectMemory(4000000, true);
    }
}

TEST_F(SystemMemoryTest, VersionOneHasLimitsToo) {
    putMachine(8000);
    put("proc/self/cgroup", "5:cpu:/\n4:memory:/a/b\n1:name=systemd:/\n0::/\n");
    put("sys/fs/cgroup/memory/a/b/memory.limit_in_bytes", "9223372036854771712\n"); // none
    expectMemory(8000 * kib, false);
    put("sys/fs/cgroup/memory/a/memory.limit_in_bytes", "6000000\n");
    expectMemory(6000000, true);
    put("proc/self/cgroup", "4:cpu,memory:/a/b\n");
    expectMemory(6000000, true);
    put("proc/self/cgroup", "4:cpu:/a/b\n");
    expectMemory(8000 * kib, false);
    put("proc/self/cgroup", "0::/a\n"); // both at once
    put("sys/fs/cgroup/unified/a/memory.max", "5000000\n");
    expectMemory(5000000, true);
}

class MemoryTest : public Tests::ProgramTest {
protected:
    void SetUp() override {
        if (Tests::isSanitized)
            GTEST_SKIP() << "a sanitizer's own memory would count";
        write("film.xml", archive());
        // About 130 bytes of memory for each of these bytes.
        write("large.xml", "<Archive schemaVersion='62'><RootRef type='ObjectRef' value='2'/>"
                           "<RootObject type='Timeline::Object' objectId='2'>" +
                               QByteArray("<a/>").repeated(500000) + "</RootObject></Archive>");
    }
};

TEST_F(MemoryTest, MaxMemoryBoundsEveryCommandThatReads) {
    const QList<QStringList> commands = {
        {"migrate", "large.xml"},
        {"info", "large.xml"},
        {"verify", "large.xml"},
        {"run", "V28_ClipLabelAdaptor", "large.xml", "-o", "out.xml"},
        {"trace", "large.xml", "--output-dir", "steps"},
    };
    for (const QStringList& command : commands)
        expectFailure(
            command + QStringList{"--max-memory", "64M"}, 18,
            "large.xml: the document needs more memory than --max-memory allows, 64 MiB; nothing was "
            "written; check that it is a project, or give more with --max-memory");
    EXPECT_EQ(files(), (QStringList{"film.xml", "large.xml"}));
    EXPECT_EQ(run({"migrate", "large.xml", "--max-memory", "2G"}).exitCode, 0);
}

TEST_F(MemoryTest, SizesHaveUnits) {
    for (const char* size :
         {"300000000", "256M", "256m", "256MB", "256MiB", "300000K", "300000KiB", "1G", "1GiB", "1T"})
        EXPECT_EQ(run({"info", "film.xml", "--max-memory", size}).exitCode, 0) << size;
    for (const char* size : {"1000", "1K", "1kib", "1M"})
        EXPECT_EQ(run({"info", "film.xml", "--max-memory", size}).exitCode, 18) << size;
    for (const char* size : {"0", "0K", "-5", "-5M", "+5", "x", "M", "3x", "12 34", "1,5G", "99999999999G"}) {
        expectFailure({"info", "film.xml", "--max-memory", size}, 2,
                      QByteArray("--max-memory can't be \"") + size + "\"; give a size such as 500M");
    }
    EXPECT_EQ(run({"info", "film.xml", "--max-memory", ""}).exitCode, 2);
    EXPECT_EQ(run({"info", "film.xml", "--max-memory=-5"}).exitCode, 2);
    EXPECT_EQ(run({"steps", "--max-memory", "1G"}).exitCode, 2);
}

TEST_F(MemoryTest, ALimitOfTheShellIsNamedAsWhatItIs) {
    const Outcome outcome = runAfter("ulimit -d 65536; ", {"info", "large.xml"});
    EXPECT_EQ(outcome.exitCode, 18);
    EXPECT_TRUE(outcome.err.contains("the limit of this process (ulimit -d), 64 MiB"))
        << outcome.err.toStdString();
}

TEST_F(MemoryTest, AnInputLargerThanTheBoundIsNotReadWhole) {
    QFile file(path("huge.xml"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) &&
                file.resize(qint64(900) << 20)); // takes no space on the disk
    expectFailure({"info", "huge.xml", "--max-memory", "100M"}, 18, "--max-memory allows, 100 MiB");
}

} // namespace
