#pragma once

#include "support/ProgramTest.h"

#include <QProcess>
#include <QString>
#include <QStringList>

#include <sys/types.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Tests {

/// Base class of tests of `adaptors batch`: a folder "in" with projects, and looks at what a batch made of it.
class BatchTest : public ProgramTest {
protected:
    BatchTest();
    ~BatchTest() override;

    /// Writes a file below the test's folder, with its folders and a time of change that is always the same.
    void put(const QByteArray& name, const QByteArray& bytes) const;
    /// A small project of version 62, and one of the newest version.
    static QByteArray oldProject(const QByteArray& clip = "Beach");
    static QByteArray newestProject();
    /// A project that takes much longer than the others.
    static QByteArray largeProject();

    /// Runs a batch and gives its exit code; what it prints is in m_outcome.
    int batch(const QStringList& arguments);

    /// What a folder holds below it: names, and contents of files. States are left out.
    std::map<std::string, std::string> tree(const QString& folder) const;
    /// Names of its files.
    std::vector<std::string> names(const QString& folder) const;

    /// A column of the rows of a state by the paths of files below "in".
    std::map<std::string, std::string> column(const QString& state, const std::string& name) const;
    /// The rows, without what differs from run to run.
    std::vector<std::string> rows(const QString& state) const;
    std::string query(const QString& state, const std::string& sql) const;

    Outcome m_outcome = {};
};

/// A run of the program that goes on beside the test. It is ended with this object.
class BackgroundRun {
public:
    BackgroundRun(const QStringList& arguments, const QString& folder,
                  const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment());
    ~BackgroundRun();
    BackgroundRun(const BackgroundRun&) = delete;
    BackgroundRun& operator=(const BackgroundRun&) = delete;

    void signal(int number) const;
    bool isRunning();
    /// Waits for its end and gives the exit code, -2 for an end by a signal.
    int wait();
    Outcome outcome();
    /// Waits until this was said on standard error; false where it ended before.
    bool hasSaid(const QByteArray& text);

    /// Its workers that are ready to take files.
    std::vector<pid_t> workers() const;
    /// Waits until there is one, and gives it; 0 where the run ended before.
    pid_t aWorker();

private:
    QProcess m_process;
    QByteArray m_said;
};

/// Waits until a condition holds; false after a minute.
bool waitUntil(const std::function<bool()>& condition);

/// Bytes that a process has read; 0 where that is not known.
long long bytesReadBy(pid_t process);

} // namespace Tests
