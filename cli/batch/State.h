#pragma once

#include "batch/Sqlite.h"

#include <QByteArray>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Batch {

enum class FileState {
    Waiting, ///< found, and nothing is done yet
    Working, ///< given to a worker, whose answer is not recorded yet
    Done,    ///< migrated; the exit code says whether the result is whole
    Failed,
    Skipped, ///< passed over: no project, or one that is not to be migrated
    Current, ///< has the version asked for already
};

std::string_view nameOf(FileState state);
FileState stateNamed(const std::string& name);

/// What is known of a file. Times are in nanoseconds since 1970.
struct Row {
    QByteArray path;       ///< absolute
    QByteArray name;       ///< below the folder that was searched; decides on the output and the shard
    QByteArray output;     ///< below the output folder; empty for none
    bool isBundle = false; ///< the project has side files
    FileState state = FileState::Waiting;
    std::optional<qint64> size;
    std::optional<qint64> time; ///< of the last change
    std::string sha256;         ///< empty where the file was not read
    std::optional<qint64> from; ///< schema versions
    std::optional<qint64> to;
    std::optional<qint64> code; ///< exit code that `migrate` has for it
    std::string kind;           ///< why it failed or was skipped, as a word
    std::string reason;         ///< the same as a sentence
    std::optional<qint64> losses;
    std::string
        repairs; ///< names of those that were made, separated by a blank, and "recovery" for a damaged file
    std::optional<double> seconds;
    std::optional<qint64> outputSize; ///< of the result as it was written
    std::optional<qint64> outputTime;
    QByteArray backup;          ///< with --in-place: the name that the backup gets
    bool isFresh = false;       ///< nothing had the output's name when the work on it began
    bool isReplaceable = false; ///< the output that exists is that of an earlier run
    std::string tool;           ///< version of the program

    /// A row of the same file about which nothing is known but where it is.
    Row forgotten() const;
};

/// What was done of a batch: a SQLite database with a row for each file. docs/batch.md describes it.
///
/// Threads: one object belongs to one thread at a time.
class State {
public:
    static constexpr int version = 1; ///< of the schema; goes up with each change

    /// An empty path is a state that goes away with this object. Throws Messages::Failure, as all functions do.
    State(const QByteArray& path, Sqlite::Database::Access access);

    Sqlite::Transaction transaction() const { return Sqlite::Transaction(m_database); }

    /// Settings of the batch, such as the options that results depend on.
    std::optional<std::string> setting(const std::string& key);
    void set(const std::string& key, const std::string& value);

    std::optional<Row> row(const QByteArray& path);
    /// The path of the row that has this output; empty for none.
    QByteArray pathWithOutput(const QByteArray& output);
    void put(const Row& row);

    /// The first rows of a state in the order of their paths.
    std::vector<Row> first(FileState state, int limit);
    /// All rows in the order of their paths.
    void forEach(const std::function<void(const Row&)>& take);

    using Counts = std::map<FileState, qint64>;
    Counts counts();

    /// Rows of the same state with the same reason.
    struct Group {
        FileState state;
        std::string kind;
        qint64 count;
        std::vector<Row> examples; ///< the first three
    };
    /// Of all rows that have a kind, the most frequent first.
    std::vector<Group> groups();

    /// Notes that a file is to have an output: `wanted`, or where another file wants or has that, `otherwise`.
    void wish(const QByteArray& path, const QByteArray& wanted, const QByteArray& otherwise);
    /// Gives the rows of the files for which wish() was called their outputs. No two files have the same. Files without
    /// a row count as well, so that all shards choose the same outputs.
    void assignOutputs();

private:
    Sqlite::Database m_database;
    Sqlite::Statement m_setting;
    Sqlite::Statement m_row;
    Sqlite::Statement m_output;
    Sqlite::Statement m_put;
    Sqlite::Statement m_wish;
};

} // namespace Batch
