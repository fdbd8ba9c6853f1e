#include "batch/Pages.h"

#include "JsonReport.h"
#include "Messages.h"
#include "Places.h"
#include "Reader/Files.h"
#include "Sha256.h"
#include "batch/Settings.h"
#include "report/Page.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <algorithm>
#include <array>
#include <deque>
#include <memory>
#include <utility>

namespace Batch {
namespace {

/// The same for each run, and without any character of the file's own name.
QString nameOfPage(const Row& row) {
    constexpr int digits = 20;
    const QByteArray hash = sha256(row.path).toHex();
    return QString::fromLatin1(hash.left(digits)) + QStringLiteral(".html");
}

/// What the work began with: with --in-place that is the backup now.
QByteArray inputOf(const Row& row) {
    return !row.backup.isEmpty() && QFile::exists(QFile::decodeName(row.backup)) ? row.backup : row.path;
}

/// Whether `report` gets as far as a page: the file could be read, and did not end its worker.
bool canBeShown(const Row& row) {
    constexpr std::array<std::string_view, 3> hopeless = {"crashed", "timeout", "out-of-memory"};
    return row.from && std::find(hopeless.begin(), hopeless.end(), row.kind) == hopeless.end();
}

/// Whether `report` has written its page with that exit code.
bool isPageWritten(int exitCode) {
    return exitCode == Messages::Done || exitCode == Messages::Incomplete || exitCode == Messages::StepFailed;
}

/// A process that writes the page of a row.
struct Work {
    Row row;
    std::unique_ptr<QProcess> process;
    QElapsedTimer since;
};

/// What went wrong with a page.
std::string problemOf(Work& work) {
    if (work.process->exitStatus() != QProcess::NormalExit)
        return "the page of this file could not be made: its process was ended";
    const auto report =
        JsonReport::Json::parse(work.process->readAllStandardOutput().toStdString(), nullptr, false);
    const bool hasText = report.is_object() && report.contains("error") && report["error"].contains("text");
    return hasText ? report["error"]["text"].get<std::string>()
                   : "the page of this file could not be made: its process ended with exit code " +
                         std::to_string(work.process->exitCode());
}

} // namespace

Pages::Pages(const std::string& table, Options options)
    : m_folder(folderFor(table)), m_options(std::move(options)) {}

QString Pages::folderFor(const std::string& table) {
    const QFileInfo file(Places::path(table));
    return file.dir().filePath(file.completeBaseName() + QStringLiteral("-pages"));
}

bool Pages::isWanted(const Row& row) const {
    const bool isDone = row.state == FileState::Done || row.state == FileState::Current;
    switch (m_options.which) {
    case WhichPages::None:
        return false;
    case WhichPages::All:
        return isDone || row.state == FileState::Failed;
    case WhichPages::Needed:
        break;
    }
    return row.state == FileState::Failed || (isDone && (!row.kind.empty() || row.losses.value_or(0) > 0));
}

QString Pages::fileFor(const Row& row) const {
    return QDir(m_folder).filePath(nameOfPage(row));
}

std::string Pages::linkTo(const Row& row) const {
    const QString file = fileFor(row);
    return isWanted(row) && QFile::exists(file)
               ? QFile::encodeName(QFileInfo(m_folder).fileName()).toPercentEncoding().toStdString() + '/' +
                     nameOfPage(row).toStdString()
               : std::string();
}

void Pages::write(State& state) const {
    std::deque<Row> waiting;
    state.forEach([&](const Row& row) {
        if (isWanted(row))
            waiting.push_back(row);
    });
    if (waiting.empty())
        return;
    if (!QDir().mkpath(m_folder))
        throw Messages::Failure(Messages::folderNotMade(m_folder));
    for (const Row& row : waiting)
        QFile::remove(fileFor(row)); // of an earlier run, or a trap
    const auto isStopped = [&] { return m_options.isStopped && m_options.isStopped(); };
    std::deque<Work> running;
    while (!isStopped() && !(waiting.empty() && running.empty())) {
        while (!waiting.empty() && static_cast<int>(running.size()) < std::max(m_options.jobs, 1)) {
            Row row = std::move(waiting.front());
            waiting.pop_front();
            if (!canBeShown(row)) {
                writeFailure(row, row.reason);
                continue;
            }
            auto process = std::make_unique<QProcess>();
            process->setStandardInputFile(QProcess::nullDevice());
            process->setStandardErrorFile(QProcess::nullDevice());
            const QStringList words = {QStringLiteral("report"), QFile::decodeName(inputOf(row)),
                                       QStringLiteral("-o"), fileFor(row), QStringLiteral("--json")};
            process->start(QStringLiteral("/proc/self/exe"), words + m_options.words);
            running.push_back({std::move(row), std::move(process), {}});
            running.back().since.start();
        }
        if (running.empty())
            continue;
        constexpr int shortWait = 50; // milliseconds; a signal is noticed behind it
        Work& first = running.front();
        const bool hasEnded =
            first.process->waitForFinished(shortWait) || first.process->state() == QProcess::NotRunning;
        const bool isLate = m_options.timeout > 0 && first.since.elapsed() > m_options.timeout * 1000LL;
        if (!hasEnded && !isLate) {
            std::rotate(running.begin(), running.begin() + 1, running.end());
            continue;
        }
        if (!hasEnded) {
            first.process->kill();
            first.process->waitForFinished();
        }
        const bool isWritten =
            first.process->exitStatus() == QProcess::NormalExit && isPageWritten(first.process->exitCode());
        if (!isWritten)
            writeFailure(first.row,
                         first.row.state == FileState::Failed ? first.row.reason : problemOf(first));
        running.pop_front();
    }
    for (Work& work : running) {
        work.process->kill();
        work.process->waitForFinished();
    }
}

/// A page that has no more than what the state knows.
void Pages::writeFailure(const Row& row, const std::string& reason) const {
    ReportPage::Facts facts;
    facts.name = row.path.toStdString();
    facts.input = {row.sha256, row.size.value_or(0)};
    facts.failure = Messages::Message{Messages::Unexpected, row.kind, reason};
    Reader::writeFile(fileFor(row), QByteArray::fromStdString(ReportPage::page(facts)),
                      {.existing = Reader::Existing::Replace, .onlyRegularFiles = true});
}

QStringList optionsForPages(State& state) {
    constexpr std::array<std::string_view, 6> names = {
        "--from", "--to", "--repair", "--packages-root", "--ai-models-root", "--downloadable-root"};
    QStringList words;
    const auto settings = readSettings(state);
    std::string rest = settings ? settings->options : std::string();
    while (!rest.empty()) {
        const std::size_t end =
            std::min(rest.find(" --"), rest.size()); // options only, each with its value behind "="
        const std::string word = rest.substr(0, end);
        rest.erase(0, end + 1);
        if (std::find(names.begin(), names.end(), std::string_view(word).substr(0, word.find('='))) !=
            names.end())
            words += Places::path(word);
    }
    return words;
}

} // namespace Batch
