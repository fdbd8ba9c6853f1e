#include "support/Batch.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

#include <sqlite3.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <system_error>

namespace Tests {
namespace {

/// The rows of a query, each with its columns joined by "|".
std::vector<std::string> rowsOf(const QString& state, const std::string& sql) {
    sqlite3* database = nullptr;
    std::vector<std::string> rows;
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_open(QFile::encodeName(state).constData(), &database) == SQLITE_OK &&
        sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr) == SQLITE_OK) {
        while (sqlite3_step(statement) == SQLITE_ROW) {
            std::string row;
            for (int place = 0; place < sqlite3_column_count(statement); ++place) {
                const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, place));
                row += (place > 0 ? "|" : "") + std::string(text ? text : "");
            }
            rows.push_back(row);
        }
    } else {
        rows.emplace_back(sqlite3_errmsg(database));
    }
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return rows;
}

} // namespace

BatchTest::BatchTest() {
    QDir(m_folder.path()).mkdir(QStringLiteral("in"));
}

/// Qt can't remove files whose names are no UTF-8.
BatchTest::~BatchTest() {
    std::error_code error;
    std::filesystem::remove_all(m_folder.path().toStdString(), error);
}

void BatchTest::put(const QByteArray& name, const QByteArray& bytes) const {
    namespace fs = std::filesystem;
    const fs::path file = m_folder.path().toStdString() + '/' + name.toStdString();
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes.toStdString();
    const timespec times[2] = {{1600000000, 0}, {1600000000, 123456789}};
    utimensat(AT_FDCWD, file.c_str(), times, 0);
}

QByteArray BatchTest::oldProject(const QByteArray& clip) {
    return archive().replace("Beach", clip);
}

QByteArray BatchTest::newestProject() {
    return R"({"version": "1.0", "schemaVersion": )" + QByteArray::number(Reader::currentVersion) +
           R"(, "data": {"@meta": {"class_name": "Project::Content", "object_id": 2}, "items": []}})";
}

QByteArray BatchTest::largeProject() {
    return sample("holiday-v3.xml");
}

int BatchTest::batch(const QStringList& arguments) {
    m_outcome = run(QStringList{QStringLiteral("batch")} + arguments);
    return m_outcome.exitCode;
}

std::map<std::string, std::string> BatchTest::tree(const QString& folder) const {
    namespace fs = std::filesystem;
    std::map<std::string, std::string> found;
    const fs::path root = path(folder).toStdString();
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const std::string name = entry.path().lexically_relative(root).string();
        if (entry.path().extension() != ".sqlite")
            found[name] = entry.is_regular_file() && !entry.is_symlink() ? readFile(entry.path()) : "";
    }
    return found;
}

std::vector<std::string> BatchTest::names(const QString& folder) const {
    std::vector<std::string> found;
    for (const auto& [name, bytes] : tree(folder)) {
        if (!std::filesystem::is_directory(path(folder).toStdString() + '/' + name))
            found.push_back(name);
    }
    return found;
}

std::map<std::string, std::string> BatchTest::column(const QString& state, const std::string& name) const {
    std::map<std::string, std::string> found;
    const std::string folder =
        std::filesystem::canonical(m_folder.path().toStdString() + "/in").string() + '/';
    // Names may hold line feeds and bytes that are no text, so they come as hexadecimal digits.
    for (const std::string& row : rowsOf(path(state), "SELECT hex(path), " + name + " FROM files")) {
        const auto bar = row.find('|');
        const std::string file =
            QByteArray::fromHex(QByteArray::fromStdString(row.substr(0, bar))).toStdString();
        found[file.starts_with(folder) ? file.substr(folder.size()) : file] = row.substr(bar + 1);
    }
    return found;
}

std::vector<std::string> BatchTest::rows(const QString& state) const {
    return rowsOf(
        path(state),
        "SELECT hex(path), hex(name), hex(output), bundle, state, size, time, sha256, from_version, "
        "to_version, code, kind, reason, losses, output_size, hex(backup), fresh, "
        "replaceable, tool FROM files ORDER BY path");
}

std::string BatchTest::query(const QString& state, const std::string& sql) const {
    std::string all;
    for (const std::string& row : rowsOf(path(state), sql))
        all += (all.empty() ? "" : "\n") + row;
    return all;
}

BackgroundRun::BackgroundRun(const QStringList& arguments, const QString& folder,
                             const QProcessEnvironment& environment) {
    m_process.setProcessEnvironment(environment);
    m_process.setWorkingDirectory(folder);
    m_process.start(QString::fromStdString(program().string()), arguments);
    m_process.waitForStarted();
}

BackgroundRun::~BackgroundRun() {
    if (isRunning()) {
        m_process.kill();
        m_process.waitForFinished(-1);
    }
}

void BackgroundRun::signal(int number) const {
    if (const auto id = static_cast<pid_t>(m_process.processId()); id > 0) // 0 would be this process group
        ::kill(id, number);
}

bool BackgroundRun::isRunning() {
    m_process.waitForFinished(0);
    return m_process.state() != QProcess::NotRunning;
}

int BackgroundRun::wait() {
    m_process.waitForFinished(600000);
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -2;
}

Outcome BackgroundRun::outcome() {
    const int code = wait();
    m_said += m_process.readAllStandardError();
    return {code, m_process.readAllStandardOutput(), m_said};
}

bool BackgroundRun::hasSaid(const QByteArray& text) {
    waitUntil([&] {
        const bool hasEnded = !isRunning();
        m_process.waitForReadyRead(1);
        m_said += m_process.readAllStandardError();
        return m_said.contains(text) || hasEnded;
    });
    return m_said.contains(text);
}

std::vector<pid_t> BackgroundRun::workers() const {
    std::vector<pid_t> found;
    const QString parent = QString::number(m_process.processId());
    for (const QString& number : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        // "4711 (name) S 4700 ...": the name may hold spaces
        std::ifstream file("/proc/" + number.toStdString() + "/stat");
        std::string line;
        std::getline(file, line);
        std::istringstream rest(line.substr(std::min(line.rfind(')') + 1, line.size())));
        std::string processState;
        std::string owner;
        const bool isWorker = line.find("(adaptors-worker)") != std::string::npos; // once it is ready
        if (rest >> processState >> owner && owner == parent.toStdString() && isWorker)
            found.push_back(number.toInt());
    }
    return found;
}

pid_t BackgroundRun::aWorker() {
    std::vector<pid_t> found;
    waitUntil([&] {
        found = workers();
        return !found.empty() || !isRunning();
    });
    return found.empty() ? 0 : found.front();
}

bool waitUntil(const std::function<bool()>& condition) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > 60000)
            return false;
        usleep(1000);
    }
    return true;
}

long long bytesReadBy(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/io");
    std::string key;
    long long bytes = 0;
    return file >> key >> bytes && key == "rchar:" ? bytes : 0;
}

} // namespace Tests
