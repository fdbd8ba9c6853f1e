#include "batch/State.h"

#include "Messages.h"

#include <array>
#include <utility>

namespace Batch {
namespace {

using Sqlite::Database;
using Sqlite::Statement;

constexpr int applicationId = 0x41444250; ///< marks the database as a state of this program

constexpr std::array<std::pair<FileState, const char*>, 6> stateNames = {{
    {FileState::Waiting, "waiting"},
    {FileState::Working, "working"},
    {FileState::Done, "done"},
    {FileState::Failed, "failed"},
    {FileState::Skipped, "skipped"},
    {FileState::Current, "current"},
}};

// The columns are in one order everywhere: in the table, in rowIn() and in put().
constexpr const char* tables = R"(
CREATE TABLE settings (key TEXT PRIMARY KEY NOT NULL, value TEXT NOT NULL);
CREATE TABLE files (
    path PRIMARY KEY NOT NULL,
    name NOT NULL,
    output,
    bundle INTEGER NOT NULL,
    state TEXT NOT NULL CHECK (state IN ('waiting', 'working', 'done', 'failed', 'skipped', 'current')),
    size INTEGER,
    time INTEGER,
    sha256 TEXT,
    from_version INTEGER,
    to_version INTEGER,
    code INTEGER,
    kind TEXT,
    reason TEXT,
    losses INTEGER,
    repairs TEXT,
    seconds REAL,
    output_size INTEGER,
    output_time INTEGER,
    backup,
    fresh INTEGER NOT NULL,
    replaceable INTEGER NOT NULL,
    tool TEXT
);
CREATE UNIQUE INDEX files_by_output ON files (output) WHERE output IS NOT NULL;
CREATE INDEX files_in_work ON files (state, path) WHERE state IN ('waiting', 'working');
)";

Row rowIn(const Statement& statement) {
    int column = 0;
    Row row;
    row.path = statement.name(column++);
    row.name = statement.name(column++);
    row.output = statement.name(column++);
    row.isBundle = statement.integer(column++) != 0;
    row.state = stateNamed(statement.text(column++));
    row.size = statement.optionalInteger(column++);
    row.time = statement.optionalInteger(column++);
    row.sha256 = statement.text(column++);
    row.from = statement.optionalInteger(column++);
    row.to = statement.optionalInteger(column++);
    row.code = statement.optionalInteger(column++);
    row.kind = statement.text(column++);
    row.reason = statement.text(column++);
    row.losses = statement.optionalInteger(column++);
    row.repairs = statement.text(column++);
    row.seconds = statement.optionalReal(column++);
    row.outputSize = statement.optionalInteger(column++);
    row.outputTime = statement.optionalInteger(column++);
    row.backup = statement.name(column++);
    row.isFresh = statement.integer(column++) != 0;
    row.isReplaceable = statement.integer(column++) != 0;
    row.tool = statement.text(column++);
    return row;
}

std::optional<std::string> orNull(const std::string& text) {
    return text.empty() ? std::nullopt : std::optional(text);
}

/// The database with its tables, which are made where it is new.
Database openedAt(const QByteArray& path, Database::Access access) {
    Database database(path, access);
    const auto number = [&](const char* pragma) {
        Statement statement(database, pragma);
        return statement.next() ? statement.integer(0) : 0;
    };
    const auto refuse = [&](const std::string& reason) {
        throw Messages::Failure({Messages::WrongUse, "wrong-use", path.toStdString() + ": " + reason});
    };
    if (number("PRAGMA schema_version") == 0 && access == Database::Access::Write) {
        Sqlite::Transaction transaction(database);
        database.run(tables);
        database.run(("PRAGMA application_id = " + std::to_string(applicationId)).c_str());
        database.run(("PRAGMA user_version = " + std::to_string(State::version)).c_str());
        transaction.commit();
    }
    if (number("PRAGMA application_id") != applicationId)
        refuse("this is no state of a batch; give another one");
    if (number("PRAGMA user_version") != State::version)
        refuse("this state has version " + std::to_string(number("PRAGMA user_version")) +
               ", and this program knows version " + std::to_string(State::version) +
               "; use the program that wrote it, or give another state");
    database.run("CREATE TEMP TABLE wishes (path PRIMARY KEY NOT NULL, wanted, otherwise, output)");
    return database;
}

} // namespace

std::string_view nameOf(FileState state) {
    for (const auto& [known, text] : stateNames) {
        if (known == state)
            return text;
    }
    return "";
}

FileState stateNamed(const std::string& name) {
    for (const auto& [state, text] : stateNames) {
        if (name == text)
            return state;
    }
    return FileState::Waiting;
}

Row Row::forgotten() const {
    Row row;
    row.path = path;
    row.name = name;
    row.output = output;
    row.isBundle = isBundle;
    row.size = size;
    row.time = time;
    return row;
}

