#include "Commands.h"

#include "Memory.h"
#include "Messages.h"
#include "Places.h"
#include "Reader/Error.h"
#include "Reader/Files.h"
#include "Reader/Migration.h"
#include "Summary.h"
#include "Terminal.h"

#include <QFileInfo>

#include <iostream>
#include <memory>
#include <optional>
#include <utility>

namespace Commands {
namespace {

using namespace Places;

/// Prints the summary for people, or as JSON: that on standard output unless the document goes there.
void print(const Arguments& arguments, const QString& output, const Summary& summary) {
    if (!arguments.json)
        std::cerr << asText(summary);
    else
        (Reader::isStandardOutput(output) ? std::cerr : std::cout) << asJson(summary);
}

/// Reads the input, that of `file` where it is given.
QByteArray readInput(const Arguments& arguments, const QString& input,
                     std::optional<Reader::FileInPlace>* file = nullptr) {
    Memory::limitFor(nameOf(input), arguments.maxMemory);
    if (file)
        file->emplace(input);
    QByteArray bytes = file ? (*file)->bytes() : Reader::readFile(input);
    Memory::limitFor(nameOf(input), arguments.maxMemory, bytes.size());
    return bytes;
}

/// What a migration that reads `input` and writes `output` needs. Side files that it makes are added to `made`.
Reader::MigrationOptions optionsFor(const Arguments& arguments, const QString& input, const QString& output,
                                    const std::shared_ptr<Reader::UnfinishedParts>& made) {
    Reader::MigrationOptions options;
    options.name = nameOf(input);
    options.location = projectLocation(input, output);
    options.target = projectLocation(output, input);
    options.to = arguments.to;
    options.sourceFiles = Reader::SideFiles(folderOf(input));
    options.targetFiles = Reader::SideFiles(folderOf(output), optionsToWrite(arguments, input), made);
    options.folders = {path(arguments.packagesRoot), path(arguments.aiModelsRoot),
                       path(arguments.downloadableRoot)};
    return options;
}

/// Says early what would keep the result from being written.
void checkOutput(const Arguments& arguments, const QString& input, const QString& output) {
    const bool isFolderToBeMade = !arguments.bundle.empty() && !QFileInfo(path(arguments.bundle)).isDir();
    if (!arguments.inPlace && !isFolderToBeMade)
        Reader::checkTarget(output, optionsToWrite(arguments, input));
}

/// Writes the result; from that moment on `made` stays.
void writeResult(const QString& output, const QByteArray& bytes, const Reader::WriteOptions& options,
                 Reader::UnfinishedParts& made) {
    Reader::PendingFile file(output, bytes, options);
    std::optional<Reader::HeldSignals> held;
    if (!Reader::isStream(output)) // whose reader may let it wait
        held.emplace();
    file.commit();
    made.keep();
}

void printLog(const Reader::MigrationReport& report) {
    for (const Reader::LogLine& line : report.log)
        std::cerr << (line.isError() ? Terminal::red("error") : Terminal::yellow("warning")) << ": "
                  << line.step << ": " << line.text << '\n';
}

} // namespace

int migrate(const Arguments& arguments) {
    const QString input = inputFor(arguments);
    const QString output = outputFor(arguments, input, resultName(arguments, input));
    if (arguments.inPlace && input == Reader::standardStream)
        throw Messages::Failure(Messages::inPlaceNeedsFile());

    std::optional<Reader::FileInPlace> file;
    const QString name = nameOf(input);
    const QByteArray bytes = readInput(arguments, input, arguments.inPlace ? &file : nullptr);
    checkOutput(arguments, input, output);
    const auto made = std::make_shared<Reader::UnfinishedParts>();
    Reader::Migration migration(Reader::parse(bytes, name, arguments.from),
                                optionsFor(arguments, input, output, made));
    migration.run();
    const Reader::MigrationReport& report = migration.report();
    const auto isRefused = [&] {
        return arguments.strict && (report.hasErrors() || !report.lostClips.empty());
    };
    // A project that is not written leaves no side files either.
    const bool toBundle = !arguments.bundle.empty() && !isRefused();
    if (toBundle)
        makeBundle(path(arguments.bundle), *made);
    const QByteArray result = migration.save(toBundle);

    Summary summary{report, name, {}, {}};
    if (isRefused()) {
        print(arguments, output, summary);
        throw Messages::Failure(Messages::refusedByStrict(name));
    }
    if (file) {
        const Reader::Replacement replacement = file->replace(result);
        summary.backup = nameOf(replacement.backup);
        summary.notes = Messages::notesOn(input, replacement);
    } else {
        writeResult(output, result, optionsToWrite(arguments, input), *made);
    }
    summary.output = nameOf(output, "standard output");
    print(arguments, output, summary);
    return 0;
}

int steps(const Arguments& arguments) {
    const int from = arguments.from.value_or(0);
    std::cout << (arguments.json ? stepsAsJson(from, arguments.to) : stepsAsText(from, arguments.to));
    return 0;
}

int run(const Arguments& arguments) {
    const QString input = inputFor(arguments);
    Reader::Document document = Reader::parse(readInput(arguments, input), nameOf(input), arguments.from);
    const QString ownName = Reader::isStream(input) ? document.isXml() ? "project.xml" : "project.json"
                                                    : QFileInfo(input).fileName();
    const QString output =
        arguments.output.empty() ? Reader::standardStream : outputFor(arguments, input, ownName);
    const Reader::WriteOptions toWrite = optionsToWrite(arguments, input);
    checkOutput(arguments, input, output);
    const auto made = std::make_shared<Reader::UnfinishedParts>();
    Reader::Migration migration(std::move(document), optionsFor(arguments, input, output, made));
    migration.runOnly(arguments.step);
    printLog(migration.report());
    writeResult(output, migration.write(), toWrite, *made);
    return 0;
}

int info(const Arguments& arguments) {
    const QString input = inputFor(arguments);
    const QString name = nameOf(input);
    const Reader::Document document = Reader::parse(readInput(arguments, input), name, arguments.from);
    std::cout << (arguments.json ? infoAsJson(document, name) : infoAsText(document, name));
    return 0;
}

int verify(const Arguments& arguments) {
    const QString input = inputFor(arguments);
    const QString name = nameOf(input);
    const auto findings = Reader::verify(Reader::parse(readInput(arguments, input), name, arguments.from));
    std::cout << (arguments.json ? findingsAsJson(findings, name) : findingsAsText(findings, name));
    return findings.empty() ? Messages::Done : Messages::HasFindings;
}

int trace(const Arguments& arguments) {
    const QString input = inputFor(arguments);
    Reader::Trace trace(path(arguments.folder), optionsToWrite(arguments, input));
    Reader::MigrationOptions options = optionsFor(arguments, input, Reader::standardStream, nullptr);
    options.watch = [&](const Reader::MigrationPart& part, const Reader::Document& document) {
        trace.note(part, document);
    };
    Reader::Migration migration(Reader::parse(readInput(arguments, input), nameOf(input), arguments.from),
                                std::move(options));
    try {
        migration.run();
        printLog(migration.report());
    } catch (const Reader::Error&) {
        std::cout << traceAsText(trace); // people look for what led up to the step that fails
        throw;
    }
    std::cout << traceAsText(trace);
    return 0;
}

} // namespace Commands
