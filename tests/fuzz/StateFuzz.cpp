// Any file is opened as the state of a batch, read and changed, or is refused with an error.

#include "Fuzz.h"
#include "Messages.h"
#include "batch/State.h"

#include <QFile>
#include <QTemporaryDir>

namespace {

/// A file in memory, since SQLite waits until a disk has written.
QString fileWith(const QByteArray& bytes) {
    static const QTemporaryDir folder(QStringLiteral("/dev/shm/adaptors-fuzz-XXXXXX"));
    const QString path = folder.filePath(QStringLiteral("state"));
    for (const char* suffix : {"-journal", "-wal", "-shm"})
        QFile::remove(path + QLatin1String(suffix));
    QFile file(path);
    Fuzz::check(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size(),
                "the file can't be written");
    return path;
}

void use(Batch::State& state) {
    state.setting("options");
    state.counts();
    state.groups();
    state.first(Batch::FileState::Waiting, 10);
    state.first(Batch::FileState::Working, 10);
    std::vector<Batch::Row> rows;
    state.forEach([&](const Batch::Row& row) { rows.push_back(row); });
    Batch::Sqlite::Transaction transaction = state.transaction();
    for (const Batch::Row& row : rows) {
        state.row(row.path);
        state.pathWithOutput(row.output);
        state.put(row.forgotten());
        state.wish(row.path, "wanted", row.path + ".json");
    }
    state.assignOutputs();
    state.set("options", "none");
    transaction.commit();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::initialize("StateFuzz");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray path = fileWith(Fuzz::bytesOf(data, size)).toUtf8();
    for (const auto access :
         {Batch::Sqlite::Database::Access::Read, Batch::Sqlite::Database::Access::Write}) {
        try {
            Batch::State state(path, access);
            use(state);
        } catch (const Messages::Failure&) {
            // refused
        }
    }
    return 0;
}