State::State(const QByteArray& path, Database::Access access)
    : m_database(openedAt(path, access)), m_setting(m_database, "SELECT value FROM settings WHERE key = ?"),
      m_row(m_database, "SELECT * FROM files WHERE path = ?"),
      m_output(m_database, "SELECT path FROM files WHERE output = ?"),
      m_put(m_database,
            "INSERT OR REPLACE INTO files VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
            "?, ?, ?, ?)"),
      m_wish(m_database, "INSERT OR IGNORE INTO wishes VALUES (?, ?, ?, NULL)") {}

std::optional<std::string> State::setting(const std::string& key) {
    if (!m_setting.with(key).next())
        return std::nullopt;
    std::string value = m_setting.text(0);
    m_setting.run();
    return value;
}

void State::set(const std::string& key, const std::string& value) {
    Statement(m_database, "INSERT OR REPLACE INTO settings VALUES (?, ?)").with(key, value).run();
}

std::optional<Row> State::row(const QByteArray& path) {
    if (!m_row.with(path).next())
        return std::nullopt;
    Row found = rowIn(m_row);
    m_row.run();
    return found;
}

QByteArray State::pathWithOutput(const QByteArray& output) {
    QByteArray path;
    for (m_output.with(output); m_output.next();)
        path = m_output.name(0);
    return path;
}

void State::put(const Row& row) {
    m_put
        .with(row.path, row.name, row.output, row.isBundle, std::string(nameOf(row.state)), row.size,
              row.time, orNull(row.sha256), row.from, row.to, row.code, orNull(row.kind), orNull(row.reason),
              row.losses, orNull(row.repairs), row.seconds, row.outputSize, row.outputTime, row.backup,
              row.isFresh, row.isReplaceable, orNull(row.tool))
        .run();
}

std::vector<Row> State::first(FileState state, int limit) {
    // The states of the index are named, so that SQLite uses it.
    Statement statement(m_database,
                        "SELECT * FROM files WHERE state = ?1 AND state IN ('waiting', 'working') "
                        "ORDER BY path LIMIT ?2");
    std::vector<Row> rows;
    for (statement.with(std::string(nameOf(state)), limit); statement.next();)
        rows.push_back(rowIn(statement));
    return rows;
}

void State::forEach(const std::function<void(const Row&)>& take) {
    Statement statement(m_database, "SELECT * FROM files ORDER BY path");
    while (statement.next())
        take(rowIn(statement));
}

State::Counts State::counts() {
    Counts counts;
    Statement statement(m_database, "SELECT state, count(*) FROM files GROUP BY state");
    while (statement.next())
        counts[stateNamed(statement.text(0))] = statement.integer(1);
    return counts;
}

std::vector<State::Group> State::groups() {
    std::vector<Group> groups;
    Statement kinds(m_database, "SELECT state, kind, count(*) FROM files WHERE kind IS NOT NULL "
                                "GROUP BY state, kind ORDER BY count(*) DESC, kind");
    Statement examples(m_database, "SELECT * FROM files WHERE state = ? AND kind = ? ORDER BY path LIMIT 3");
    while (kinds.next()) {
        Group group{stateNamed(kinds.text(0)), kinds.text(1), kinds.integer(2), {}};
        for (examples.with(std::string(nameOf(group.state)), group.kind); examples.next();)
            group.examples.push_back(rowIn(examples));
        groups.push_back(std::move(group));
    }
    return groups;
}

void State::wish(const QByteArray& path, const QByteArray& wanted, const QByteArray& otherwise) {
    m_wish.with(path, wanted, otherwise).run();
}

void State::assignOutputs() {
    m_database.run(R"(
        CREATE INDEX temp.wishes_by_wanted ON wishes (wanted);
        UPDATE wishes SET output = wanted
            WHERE (SELECT count(*) FROM wishes AS others WHERE others.wanted = wishes.wanted) = 1
                AND NOT EXISTS (SELECT 1 FROM files WHERE files.output = wishes.wanted);
        CREATE INDEX temp.wishes_by_output ON wishes (output);
    )");
    Statement open(m_database, "SELECT path, otherwise FROM wishes WHERE output IS NULL ORDER BY path");
    Statement isWished(m_database, "SELECT 1 FROM wishes WHERE output = ?");
    Statement choose(m_database, "UPDATE wishes SET output = ? WHERE path = ?");
    std::vector<std::pair<QByteArray, QByteArray>> others; // not changed while they are read
    while (open.next())
        others.emplace_back(open.name(0), open.name(1));
    for (const auto& [path, otherwise] : others) {
        QByteArray output = otherwise;
        for (int number = 2; !pathWithOutput(output).isEmpty() || isWished.with(output).next(); ++number)
            output = otherwise + '~' + QByteArray::number(number);
        choose.with(output, path).run();
    }
    m_database.run(R"(
        UPDATE files SET output = wishes.output FROM wishes WHERE files.path = wishes.path;
        DROP INDEX temp.wishes_by_output;
        DROP INDEX temp.wishes_by_wanted;
        DELETE FROM wishes;
    )");
}

} // namespace Batch
