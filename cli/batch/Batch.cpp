#include "batch/Batch.h"

#include "Messages.h"
#include "Output.h"
#include "Places.h"
#include "batch/BatchProgress.h"
#include "batch/Coordinator.h"
#include "batch/Finder.h"
#include "batch/Inventory.h"
#include "batch/Leftovers.h"
#include "batch/Lock.h"
#include "batch/Merge.h"
#include "batch/Report.h"
#include "batch/Settings.h"
#include "batch/State.h"
#include "batch/StopSignals.h"
#include "batch/Texts.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <clocale>
#include <cstdio>
#include <functional>
#include <iostream>
#include <optional>

namespace Batch {
namespace {

using Sqlite::Database;

constexpr const char* command = "batch";
constexpr const char* stateName = "adaptors-batch";
constexpr const char* stateSuffix = ".sqlite";

[[noreturn]] void refuse(const std::string& reason) {
    throw Messages::Failure(Messages::otherWrongUse(reason, command));
}

QByteArray nameOf(const std::string& path) {
    return absolute(QByteArray::fromStdString(path));
}

void checkOptions(const Arguments& arguments) {
    const Options& options = arguments.batch;
    checkReport(options.report);
    const bool isRun = options.status.empty() && options.merge.empty();
    const bool hasInput = !options.paths.empty() || !options.list.empty();
    if (!isRun && hasInput)
        refuse("--status and --merge take no PATH");
    if (!isRun)
        return;
    if (!hasInput)
        throw Messages::Failure(Messages::missingArgument("PATH", command));
    if (arguments.folder.empty() && !arguments.inPlace && !arguments.check)
        refuse("\"batch\" needs --output-dir DIR, --in-place or --check");
    if (options.list == "-" && options.paths.size() == 1 && options.paths.front() == "-")
        refuse("standard input can't be the list and a project");
}

int jobsOf(const Options& options) {
    return options.jobs > 0 ? options.jobs : std::max(1, QThread::idealThreadCount());
}

/// Where the state is; empty for one that is not kept.
QByteArray stateFor(const Arguments& arguments) {
    const Options& options = arguments.batch;
    if (!options.state.empty())
        return nameOf(options.state);
    QByteArray name = stateName;
    if (options.shard.count > 1)
        name +=
            '.' + QByteArray::number(options.shard.number) + "-of-" + QByteArray::number(options.shard.count);
    name += stateSuffix;
    if (!arguments.folder.empty())
        return nameOf(arguments.folder) + '/' + name;
    if (arguments.check)
        return {};
    if (options.paths.size() == 1 && options.list.empty() &&
        QFileInfo(Places::path(options.paths.front())).isDir())
        return nameOf(options.paths.front()) + '/' + name;
    refuse("--in-place needs --state FILE, except for one folder, which holds its state");
}

/// The output folder, which is made; empty for none.
QByteArray resultsFor(const Arguments& arguments) {
    if (arguments.folder.empty())
        return {};
    const QString folder = Places::path(arguments.folder);
    if (!QDir().mkpath(folder))
        throw Messages::Failure(Messages::folderNotMade(folder));
    return QFile::encodeName(QFileInfo(folder).canonicalFilePath());
}

Settings settingsOf(const Arguments& arguments, const QByteArray& results) {
    Settings settings;
    for (const std::string& word : arguments.batch.workerOptions) {
        if (!word.starts_with("--max-memory"))
            settings.options += (settings.options.empty() ? "" : " ") + word;
    }
    settings.results = results.toStdString();
    settings.isInPlace = arguments.inPlace;
    settings.shard =
        std::to_string(arguments.batch.shard.number) + '/' + std::to_string(arguments.batch.shard.count);
    return settings;
}

/// Removes what a run left that was killed, and puts its files back among those that wait.
void takeOver(State& state, const Settings& settings) {
    constexpr int atOnce = 1000;
    const QByteArray results = QByteArray::fromStdString(settings.results);
    while (true) {
        std::vector<Row> rows = state.first(FileState::Working, atOnce);
        if (rows.empty())
            return;
        Sqlite::Transaction changes = state.transaction();
        for (Row& row : rows) {
            Leftovers::remove(row, results, settings.isInPlace);
            row.state = FileState::Waiting;
            state.put(row);
        }
        changes.commit();
    }
}

/// Settings decide on results: a state goes on with those that it began with. Gives whether they are others now.
bool adoptSettings(State& state, const Settings& settings, const Arguments& arguments) {
    const auto earlier = readSettings(state);
    if (earlier) {
        takeOver(state, *earlier);
        if (*earlier != settings && !arguments.force)
            refuse("the state belongs to a batch with other options (" + earlier->asText() +
                   "); give the same, or --force to do everything anew, or another --state");
    }
    Sqlite::Transaction changes = state.transaction();
    writeSettings(state, settings);
    changes.commit();
    return earlier && *earlier != settings;
}

/// Calls `take` for each name of a list, each ended by NUL.
void readList(const std::string& list, const std::function<void(const QByteArray&)>& take) {
    QFile file(Places::path(list));
    const bool isOpen = list == "-" ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    if (!isOpen)
        throw Messages::Failure(
            {Messages::Unreadable, "unreadable",
             list + ": " + file.errorString().toStdString() + "; check the name of --files0-from"});
    QByteArray rest;
    constexpr qint64 piece = 1 << 16;
    for (QByteArray next = file.read(piece); !next.isEmpty(); next = file.read(piece)) {
        rest += next;
        int begin = 0;
        for (int end = rest.indexOf('\0'); end >= 0; end = rest.indexOf('\0', begin)) {
            if (end > begin)
                take(rest.mid(begin, end - begin));
            begin = end + 1;
        }
        rest.remove(0, begin);
    }
    if (!rest.isEmpty())
        take(rest);
}

/// Brings the state up to date with what is there. Gives how many files are done and unchanged; none where a signal
/// came, and then the state is as it was.
std::optional<qint64> findFiles(State& state, const QByteArray& statePath, const QByteArray& results,
                                const Arguments& arguments, bool choosesAnew, StopSignals& stopSignals) {
    const Options& options = arguments.batch;
    Inventory inventory(
        {results, arguments.to, options.shard, arguments.force, options.retryFailed, choosesAnew}, state);
    Finder::Options search{Patterns(options.include), Patterns(options.exclude), {}, {}, false, {}, {}};
    search.results = results;
    for (const char* suffix : {"", ".lock", "-journal"})
        search.ownFiles.push_back(statePath + suffix);
    if (!options.report.empty()) {
        for (const QString& own : {Places::path(options.report), Pages::folderFor(options.report)})
            search.ownFiles.push_back(absolute(QFile::encodeName(own)));
    }
    search.followsLinks = arguments.inPlace;
    search.known = [&](const Found& found) { return inventory.known(found); };
    search.isStopped = [&] { return stopSignals.count() > 0; };
    Finder finder(std::move(search), [&](const Found& found) { inventory.take(found); });
    Sqlite::Transaction changes = state.transaction();
    const bool isOnly = options.paths.size() == 1 && options.list.empty();
    for (const std::string& path : options.paths)
        finder.search(QByteArray::fromStdString(path), isOnly);
    if (!options.list.empty())
        readList(options.list, [&](const QByteArray& path) { finder.search(path, false); });
    if (stopSignals.count() > 0)
        return std::nullopt;
    inventory.finish();
    changes.commit();
    return inventory.kept();
}

/// 0 where all is fine.
int exitCodeFor(State& state) {
    for (const State::Group& group : state.groups()) {
        if (group.state == FileState::Failed || group.state == FileState::Done)
            return Messages::SomeFailed;
    }
    return Messages::Done;
}

void show(State& state, const QByteArray& path, JsonReport::Json result, Output& output) {
    if (output.isJson()) {
        result["state"] = path.isEmpty() ? JsonReport::Json() : JsonReport::Json(path.toStdString());
        result.update(Texts::tableAsJson(state));
        output.setResult(std::move(result));
        return;
    }
    output.print(Texts::table(state, output.colours()));
    if (!path.isEmpty())
        output.print("state: " + Terminal::escaped(path.toStdString()) + '\n');
}

/// The table and its pages, where --report asks for them.
void writeReport(State& state, const Arguments& arguments, const std::function<bool()>& isStopped = {}) {
    const Options& options = arguments.batch;
    if (options.report.empty())
        return;
    Pages::Options pages;
    pages.which = options.pages;
    pages.words = optionsForPages(state);
    if (arguments.maxMemory)
        pages.words += QStringLiteral("--max-memory=%1").arg(*arguments.maxMemory);
    pages.jobs = jobsOf(options);
    pages.timeout = options.timeout;
    pages.isStopped = isStopped;
    writeReport(state, options.report, std::move(pages));
}

int showStatus(const Arguments& arguments, Output& output) {
    const QByteArray path = nameOf(arguments.batch.status);
    State state(path, Database::Access::Read);
    writeReport(state, arguments);
    show(state, path, JsonReport::Json::object(), output);
    return exitCodeFor(state);
}

int mergeStates(const Arguments& arguments, Output& output) {
    if (arguments.batch.state.empty() && arguments.folder.empty())
        refuse("--merge needs --state FILE or --output-dir DIR for the state that is made");
    resultsFor(arguments);
    const QByteArray path = stateFor(arguments);
    const Lock lock(path);
    State state(path, Database::Access::Write);
    std::vector<QByteArray> sources;
    for (const std::string& source : arguments.batch.merge)
        sources.push_back(nameOf(source));
    merge(sources, state);
    writeReport(state, arguments);
    show(state, path, JsonReport::Json::object(), output);
    return exitCodeFor(state);
}

void sayHowToGoOn(const Tally& tally, const Arguments& arguments, const Output& output) {
    output.note("stopped: " + Texts::number(tally.finished()) + " of " + Texts::number(tally.total) +
                " done; to go on, run the same command again" +
                (arguments.force ? " without --force, which would begin anew\n" : "\n"));
}

int migrateAll(const Arguments& arguments, Output& output) {
    const Options& options = arguments.batch;
    StopSignals stopSignals;
    BatchProgress progress(output, options.progress);
    const QByteArray results = arguments.check ? QByteArray() : resultsFor(arguments);
    const QByteArray path = stateFor(arguments);
    std::optional<Lock> lock;
    if (!path.isEmpty())
        lock.emplace(path);
    State state(path, Database::Access::Write);
    const bool choosesAnew = adoptSettings(state, settingsOf(arguments, results), arguments);

    Tally tally;
    progress.search();
    const auto kept = findFiles(state, path, results, arguments, choosesAnew, stopSignals);
    if (kept) {
        tally.kept = *kept;
        tally.total = state.counts()[FileState::Waiting];
        Coordinator::Options work;
        work.jobs = jobsOf(options);
        work.timeout = options.timeout;
        for (const std::string& word : options.workerOptions)
            work.worker += Places::path(word);
        work.results = results;
        work.isInPlace = arguments.inPlace;
        work.force = arguments.force;
        if (output.isJson())
            work.takeReport = [](const JsonReport::Json& report) {
                std::cout << JsonReport::line(report) << std::flush;
            };
        progress.begin(tally);
        Coordinator(std::move(work), state, tally, progress, stopSignals).run();
    }
    progress.end();
    writeReport(state, arguments, [&] { return stopSignals.count() > 0; });
    const int signal = stopSignals.first();
    JsonReport::Json result;
    result["stopped"] = signal != 0;
    result["run"] = Texts::tallyAsJson(tally);
    show(state, path, std::move(result), output);
    if (signal != 0) {
        sayHowToGoOn(tally, arguments, output);
        return 128 + signal;
    }
    return exitCodeFor(state);
}

} // namespace

int run(const Arguments& arguments, Output& output) {
    checkOptions(arguments);
    int argc = 1;
    std::string name = "adaptors";
    char* argv = name.data();
    const QCoreApplication application(argc, &argv); // for the event loop
    std::setlocale(LC_NUMERIC, "C");                 // which it has set
    if (!arguments.batch.status.empty())
        return showStatus(arguments, output);
    if (!arguments.batch.merge.empty())
        return mergeStates(arguments, output);
    return migrateAll(arguments, output);
}

} // namespace Batch
