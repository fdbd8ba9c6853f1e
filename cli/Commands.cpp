#include "Commands.h"

#include "LossMessages.h"
#include "Memory.h"
#include "Messages.h"
#include "Names.h"
#include "Places.h"
#include "Progress.h"
#include "Reader/Error.h"
#include "Reader/Files.h"
#include "Reader/Migration.h"
#include "Summary.h"

#include <unistd.h>

#include <algorithm>

namespace Commands {
namespace {

using namespace Places;

Reader::Existing forExisting(const Arguments& arguments) {
    return arguments.force ? Reader::Existing::Replace : Reader::Existing::Refuse;
}

/// The project's file. Failures from here on are reported with its name.
QString inputOf(const Arguments& arguments, Output& output) {
    output.setInput(nameOf(path(arguments.file)));
    const QString input = inputFor(arguments);
    output.setInput(nameOf(input));
    return input;
}

/// Notes where the project goes; JSON gives way to it on standard output.
void setTarget(const QString& target, Output& output) {
    if (isStandardStream(target))
        output.yieldStandardOutput();
}

QString nameOfTarget(const QString& target) {
    return isStandardStream(target) ? QStringLiteral("standard output") : target;
}

/// What is to be done with a document's bytes before they are parsed.
void prepareFor(const QByteArray& bytes, const QString& input, Output& output) {
    output.setBytes(bytes);
    Memory::limitFor(bytes.size(), output.textFor(Messages::outOfMemory(nameOf(input))),
                     output.descriptorForFailures());
}

QByteArray readInput(const QString& input, Output& output) {
    if (isStandardStream(input) && isatty(STDIN_FILENO) != 0 && !output.isQuiet())
        output.note(Texts::readingFromTerminal());
    QByteArray bytes = Reader::readFile(input);
    prepareFor(bytes, input, output);
    return bytes;
}

/// What a migration that reads `input` and writes `output` needs.
Reader::MigrationOptions optionsFor(const Arguments& arguments, const QString& input, const QString& output) {
    Reader::MigrationOptions options;
    options.name = nameOf(input);
    options.location = projectLocation(input, output);
    options.target = projectLocation(output, input);
    options.to = arguments.to;
    options.sourceFiles = Reader::SideFiles(folderOf(input));
    options.targetFiles = Reader::SideFiles(folderOf(output), arguments.force);
    options.folders = {path(arguments.packagesRoot), path(arguments.aiModelsRoot),
                       path(arguments.downloadableRoot)};
    return options;
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
    output.note(Texts::log(summary.report, output.colours()));
    if (output.isVerbose())
        output.note("steps that ran:\n" + Texts::steps(summary.report));
}

void showTrace(const Reader::Trace& trace, const Reader::MigrationReport& report, Output& output) {
    if (output.isJson())
        output.setResult(JsonReport::trace(trace, report));
    else
        output.print(Texts::trace(trace));
}

/// Whether something is lost that no schema version meant to remove, or a step reported an error.
bool wouldLose(const Reader::MigrationReport& report) {
    return report.hasErrors() || report.hasUnintendedLosses();
}

bool isRefused(const Arguments& arguments, const Reader::MigrationReport& report) {
    return (arguments.strict != Strictness::None && wouldLose(report)) ||
           (arguments.strict == Strictness::All && !report.losses.empty());
}

/// Whether all that the input held is in the result, except what schema versions removed on purpose.
bool isWhole(const Reader::MigrationReport& report) {
    return !report.hasUnintendedLosses() &&
           std::all_of(report.log.begin(), report.log.end(), [](const Reader::LogLine& line) {
               return !line.isError() || LossMessages::isHarmless(line);
           });
}

/// Whether a migration of the document has nothing to do. A bundle is made of any document.
bool isUpToDate(const Reader::Document& document, const Arguments& arguments) {
    const bool hasFormOfTarget = document.isXml() == (arguments.to <= Reader::lastXmlVersion);
    return document.version() == arguments.to && hasFormOfTarget && arguments.bundle.empty();
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
    const bool isFilter = isStandardStream(input.file) && isStandardStream(input.target);
    if (!arguments.check && (!arguments.output.empty() || isFilter)) {
        refuseExisting(arguments, input.target);
        Reader::writeFile(input.target, input.bytes, forExisting(arguments));
        summary.output = nameOfTarget(input.target);
    }
    showSummary(summary, output);
    return Messages::Done;
}

} // namespace

int migrate(const Arguments& arguments, Output& output) {
    if (arguments.inPlace && isStandardStream(path(arguments.file)))
        throw Messages::Failure(Messages::inPlaceNeedsFile());
    if (isStandardStream(path(arguments.output)))
        output.yieldStandardOutput();
    const QString input = inputOf(arguments, output);
    const QString target = arguments.check ? QString() : outputFor(arguments, input);
    setTarget(target, output);
    const QString name = nameOf(input);

    std::optional<Reader::FileInPlace> file;
    if (arguments.inPlace) {
        file.emplace(input);
        prepareFor(file->bytes(), input, output);
    }
    const QByteArray bytes = file ? file->bytes() : readInput(input, output);
    const auto read = [&] { return Reader::parse(bytes, name, arguments.from); };
    Reader::Document document = read();
    if (isUpToDate(document, arguments))
        return passOn(arguments, {bytes, document, input, target}, output);
    if (!arguments.check)
        refuseExisting(arguments, target);

    Progress progress(output);
    Reader::MigrationOptions options = optionsFor(arguments, input, target);
    options.reread = read;
    options.watch = [&](const Reader::MigrationPart& part, const Reader::Document&) { progress.note(part); };
    Reader::Migration migration(std::move(document), std::move(options));
    progress.expect(migration.document(), arguments.to);
    migration.run();
    const Reader::MigrationReport& report = migration.report();
    // A project that is not written leaves no side files either.
    const bool toBundle = !arguments.bundle.empty() && !isRefused(arguments, report);
    if (toBundle)
        makeBundle(path(arguments.bundle));
    const QByteArray result = migration.save(toBundle);

    Summary summary{report, name};
    const bool isWritten = !arguments.check && !isRefused(arguments, report);
    if (isWritten) {
        if (file)
            summary.backup = file->replace(result);
        else
            Reader::writeFile(target, result, forExisting(arguments));
        summary.output = nameOfTarget(target);
    }
    progress.end();
    showSummary(summary, output);
    if (arguments.check && wouldLose(report))
        throw Messages::Failure(Messages::wouldLose(name));
    if (arguments.check)
        return Messages::WouldMigrate;
    if (!isWritten)
        throw Messages::Failure(Messages::refusedByStrict(name));
    return isWhole(report) ? Messages::Done : Messages::Incomplete;
}

int steps(const Arguments& arguments, Output& output) {
    const int from = arguments.from.value_or(0);
    if (output.isJson())
        output.setResult(JsonReport::stepList(from, arguments.to));
    else
        output.print(Texts::stepList(from, arguments.to));
    return Messages::Done;
}

int run(const Arguments& arguments, Output& output) {
    const QString target = arguments.output.empty() ? Reader::standardStream : path(arguments.output);
    setTarget(target, output);
    const QString input = inputOf(arguments, output);
    const std::string step = Names::stepFor(arguments.step);
    refuseExisting(arguments, target);

    Reader::Migration migration(Reader::parse(readInput(input, output), nameOf(input), arguments.from),
                                optionsFor(arguments, input, target));
    const bool hasVersion = migration.document().version().has_value();
    migration.runOnly(step);
    Summary summary{migration.report(), nameOf(input)};
    summary.hasVersion = hasVersion;
    summary.hasClips = false;
    showLog(summary, output);
    Reader::writeFile(target, migration.write(), forExisting(arguments));
    summary.output = nameOfTarget(target);
    if (output.isJson())
        output.setResult(JsonReport::migration(summary));
    return Messages::Done;
}

int info(const Arguments& arguments, Output& output) {
    const QString input = inputOf(arguments, output);
    const QString name = nameOf(input);
    const Reader::Document document = Reader::parse(readInput(input, output), name, arguments.from);
    if (output.isJson())
        output.setResult(JsonReport::info(document));
    else
        output.print(Texts::info(document, name));
    return Messages::Done;
}

int verify(const Arguments& arguments, Output& output) {
    const QString input = inputOf(arguments, output);
    const QString name = nameOf(input);
    const auto findings = Reader::verify(Reader::parse(readInput(input, output), name, arguments.from));
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
    Reader::Trace trace(path(arguments.folder), forExisting(arguments));
    Progress progress(output);
    Reader::MigrationOptions options = optionsFor(arguments, input, Reader::standardStream);
    options.watch = [&](const Reader::MigrationPart& part, const Reader::Document& document) {
        trace.note(part, document);
        progress.note(part);
    };
    Reader::Migration migration(Reader::parse(readInput(input, output), nameOf(input), arguments.from),
                                std::move(options));
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
    return Messages::Done;
}

} // namespace Commands
