#include "batch/Sqlite.h"

#include "Messages.h"

namespace Batch::Sqlite {
namespace {

constexpr int patience = 10000; ///< milliseconds to wait for another process that writes the database

bool isUtf8(const QByteArray& bytes) {
    return QString::fromUtf8(bytes).toUtf8() == bytes;
}

std::string remedyFor(int code) {
    switch (code & 0xFF) {
    case SQLITE_FULL:
        return "free some space and run this again";
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return "another program is at work on it; wait until that is done and run this again";
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
        return "give another one with --state, or restore it from a backup";
    default:
        return "check its name, its folder and their permissions, or give another one with --state";
    }
}

} // namespace

Statement::Statement(const Database& database, const char* sql) : m_database(database) {
    sqlite3_stmt* handle = nullptr;
    database.check(sqlite3_prepare_v2(database.m_handle.get(), sql, -1, &handle, nullptr));
    m_handle.reset(handle);
}

bool Statement::next() {
    const int code = sqlite3_step(m_handle.get());
    if (code == SQLITE_ROW)
        return true;
    sqlite3_reset(m_handle.get()); // releases its lock
    check(code);
    return false;
}

void Statement::run() {
    while (next()) {
    }
}

bool Statement::isNull(int column) const {
    return sqlite3_column_type(m_handle.get(), column) == SQLITE_NULL;
}

qint64 Statement::integer(int column) const {
    return sqlite3_column_int64(m_handle.get(), column);
}

double Statement::real(int column) const {
    return sqlite3_column_double(m_handle.get(), column);
}

std::string Statement::text(int column) const {
    return name(column).toStdString();
}

std::optional<qint64> Statement::optionalInteger(int column) const {
    return isNull(column) ? std::nullopt : std::optional(integer(column));
}

std::optional<double> Statement::optionalReal(int column) const {
    return isNull(column) ? std::nullopt : std::optional(real(column));
}

QByteArray Statement::name(int column) const {
    const auto* bytes = static_cast<const char*>(sqlite3_column_blob(m_handle.get(), column));
    return bytes ? QByteArray(bytes, sqlite3_column_bytes(m_handle.get(), column)) : QByteArray();
}

void Statement::reset() {
    sqlite3_reset(m_handle.get()); // an error of the last run was reported already
}

void Statement::bind(int place, qint64 value) {
    check(sqlite3_bind_int64(m_handle.get(), place + 1, value));
}

void Statement::bind(int place, double value) {
    check(sqlite3_bind_double(m_handle.get(), place + 1, value));
}

void Statement::bind(int place, const std::string& value) {
    check(sqlite3_bind_text(m_handle.get(), place + 1, value.data(), static_cast<int>(value.size()),
                            SQLITE_TRANSIENT));
}

void Statement::bind(int place, const QByteArray& value) {
    if (value.isEmpty())
        check(sqlite3_bind_null(m_handle.get(), place + 1));
    else if (isUtf8(value))
        check(
            sqlite3_bind_text(m_handle.get(), place + 1, value.constData(), value.size(), SQLITE_TRANSIENT));
    else
        check(
            sqlite3_bind_blob(m_handle.get(), place + 1, value.constData(), value.size(), SQLITE_TRANSIENT));
}

void Statement::check(int code) const {
    m_database.check(code);
}

Database::Database(const QByteArray& path, Access access) : m_path(path) {
    sqlite3* handle = nullptr;
    const int flags =
        access == Access::Read ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    // An absolute path, so that nothing in it is taken for a URI or for the name of a database in memory.
    const int code = sqlite3_open_v2(path.constData(), &handle, flags, nullptr);
    m_handle.reset(handle);
    check(code);
    sqlite3_extended_result_codes(handle, 1);
    sqlite3_busy_timeout(handle, patience);
}

void Database::run(const char* sql) const {
    check(sqlite3_exec(m_handle.get(), sql, nullptr, nullptr, nullptr));
}

void Database::check(int code) const {
    if (code == SQLITE_OK || code == SQLITE_ROW || code == SQLITE_DONE)
        return;
    const std::string reason = m_handle ? sqlite3_errmsg(m_handle.get()) : sqlite3_errstr(code);
    throw Messages::Failure(
        {Messages::Unwritable, "state",
         m_path.toStdString() + ": the state of a batch can't be used: " + reason + "; " + remedyFor(code)});
}

Transaction::~Transaction() {
    if (m_isOpen) {
        try {
            m_database.run("ROLLBACK");
        } catch (const Messages::Failure&) {
            // SQLite has rolled back by itself, as it does where the disk is full
        }
    }
}

void Transaction::commit() {
    m_database.run("COMMIT");
    m_isOpen = false;
}

} // namespace Batch::Sqlite
