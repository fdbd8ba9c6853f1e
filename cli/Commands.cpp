#include "Commands.h"

#include "Advice.h"
#include "DiffReport.h"
#include "Exchange/OpenTimeline.h"
#include "ExplainReport.h"
#include "ExportReport.h"
#include "FileNames.h"
#include "Memory.h"
#include "Messages.h"
#include "Names.h"
#include "Places.h"
#include "Progress.h"
#include "Reader/Error.h"
#include "Reader/Files.h"
#include "Reader/Migration.h"
#include "Reader/Unfinished.h"
#include "Repairs/Opening.h"
#include "Repairs/RepairTrial.h"
#include "Report/Verdict.h"
#include "Summary.h"
#include "TimelineReport.h"
#include "TimelineSvg.h"
#include "report/Page.h"

#include <QDir>
#include <QFileInfo>

#include <unistd.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

namespace Commands {
namespace {

using namespace Places;
using Reader::Report::isWhole;
using Reader::Report::wouldLose;

/// The project's file. Failures from here on are reported with its name.
QString inputOf(const Arguments& arguments, Output& output) {
    output.setInput(nameOf(path(arguments.file)));
    QString input = inputFor(arguments);
    output.setInput(nameOf(input));
    return input;
}

/// Notes where the project goes. JSON does not go to standard output then.
void setTarget(const QString& target, Output& output) {
    if (Reader::isStandardOutput(target))
        output.yieldStandardOutput();
}

QString nameOfTarget(const QString& target) {
    return nameOf(target, "standard output");
}

/// Lets the program take as much memory as documents of that size need.
void limitMemory(const Arguments& arguments, const QString& input, std::optional<qint64> size,
                 Output& output) {
    const auto lastWords = [&](const std::string& bound) {
        return output.textFor(Messages::outOfMemory(nameOf(input), bound));
    };
    Memory::limitFor(arguments.maxMemory, size, lastWords, output.descriptorForFailures());
}

void announceTerminal(const QString& input, Output& output) {
    if (input == Reader::standardStream && isatty(STDIN_FILENO) != 0 && !output.isQuiet())
        output.note(Texts::readingFromTerminal());
}

/// Reads the input, that of `file` where it is given.
QByteArray readInput(const Arguments& arguments, const QString& input, Output& output,
                     std::optional<Reader::FileInPlace>* file = nullptr) {
    announceTerminal(input, output);
    limitMemory(arguments, input, {}, output);
    if (file)
        file->emplace(input);
    QByteArray bytes = file ? (*file)->bytes() : Reader::readFile(input);
    output.setBytes(bytes);
    limitMemory(arguments, input, bytes.size(), output);
    return bytes;
}

/// What a migration that reads `input` and writes `target` needs. Side files that it makes are added to `made`.
Reader::MigrationOptions optionsFor(const Arguments& arguments, const QString& input, const QString& target,
                                    const std::shared_ptr<Reader::UnfinishedParts>& made) {
    Reader::MigrationOptions options;
    options.name = nameOf(input);
    options.location = projectLocation(input, target);
    options.target = projectLocation(target, input);
    options.to = arguments.to;
    options.repair = arguments.repair;
    options.sourceFiles = Reader::SideFiles(folderOf(input));
    options.targetFiles = Reader::SideFiles(folderOf(target), optionsToWrite(arguments, input), made);
    options.folders = {path(arguments.packagesRoot), path(arguments.aiModelsRoot),
                       path(arguments.downloadableRoot)};
    return options;
}

/// Reports early what would keep the result from being written.
void checkOutput(const Arguments& arguments, const QString& input, const QString& target) {
    const bool isFolderToBeMade = (!arguments.bundle.empty() && !QFileInfo(path(arguments.bundle)).isDir()) ||
                                  (arguments.beforeWriting && !QFileInfo(QFileInfo(target).path()).isDir());
    if (!arguments.inPlace && !isFolderToBeMade)
        Reader::checkTarget(target, optionsToWrite(arguments, input));
}

/// Writes the result; from that moment on `made` stays.
void writeResult(const QString& target, const QByteArray& bytes, const Reader::WriteOptions& options,
                 Reader::UnfinishedParts& made) {
    Reader::PendingFile file(target, bytes, options);
    std::optional<Reader::HeldSignals> held;
    if (!Reader::isStream(target)) // whose reader may let it wait
        held.emplace();
    file.commit();
    made.keep();
}

void showSummary(const Summary& summary, Output& output) {
    if (output.isJson())
        output.setResult(JsonReport::migration(summary));
    else if (output.isQuiet())
        output.note(Texts::errors(summary, output.colours()));
    else
        output.note(Texts::summary(summary, output.isVerbose() ? Texts::Detail::Steps : Texts::Detail::Usual,
                                   output.colours()));
}

/// Shows what the steps reported, where there is no summary.
void showLog(const Summary& summary, Output& output) {
    if (output.isQuiet()) {
        output.note(Texts::errors(summary, output.colours()));
        return;
    }
    output.note(Texts::opening(summary.report, output.colours()) + Texts::repairs(summary.report.repairs) +
                Texts::log(summary.report, output.colours()));
    if (output.isVerbose())
        output.note("steps that ran:\n" + Texts::steps(summary.report));
}

void showTrace(const Reader::Trace& trace, const Reader::MigrationReport& report, Output& output) {
    if (output.isJson())
        output.setResult(JsonReport::trace(trace, report));
    else
        output.print(Texts::trace(trace));
}

bool isRefused(const Arguments& arguments, const Reader::MigrationReport& report) {
    using Reader::Report::Strictness;
    const Strictness strictness = arguments.strict.empty()    ? Strictness::None
                                  : arguments.strict == "all" ? Strictness::All
                                                              : Strictness::Unintended;
    return Reader::Report::isRefused(strictness, report);
}

/// Whether a migration of the document has nothing to do. A bundle is made of any document.
bool isUpToDate(const Reader::Document& document, const Arguments& arguments) {
    return Reader::Report::isUpToDate(document, arguments.to) && arguments.bundle.empty();
}

/// The project in a file; with --repair also in one that is damaged.
Repairs::Opened opened(const QByteArray& bytes, const QString& name, const Arguments& arguments) {
    return arguments.repair ? Repairs::open(bytes, name, arguments.from)
                            : Repairs::Opened{Reader::parse(bytes, name, arguments.from), {}};
}

/// Whether --repair changes the document.
bool needsRepair(const QByteArray& bytes, const Arguments& arguments,
                 const Reader::MigrationOptions& options) {
    return arguments.repair && Repairs::tryRepairs(bytes, arguments.from, options).hasRepairs();
}

/// The exit code of a command that did its work on a document, whatever the steps lost.
int exitCodeAfterOpening(const Reader::MigrationReport& report) {
    return report.isFromIncompleteFile() ? Messages::Incomplete : Messages::Done;
}

/// A document that a command has read.
struct Input {
    const QByteArray& bytes;
    const Reader::Document& document;
    const QString& file;
    const QString& target;
};

/// Passes on a document that has the version asked for: unchanged where its target was named, else to nowhere.
int passOn(const Arguments& arguments, const Input& input, Output& output) {
    Reader::MigrationReport report;
    report.formBefore = report.formAfter = input.document.form();
    report.from = report.to = arguments.to;
    Summary summary{report, nameOf(input.file)};
    summary.hasClips = false;
    summary.isUpToDate = true;
    const bool isFilter = Reader::isStream(input.file) && Reader::isStandardOutput(input.target);
    if (!arguments.check && (!arguments.output.empty() || isFilter)) {
        if (arguments.beforeWriting)
            arguments.beforeWriting(input.target);
        checkOutput(arguments, input.file, input.target);
        Reader::UnfinishedParts made;
        writeResult(input.target, input.bytes, optionsToWrite(arguments, input.file), made);
        summary.output = nameOfTarget(input.target);
    }
    showSummary(summary, output);
    return Messages::Done;
}

/// The work of `migrate` on a file that was read.
struct Job {
    const QString& input;
    const QString& target;
    const QByteArray& bytes;
    const Reader::MigrationOptions& options;
    const std::shared_ptr<Reader::UnfinishedParts>& made;
    Reader::FileInPlace* file; ///< null unless the file is replaced
};

/// Keeps a migration until the program ends. The system then frees its memory at once, node by node takes longer.
void keep(std::unique_ptr<Reader::Migration> migration) {
    static std::vector<std::unique_ptr<Reader::Migration>>& kept = *new std::vector<
        std::unique_ptr<Reader::Migration>>; // never destroyed, but no leak: it can be reached
    kept.push_back(std::move(migration));
}

int migrateRead(const Arguments& arguments, const Job& job, Output& output) {
    const QString name = nameOf(job.input);
    Repairs::Opened project = opened(job.bytes, name, arguments);
    if (isUpToDate(project.document, arguments) && !needsRepair(job.bytes, arguments, job.options))
        return passOn(arguments, {job.bytes, project.document, job.input, job.target}, output);
    if (!arguments.check)
        checkOutput(arguments, job.input, job.target);

    Progress progress(output);
    Reader::MigrationOptions options = job.options;
    options.opening = std::move(project.report);
    options.reread = [&] { return opened(job.bytes, name, arguments).document; };
    options.watch = [&](const Reader::MigrationPart& part, const Reader::Document&) { progress.note(part); };
    auto migration = std::make_unique<Reader::Migration>(std::move(project.document), std::move(options));
    progress.expect(migration->document(), arguments.to);
    migration->run();
    const Reader::MigrationReport& report = migration->report();
    const bool isWritten = !arguments.check && !isRefused(arguments, report);
    if (isWritten && arguments.beforeWriting)
        arguments.beforeWriting(job.target);
    // A project that is not written leaves no side files either.
    const bool toBundle = !arguments.bundle.empty() && isWritten;
    if (toBundle)
        makeBundle(path(arguments.bundle), *job.made);
    const QByteArray result = migration->save(toBundle);

    Summary summary{report, name};
    if (!arguments.repair)
        summary.advice = Reader::Report::betterRepairs(*migration, {job.bytes, arguments.from, job.options});
    if (isWritten) {
        if (job.file) {
            const Reader::Replacement replacement = job.file->replace(result);
            summary.backup = nameOf(replacement.backup);
            summary.notes = Messages::notesOn(job.input, replacement);
        } else {
            writeResult(job.target, result, optionsToWrite(arguments, job.input), *job.made);
        }
        summary.output = nameOfTarget(job.target);
    }
    progress.end();
    showSummary(summary, output);
    if (arguments.check && wouldLose(report))
        throw Messages::Failure(Messages::wouldLose(name));
    if (arguments.check)
        return Messages::WouldMigrate;
    if (!isWritten)
        throw Messages::Failure(Messages::refusedByStrict(name));
    const int code = isWhole(report) ? Messages::Done : Messages::Incomplete;
    if (!arguments.moreFilesFollow)
        keep(std::move(migration));
    return code;
}

/// The work of `run` on a file that was read.
int runRead(const Arguments& arguments, const QString& input, const QByteArray& bytes,
            const std::string& step, Output& output) {
    Repairs::Opened project = opened(bytes, nameOf(input), arguments);
    const QString ownName = Reader::isStream(input)
                                ? project.document.isXml() ? "project.xml" : "project.json"
                                : QFileInfo(input).fileName();
    const QString target =
        arguments.output.empty() ? Reader::standardStream : outputFor(arguments, input, ownName);
    checkOutput(arguments, input, target);
    const auto made = std::make_shared<Reader::UnfinishedParts>();
    const bool hasVersion = project.document.version().has_value();
    Reader::MigrationOptions options = optionsFor(arguments, input, target, made);
    options.opening = std::move(project.report);
    Reader::Migration migration(std::move(project.document), std::move(options));
    migration.runOnly(step);
    Summary summary{migration.report(), nameOf(input)};
    summary.hasVersion = hasVersion;
    summary.hasClips = false;
    showLog(summary, output);
    writeResult(target, migration.write(), optionsToWrite(arguments, input), *made);
    summary.output = nameOfTarget(target);
    if (output.isJson())
        output.setResult(JsonReport::migration(summary));
    return exitCodeAfterOpening(migration.report());
}

/// The work of `trace` on a file that was read.
int traceRead(const Arguments& arguments, const QString& input, const QByteArray& bytes,
              Reader::MigrationOptions options, Output& output) {
    Reader::Trace trace(path(arguments.folder), optionsToWrite(arguments, input),
                        arguments.diff ? Reader::Trace::Diffs::Unified : Reader::Trace::Diffs::None);
    Progress progress(output);
    Repairs::Opened project = opened(bytes, nameOf(input), arguments);
    options.opening = std::move(project.report);
    options.watch = [&](const Reader::MigrationPart& part, const Reader::Document& document) {
        trace.note(part, document);
        progress.note(part);
    };
    Reader::Migration migration(std::move(project.document), std::move(options));
    progress.expect(migration.document(), arguments.to);
    try {
        migration.run();
    } catch (const Reader::Error&) {
        progress.end();
        showTrace(trace, migration.report(), output); // people look for what led up to the step that fails
        throw;
    }
    progress.end();
    showLog({migration.report(), nameOf(input)}, output);
    showTrace(trace, migration.report(), output);
    return exitCodeAfterOpening(migration.report());
}

/// The work of `explain` on a file that was read.
int explainRead(const Arguments& arguments, const QString& input, const QByteArray& bytes,
                Reader::MigrationOptions options, Output& output) {
    const QString name = nameOf(input);
    const std::string wanted = arguments.step.empty() ? std::string() : Names::stepFor(arguments.step);
    Reader::Explanation explanation(arguments.clip);
    Progress progress(output);
    options.watch = [&](const Reader::MigrationPart& part, const Reader::Document& document) {
        explanation.note(part, document);
        progress.note(part);
    };
    Repairs::Opened project = opened(bytes, name, arguments);
    options.opening = std::move(project.report);
    Reader::Migration migration(std::move(project.document), std::move(options));
    progress.expect(migration.document(), arguments.to);
    const auto show = [&] {
        progress.end();
        ExplainReport::Result result{name, migration.report(), explanation.steps(), !wanted.empty()};
        if (!wanted.empty())
            std::erase_if(result.steps,
                          [&](const Reader::StepEffect& step) { return step.className != wanted; });
        if (!wanted.empty() && result.steps.empty())
            throw Messages::Failure(Messages::stepDidNotRun(name, wanted));
        if (!arguments.clip.empty() && !explanation.hasFoundClip())
            throw Messages::Failure(Messages::noSuchClip(name, arguments.clip));
        if (output.isJson())
            output.setResult(Reader::Report::explanation(result.steps, result.report, result.isOneStep));
        else
            output.print(ExplainReport::text(result, output.colours()));
    };
    try {
        migration.run();
    } catch (const Reader::Error&) {
        if (wanted.empty() && (arguments.clip.empty() || explanation.hasFoundClip()))
            show(); // people look for what led up to the step that fails
        throw;
    }
    show();
    return exitCodeAfterOpening(migration.report());
}

/// A document brought to a version and saved as for its own place: side files are read, and paths are portable.
Reader::Document broughtTo(int version, Reader::Document document, const Arguments& arguments,
                           const QString& file) {
    Reader::MigrationOptions options = optionsFor(arguments, file, file, nullptr);
    options.to = version;
    Reader::Migration migration(std::move(document), std::move(options));
    migration.run();
    return Reader::parse(migration.save(), nameOf(file), version);
}

/// Migrates a document for a page, as `migrate` would. `facts` has all that was seen also where a step fails.
void observe(const Arguments& arguments, const QByteArray& bytes, const QString& mediaFolder,
             Reader::MigrationOptions options, ReportPage::Facts& facts, Output& output) {
    Repairs::Opened project = opened(bytes, options.name, arguments);
    Reader::Document& document = project.document;
    facts.faultsOfInput = Reader::verify(document);
    facts.media = ReportPage::mediaOf(Reader::readTimelines(document), mediaFolder);
    ReportPage::Observer observer(document);
    facts.report.formBefore = facts.report.formAfter = document.form();
    facts.report.from = facts.report.to = document.version().value_or(0);
    if (isUpToDate(document, arguments) && !needsRepair(bytes, arguments, options)) {
        observer.moveTo(facts);
        facts.isUpToDate = true;
        facts.result = facts.input;
        return;
    }
    Progress progress(output);
    options.opening = std::move(project.report);
    options.reread = [&bytes, &arguments, name = options.name] {
        return opened(bytes, name, arguments).document;
    };
    options.watch = [&](const Reader::MigrationPart& part, const Reader::Document& current) {
        observer.note(part, current);
        progress.note(part);
    };
    std::optional<Reader::Migration> migration(std::in_place, std::move(document), std::move(options));
    progress.expect(migration->document(), arguments.to);
    const auto takeReport = [&] {
        observer.moveTo(facts);
        facts.report = migration->report();
        migration.reset(); // pages of large projects take memory themselves
    };
    try {
        migration->run();
        const QByteArray result = migration->save();
        takeReport();
        facts.isWhole = isWhole(facts.report);
        facts.result = ReportPage::File::of(result);
        facts.faultsOfResult = Reader::verify(Reader::parse(result, {}, arguments.to));
    } catch (const Reader::Error&) {
        if (migration)
            takeReport();
        throw;
    }
}

void writePage(const Arguments& arguments, const QString& input, const QString& target,
               const ReportPage::Facts& facts) {
    Reader::UnfinishedParts made;
    writeResult(target, QByteArray::fromStdString(ReportPage::page(facts)), optionsToWrite(arguments, input),
                made);
}

/// The work of `export` on a file that was read.
int exportRead(const Arguments& arguments, const Job& job, Output& output) {
    const QString name = nameOf(job.input);
    Repairs::Opened project = opened(job.bytes, name, arguments);
    Progress progress(output);
    Reader::MigrationOptions options = job.options;
    options.opening = std::move(project.report);
    options.reread = [&] { return opened(job.bytes, name, arguments).document; };
    options.watch = [&](const Reader::MigrationPart& part, const Reader::Document&) { progress.note(part); };
    Reader::Migration migration(std::move(project.document), std::move(options));
    progress.expect(migration.document(), arguments.to);
    migration.run();
    const Reader::MigrationReport& report = migration.report();
    Summary summary{report, name};
    if (!arguments.repair)
        summary.advice = Reader::Report::betterRepairs(migration, {job.bytes, arguments.from, job.options});
    const bool isWritten = !isRefused(arguments, report);
    // Saved and read again: paths count from the target then, as in a project that is written there.
    const Reader::TimelineExport result =
        Reader::exportTimeline(Reader::parse(migration.save(), name, arguments.to));
    if (isWritten) {
        writeResult(job.target, QByteArray::fromStdString(Reader::openTimelineText(result.document)),
                    optionsToWrite(arguments, job.input), *job.made);
        summary.output = nameOfTarget(job.target);
    }
    progress.end();
    if (output.isJson())
        output.setResult(JsonReport::exported(summary, result));
    else if (output.isQuiet())
        output.note(Texts::errors(summary, output.colours()));
    else
        output.note(Texts::summary(summary, output.isVerbose() ? Texts::Detail::Steps : Texts::Detail::Usual,
                                   output.colours()) +
                    ExportReport::text(result));
    if (!isWritten)
        throw Messages::Failure(Messages::refusedByStrict(name));
    return isWhole(report) ? Messages::Done : Messages::Incomplete;
}

} // namespace

int migrate(const Arguments& arguments, Output& output) {
    if (arguments.inPlace && path(arguments.file) == Reader::standardStream)
        throw Messages::Failure(Messages::inPlaceNeedsFile());
    if (path(arguments.output) == Reader::standardStream)
        output.yieldStandardOutput();
    const QString input = inputOf(arguments, output);
    const QString target =
        arguments.check ? QString() : outputFor(arguments, input, resultName(arguments, input));
    setTarget(target, output);

    std::optional<Reader::FileInPlace> file;
    const QByteArray bytes = readInput(arguments, input, output, arguments.inPlace ? &file : nullptr);
    const auto made = std::make_shared<Reader::UnfinishedParts>();
    const Reader::MigrationOptions options = optionsFor(arguments, input, target, made);
    const Advice::Subject subject{bytes, arguments.from, options};
    return Advice::advising(arguments, subject, [&] {
        return migrateRead(arguments, {input, target, bytes, options, made, file ? &*file : nullptr}, output);
    });
}

int steps(const Arguments& arguments, Output& output) {
    const int from = arguments.from.value_or(0);
    if (from > arguments.to)
        throw Messages::Failure(Messages::badValue("--to", std::to_string(arguments.to),
                                                   "a schema version that is not below that of --from"));
    if (output.isJson())
        output.setResult(JsonReport::stepList(from, arguments.to));
    else
        output.print(Texts::stepList(from, arguments.to));
    return Messages::Done;
}

int run(const Arguments& arguments, Output& output) {
    if (arguments.output.empty())
        output.yieldStandardOutput();
    else
        setTarget(path(arguments.output), output);
    const QString input = inputOf(arguments, output);
    const std::string step = Names::stepFor(arguments.step);
    const QByteArray bytes = readInput(arguments, input, output);
    Reader::MigrationOptions options = optionsFor(arguments, input, Reader::standardStream, nullptr);
    return Advice::advising(arguments, {bytes, arguments.from, options, step},
                            [&] { return runRead(arguments, input, bytes, step, output); });
}

int info(const Arguments& arguments, Output& output) {
    const QString input = inputOf(arguments, output);
    const QString name = nameOf(input);
    const QByteArray bytes = readInput(arguments, input, output);
    const Reader::MigrationOptions options = optionsFor(arguments, input, Reader::standardStream, nullptr);
    return Advice::advising(arguments, {bytes, arguments.from, options}, [&] {
        // First, so that not two documents are in memory at a time.
        const Repairs::Trial trial = Repairs::tryRepairs(bytes, arguments.from, options);
        const Reader::Document document = Reader::parse(bytes, name, arguments.from);
        const TimelineReport::Project project = {Reader::readTimelines(document), folderOf(input)};
        const auto* repairs = document.version() ? &trial.report.repairs : nullptr;
        if (output.isJson()) {
            JsonReport::Json result = JsonReport::info(document, repairs);
            result.update(Reader::Report::timelines(project.timelines, project.folder));
            output.setResult(std::move(result));
        } else {
            const auto drawing =
                arguments.timeline ? std::optional(TimelineDrawing::styleFor(STDOUT_FILENO)) : std::nullopt;
            output.print(Texts::info(document, name, repairs) + TimelineReport::text(project, drawing));
        }
        return Messages::Done;
    });
}

int verify(const Arguments& arguments, Output& output) {
    const QString input = inputOf(arguments, output);
    const QString name = nameOf(input);
    const auto findings =
        Reader::verify(Reader::parse(readInput(arguments, input, output), name, arguments.from));
    if (output.isJson())
        output.setResult(JsonReport::findings(findings));
    else
        output.print(Texts::findings(findings, name, output.colours()));
    const bool isBad = std::any_of(findings.begin(), findings.end(), [&](const Reader::Finding& finding) {
        return finding.severity >= arguments.failOn;
    });
    return isBad ? Messages::HasFindings : Messages::Done;
}

int trace(const Arguments& arguments, Output& output) {
    const QString input = inputOf(arguments, output);
    const QByteArray bytes = readInput(arguments, input, output);
    const Reader::MigrationOptions options = optionsFor(arguments, input, Reader::standardStream, nullptr);
    return Advice::advising(arguments, {bytes, arguments.from, options},
                            [&] { return traceRead(arguments, input, bytes, options, output); });
}

int repairs(const Arguments&, Output& output) {
    if (output.isJson())
        output.setResult(JsonReport::repairList());
    else
        output.print(Texts::repairList());
    return Messages::Done;
}

int diff(const Arguments& arguments, Output& output) {
    if (path(arguments.file) == Reader::standardStream && path(arguments.otherFile) == Reader::standardStream)
        throw Messages::Failure(Messages::oneStandardInput());
    const QString fileBefore = inputOf(arguments, output);
    Arguments others = arguments;
    others.file = arguments.otherFile;
    const QString fileAfter = inputFor(others);
    for (const QString& file : {fileBefore, fileAfter})
        announceTerminal(file, output);
    limitMemory(arguments, fileBefore, {}, output);
    const QByteArray bytesBefore = Reader::readFile(fileBefore);
    output.setBytes(bytesBefore);
    const QByteArray bytesAfter = Reader::readFile(fileAfter);
    limitMemory(arguments, fileBefore, qint64(bytesBefore.size()) + bytesAfter.size(), output);

    const auto openedFor = [&](const QByteArray& bytes, const QString& file) {
        const Reader::MigrationOptions options = optionsFor(arguments, file, file, nullptr);
        return Advice::advising(arguments, {bytes, std::nullopt, options},
                                [&] { return opened(bytes, nameOf(file), arguments).document; });
    };
    Reader::Document before = openedFor(bytesBefore, fileBefore);
    Reader::Document after = openedFor(bytesAfter, fileAfter);
    DiffReport::Result result = {{nameOf(fileBefore), before.form(), before.version()},
                                 {nameOf(fileAfter), after.form(), after.version()},
                                 {},
                                 {}};
    if (arguments.raw && before.form() != after.form())
        throw Messages::Failure(Messages::differentForms(nameOf(fileBefore), nameOf(fileAfter)));
    if (!arguments.raw)
        result.comparedAs = Reader::Report::versionToCompare(result.before, result.after);
    const auto prepared = [&](Reader::Document document, const QString& file) {
        if (result.comparedAs)
            document = broughtTo(*result.comparedAs, std::move(document), arguments, file);
        return Reader::readForComparison(document,
                                         Reader::isStream(file) ? QDir::currentPath() : folderOf(file));
    };
    const Reader::ComparedProject projectBefore = prepared(std::move(before), fileBefore);
    result.differences = Reader::compare(projectBefore, prepared(std::move(after), fileAfter));
    if (output.isJson())
        output.setResult(Reader::Report::comparison(result));
    else
        output.print(DiffReport::text(result));
    return result.differences.empty() ? Messages::Done : Messages::IsDifferent;
}

int explain(const Arguments& arguments, Output& output) {
    const QString input = inputOf(arguments, output);
    const QByteArray bytes = readInput(arguments, input, output);
    const Reader::MigrationOptions options = optionsFor(arguments, input, Reader::standardStream, nullptr);
    return Advice::advising(arguments, {bytes, arguments.from, options},
                            [&] { return explainRead(arguments, input, bytes, options, output); });
}

int timeline(const Arguments& arguments, Output& output) {
    if (arguments.output.empty())
        output.yieldStandardOutput();
    else
        setTarget(path(arguments.output), output);
    const QString input = inputOf(arguments, output);
    const QString name = nameOf(input);
    const Reader::Document document =
        Reader::parse(readInput(arguments, input, output), name, arguments.from);
    const QString ownName =
        (Reader::isStream(input) ? QStringLiteral("project") : QFileInfo(input).completeBaseName()) +
        QStringLiteral(".svg");
    const QString target =
        arguments.output.empty() ? Reader::standardStream : outputFor(arguments, input, ownName);
    checkOutput(arguments, input, target);
    TimelineSvg::Options options;
    options.title = FileNames::bytesOf(name);
    const std::string picture = TimelineSvg::timelineSvg(Reader::readTimelines(document), options);
    Reader::UnfinishedParts made;
    writeResult(target, QByteArray::fromStdString(picture), optionsToWrite(arguments, input), made);
    if (output.isJson())
        output.setResult({{"output", FileNames::bytesOf(nameOfTarget(target))}});
    return Messages::Done;
}

int report(const Arguments& arguments, Output& output) {
    if (path(arguments.output) == Reader::standardStream)
        output.yieldStandardOutput();
    const QString input = inputOf(arguments, output);
    const QString base =
        Reader::isStream(input) ? QStringLiteral("project") : QFileInfo(input).completeBaseName();
    const QString target = outputFor(arguments, input, base + QStringLiteral(".html"));
    setTarget(target, output);
    checkOutput(arguments, input, target);
    const QByteArray bytes = readInput(arguments, input, output);

    // The page is about the file that `migrate` would write.
    Arguments others = arguments;
    others.output.clear();
    const QString result = outputFor(others, input, resultName(others, input));
    const Reader::MigrationOptions options = optionsFor(others, input, result, nullptr);
    ReportPage::Facts facts;
    facts.name = FileNames::bytesOf(nameOf(input));
    facts.resultName = FileNames::bytesOf(nameOfTarget(result));
    facts.input = ReportPage::File::of(bytes);
    const auto write = [&] {
        writePage(arguments, input, target, facts);
        if (output.isJson())
            output.setResult({{"output", FileNames::bytesOf(nameOfTarget(target))}});
    };
    try {
        observe(arguments, bytes, folderOf(input), options, facts, output);
    } catch (const Reader::Error& error) {
        const auto advice =
            arguments.repair ? std::nullopt : Advice::messageFor(error, {bytes, arguments.from, options});
        facts.failure = advice ? *advice : Messages::messageFor(error);
        if (error.kind() == Reader::ErrorKind::StepFailed)
            write(); // people look for what led up to the step that fails
        throw Messages::Failure(*facts.failure);
    }
    write();
    Summary summary{facts.report, nameOf(input), nameOfTarget(target)};
    summary.isUpToDate = facts.isUpToDate;
    if (!output.isJson() && !output.isQuiet())
        output.note(Texts::summary(summary, Texts::Detail::Usual, output.colours()));
    return facts.isWhole ? Messages::Done : Messages::Incomplete;
}

int exportTimeline(const Arguments& arguments, Output& output) {
    if (path(arguments.output) == Reader::standardStream)
        output.yieldStandardOutput();
    const QString input = inputOf(arguments, output);
    const QString base =
        Reader::isStream(input) ? QStringLiteral("project") : QFileInfo(input).completeBaseName();
    const QString target = outputFor(arguments, input, base + QStringLiteral(".otio"));
    setTarget(target, output);
    checkOutput(arguments, input, target);
    const QByteArray bytes = readInput(arguments, input, output);
    const auto made = std::make_shared<Reader::UnfinishedParts>();
    const Reader::MigrationOptions options = optionsFor(arguments, input, target, nullptr);
    return Advice::advising(arguments, {bytes, arguments.from, options}, [&] {
        return exportRead(arguments, {input, target, bytes, options, made, nullptr}, output);
    });
}

} // namespace Commands
