#include "Commands.h"

#include "Memory.h"
#include "Messages.h"
#include "Places.h"
#include "Reader/Error.h"
#include "Reader/Files.h"
#include "Reader/Migration.h"
#include "Summary.h"
#include "Terminal.h"

#include <iostream>

namespace Commands {
namespace {

using namespace Places;

/// Prints the summary as text, or as JSON on standard output unless the document is written there.
void print(const Arguments& arguments, const QString& output, const Summary& summary) {
    if (!arguments.json)
        std::cerr << asText(summary);
    else
        (isStandardStream(output) ? std::cerr : std::cout) << asJson(summary);
}

Reader::Existing forExisting(const Arguments& arguments) {
    return arguments.force ? Reader::Existing::Replace : Reader::Existing::Refuse;
}

QByteArray readInput(const QString& input) {
    QByteArray bytes = Reader::readFile(input);
    Memory::limitFor(nameOf(input), bytes.size());
    return bytes;
}

/// The options of a migration that reads `input` and writes `output`.
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

void printLog(const Reader::MigrationReport& report) {
    for (const Reader::LogLine& line : report.log)
        std::cerr << (line.isError() ? Terminal::red("error") : Terminal::yellow("warning")) << ": "
                  << line.step << ": " << line.text << '\n';
}

} // namespace

int migrate(const Arguments& arguments) {
    const QString input = inputFor(arguments);
    const QString output = outputFor(arguments, input);
    if (arguments.inPlace && isStandardStream(input))
        throw Messages::Failure(Messages::inPlaceNeedsFile());
    refuseExisting(arguments, output);

    std::optional<Reader::FileInPlace> file;
    if (arguments.inPlace)
        file.emplace(input);
    const QString name = nameOf(input);
    const QByteArray bytes = file ? file->bytes() : Reader::readFile(input);
    Memory::limitFor(name, bytes.size());
    Reader::MigrationOptions options = optionsFor(arguments, input, output);
    options.reread = [&] { return Reader::parse(bytes, name, arguments.from); };
    Reader::Migration migration(options.reread(), options);
    migration.run();
    const Reader::MigrationReport& report = migration.report();
    const auto isRefused = [&] {
        return arguments.strict && (report.hasErrors() || report.hasUnintendedLosses());
    };
    // Checked before saving, so that a project that is not written gets no side files.
    const bool toBundle = !arguments.bundle.empty() && !isRefused();
    if (toBundle)
        makeBundle(path(arguments.bundle));
    const QByteArray result = migration.save(toBundle);

    Summary summary{report, name, {}, {}};
    if (isRefused()) {
        print(arguments, output, summary);
        throw Messages::Failure(Messages::refusedByStrict(name));
    }
    if (file)
        summary.backup = file->replace(result);
    else
        Reader::writeFile(output, result, forExisting(arguments));
    summary.output = isStandardStream(output) ? QStringLiteral("standard output") : output;
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
    const QString output = arguments.output.empty() ? Reader::standardStream : path(arguments.output);
    refuseExisting(arguments, output);

    Reader::Migration migration(Reader::parse(readInput(input), nameOf(input), arguments.from),
                                optionsFor(arguments, input, output));
    migration.runOnly(arguments.step);
    printLog(migration.report());
    Reader::writeFile(output, migration.write(), forExisting(arguments));
    return 0;
}

int info(const Arguments& arguments) {
    const QString input = inputFor(arguments);
    const QString name = nameOf(input);
    const Reader::Document document = Reader::parse(readInput(input), name, arguments.from);
    std::cout << (arguments.json ? infoAsJson(document, name) : infoAsText(document, name));
    return 0;
}

int verify(const Arguments& arguments) {
    const QString input = inputFor(arguments);
    const QString name = nameOf(input);
    const auto findings = Reader::verify(Reader::parse(readInput(input), name, arguments.from));
    std::cout << (arguments.json ? findingsAsJson(findings, name) : findingsAsText(findings, name));
    return findings.empty() ? Messages::Done : Messages::HasFindings;
}

int trace(const Arguments& arguments) {
    const QString input = inputFor(arguments);
    Reader::Trace trace(path(arguments.folder), forExisting(arguments));
    Reader::MigrationOptions options = optionsFor(arguments, input, Reader::standardStream);
    options.watch = [&](const Reader::MigrationPart& part, const Reader::Document& document) {
        trace.note(part, document);
    };
    Reader::Migration migration(Reader::parse(readInput(input), nameOf(input), arguments.from),
                                std::move(options));
    try {
        migration.run();
        printLog(migration.report());
    } catch (const Reader::Error&) {
        std::cout << traceAsText(trace); // printed also if a step fails, to show the steps before it
        throw;
    }
    std::cout << traceAsText(trace);
    return 0;
}

} // namespace Commands
