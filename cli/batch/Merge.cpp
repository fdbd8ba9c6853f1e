#include "batch/Merge.h"

#include "Messages.h"
#include "batch/Settings.h"

namespace Batch {
namespace {

[[noreturn]] void refuse(const QByteArray& source, const std::string& reason) {
    throw Messages::Failure(Messages::otherWrongUse(source.toStdString() + ": " + reason, "batch"));
}

/// Of two rows of one file the one that is worth more stays.
int worthOf(const Row& row) {
    switch (row.state) {
    case FileState::Done:
    case FileState::Current:
        return 3;
    case FileState::Failed:
        return 2;
    case FileState::Skipped:
        return 1;
    default:
        return 0;
    }
}

} // namespace

void merge(const std::vector<QByteArray>& sources, State& target) {
    auto common = readSettings(target);
    Sqlite::Transaction changes = target.transaction();
    for (const QByteArray& path : sources) {
        State source(path, Sqlite::Database::Access::Read);
        auto settings = readSettings(source);
        if (!settings)
            refuse(path, "this state holds nothing");
        settings->shard = "1/1";
        if (common && *common != *settings)
            refuse(path, "this state belongs to a batch with other options (" + settings->asText() + ")");
        common = settings;
        if (!source.first(FileState::Working, 1).empty())
            refuse(path, "a run is at work on this state, or was killed; run it to its end first");
        source.forEach([&](const Row& row) {
            const auto known = target.row(row.path);
            if (known && worthOf(*known) >= worthOf(row))
                return;
            const QByteArray other = row.output.isEmpty() ? QByteArray() : target.pathWithOutput(row.output);
            if (!other.isEmpty() && other != row.path)
                refuse(path,
                       row.path.toStdString() + " and " + other.toStdString() + " have the same output");
            target.put(row);
        });
    }
    writeSettings(target, *common);
    changes.commit();
}

} // namespace Batch
