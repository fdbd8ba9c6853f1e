#include "Commands.h"

#include "Memory.h"
#include "Places.h"
#include "Reader/Error.h"
#include "Reader/Files.h"
#include "Reader/Road.h"
#include "Settings/Settings.h"
#include "Summary.h"
#include "Terminal.h"

#include <iostream>

namespace Commands {
namespace {

using namespace Places;
using Reader::Problem;

constexpr int hasFindings = 17;

/// Tells things to people, and to programs that asked for JSON: on standard output unless the document is there.
void tell(const Arguments& arguments, const QString& output, const Summary& summary) {
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

void useFolders(const Arguments& arguments) {
    Settings::setLegacyPackageDeploymentPath(path(arguments.packagesRoot));
    Settings::setAiModelsPath(path(arguments.aiModelsRoot));
    Settings::setDownloadableResourcesPath(path(arguments.downloadableRoot));
    Reader::useStandInFolders();
}

void printLog(const Reader::Report& report) {
    for (const Reader::LogLine& line : report.log)
        std::cerr << (line.isError() ? Terminal::red("error") : Terminal::yellow("warning")) << ": "
                  << line.step << ": " << line.text << '\n';
}

} // namespace

int migrate(const Arguments& arguments) {
    const QString input = inputFor(arguments);
    const QString output = outputFor(arguments, input);
    if (arguments.inPlace && isStandardStream(input))
        throw Reader::Error(Problem::WrongUse, "--in-place needs a file, not standard input");
    refuseExisting(arguments, output);
    useFolders(arguments);

    Reader::Journey journey{nameOf(input),
                            projectLocation(input, output),
                            projectLocation(output, input),
                            arguments.to,
                            Reader::SideFiles(folderOf(input)),
                            Reader::SideFiles(folderOf(output), arguments.force),
                            !arguments.bundle.empty()};
    std::optional<Reader::FileInPlace> file;
    if (arguments.inPlace)
        file.emplace(input);
    const QByteArray bytes = file ? file->bytes() : Reader::readFile(input);
    Memory::limitFor(journey.name, bytes.size());
    Reader::Document document = Reader::parse(bytes, journey.name, arguments.from);
    Reader::Report report = Reader::migrate(document, journey);
    const auto isRefused = [&] {
        return arguments.strict && (report.hasErrors() || !report.lostClips.empty());
    };
    // A project that is not written leaves no side files either.
    journey.toBundle = journey.toBundle && !isRefused();
    if (journey.toBundle)
        makeBundle(path(arguments.bundle));
    const Reader::Serialized result = Reader::save(std::move(document), journey, report);

    Summary summary{report, journey.name, {}, {}, result.leftOut};
    if (isRefused()) {
        tell(arguments, output, summary);
        throw Reader::Error(Problem::StrictFailure,
                            journey.name.toStdString() +
                                ": not written, since --strict lets no error and no loss pass");
    }
    if (file)
        summary.backup = file->replace(result.bytes);
    else
        Reader::writeFile(output, result.bytes, forExisting(arguments));
    summary.output = isStandardStream(output) ? QStringLiteral("standard output") : output;
    tell(arguments, output, summary);
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
    useFolders(arguments);

    const Reader::Journey journey{nameOf(input),
                                  projectLocation(input, output),
                                  projectLocation(output, input),
                                  Reader::currentVersion,
                                  Reader::SideFiles(folderOf(input)),
                                  Reader::SideFiles(folderOf(output), arguments.force)};
    Reader::Document document = Reader::parse(readInput(input), journey.name, arguments.from);
    const Reader::Report report = Reader::runOne(document, arguments.step, journey);
    printLog(report);
    Reader::writeFile(output, Reader::serialize(std::move(document)).bytes, forExisting(arguments));
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
    return findings.empty() ? 0 : hasFindings;
}

int trace(const Arguments& arguments) {
    const QString input = inputFor(arguments);
    useFolders(arguments);
    const QString location = projectLocation(input, Reader::standardStream);
    Reader::Trace trace(path(arguments.folder), forExisting(arguments));
    Reader::Journey journey{nameOf(input), location, location, arguments.to,
                            Reader::SideFiles(folderOf(input))};
    journey.watch = [&](const std::string& name, const Reader::Document& document) {
        trace.note(name, document);
    };
    Reader::Document document = Reader::parse(readInput(input), journey.name, arguments.from);
    try {
        printLog(Reader::migrate(document, journey));
    } catch (const Reader::Error&) {
        std::cout << traceAsText(trace); // what led up to a step that fails is what people look for
        throw;
    }
    std::cout << traceAsText(trace);
    return 0;
}

} // namespace Commands
