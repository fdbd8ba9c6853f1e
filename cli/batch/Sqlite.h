#pragma once

#include <QByteArray>
#include <QString>

#include <sqlite3.h>

#include <memory>
#include <optional>
#include <string>

/// A thin layer over the C library of SQLite: its handles are objects, and its errors Messages::Failure.
namespace Batch::Sqlite {

class Database;

/// A statement of SQL with its values. Columns and places count from 0.
///
/// Threads: one object belongs to one thread at a time.
class Statement {
public:
    Statement(const Database& database, const char* sql);

    /// Starts it anew with these values.
    template <class... Values>
    Statement& with(const Values&... values) {
        reset();
        int place = 0;
        (bind(place++, values), ...);
        return *this;
    }

    /// Goes to the next row; false at the end.
    bool next();
    /// Runs it to its end.
    void run();

    bool isNull(int column) const;
    qint64 integer(int column) const;
    double real(int column) const;
    std::string text(int column) const;
    std::optional<qint64> optionalInteger(int column) const;
    std::optional<double> optionalReal(int column) const;
    QByteArray name(int column) const;

private:
    void reset();
    void bind(int place, qint64 value);
    void bind(int place, int value) { bind(place, qint64(value)); }
    void bind(int place, bool value) { bind(place, qint64(value)); }
    void bind(int place, double value);
    void bind(int place, const std::string& value);
    void bind(int place, const char* value) { bind(place, std::string(value)); }
    /// Names of files are text where they are UTF-8, and blobs where they are not. An empty one is NULL.
    void bind(int place, const QByteArray& value);
    template <class Value>
    void bind(int place, const std::optional<Value>& value) {
        if (value)
            bind(place, *value);
        else
            check(sqlite3_bind_null(m_handle.get(), place + 1));
    }
    void check(int code) const;

    struct Finalizer {
        void operator()(sqlite3_stmt* handle) const { sqlite3_finalize(handle); }
    };
    const Database& m_database;
    std::unique_ptr<sqlite3_stmt, Finalizer> m_handle;
};

/// An open database.
///
/// Threads: one object belongs to one thread at a time.
class Database {
public:
    enum class Access { Read, Write };

    /// An empty path is a temporary database, which goes away with this object.
    Database(const QByteArray& path, Access access);

    void run(const char* sql) const;
    int changes() const { return sqlite3_changes(m_handle.get()); }

    /// Throws Messages::Failure for a code that is an error.
    void check(int code) const;

private:
    friend class Statement;

    struct Closer {
        void operator()(sqlite3* handle) const { sqlite3_close(handle); }
    };
    QByteArray m_path;
    std::unique_ptr<sqlite3, Closer> m_handle;
};

/// Changes that are made as a whole: rolled back unless commit() is called.
class Transaction {
public:
    explicit Transaction(const Database& database) : m_database(database) {
        m_database.run("BEGIN IMMEDIATE");
    }
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void commit();

private:
    const Database& m_database;
    bool m_isOpen = true;
};

} // namespace Batch::Sqlite
