#include "Reader/Error.h"
#include "Reader/Files.h"
#include "Reader/Road.h"
#include "Settings/Settings.h"
#include "Summary.h"
#include "Terminal.h"

#include <QDir>
#include <QFileInfo>
#include <QHashFunctions>

#include <CLI/CLI.hpp>
#include <glog/logging.h>

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <new>
#include <optional>
#include <string>

using Reader::Problem;

namespace {

/// A sanitizer's own memory would count as the program's.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool isSanitized = true;
#elif defined(__has_feature)
constexpr bool isSanitized = __has_feature(address_sanitizer);
#else
constexpr bool isSanitized = false;
#endif

constexpr int usageError = 2;
constexpr int hasFindings = 17;
constexpr int needsTooMuchMemory = 18;

/// What a document may take beside so much for each of its bytes. Real projects need a quarter of that; some steps make
/// large things of small ones, and a hostile document has nothing else.
constexpr rlim_t baseMemory = rlim_t(1) << 30;
constexpr rlim_t memoryPerByte = 200;

constexpr const char* exitCodes = R"(
Exit codes:
   0  done
   1  an unexpected failure
   2  wrong use: options, an unknown step
   3  the input can't be read             4  the input is empty
   5  neither XML nor JSON                6  broken XML
   7  broken JSON                         8  not one <Archive>, or its root object is missing
   9  XML that is refused: document type declarations, foreign encodings, hostile shapes
  10  JSON that is no project             11  no usable schema version: give --from N
  12  a version that can't be migrated    13  a step failed
  14  --strict: a step reported an error or a clip was lost; nothing was written
  15  the output can't be written         16  the output exists: give --force
  17  verify found something             18  more memory is needed than any project takes)";

/// What the command line said.
struct Arguments {
    std::string file;
    std::string output;
    std::string step;
    std::string bundle;
    std::string folder;
    std::string packagesRoot;
    std::string aiModelsRoot;
    std::string downloadableRoot;
    std::optional<int> from;
    int to = Reader::currentVersion;
    bool force = false;
    bool inPlace = false;
    bool strict = false;
    bool json = false;
};

QString path(const std::string& text) {
    return QString::fromLocal8Bit(text.c_str());
}

bool isStandardStream(const QString& file) {
    return file == Reader::standardStream;
}

QString nameOf(const QString& file) {
    return isStandardStream(file) ? QStringLiteral("standard input") : file;
}

/// Tells things to people, and to programs that asked for JSON: on standard output unless the document is there.
void tell(const Arguments& arguments, const QString& output, const Summary& summary) {
    if (!arguments.json)
        std::cerr << asText(summary);
    else
        (isStandardStream(output) ? std::cerr : std::cout) << asJson(summary);
}

/// The project file in a folder: the one .xml or .json file there.
QString projectIn(const QString& folder) {
    const QStringList names =
        QDir(folder).entryList({QStringLiteral("*.xml"), QStringLiteral("*.json")}, QDir::Files, QDir::Name);
    if (names.size() != 1)
        throw Reader::Error(Problem::Unreadable,
                            folder.toStdString() +
                                ": a project's folder holds one .xml or .json file, this one " +
                                std::to_string(names.size()) + "; name the file");
    return QDir(folder).filePath(names.front());
}

/// The project's file, for a folder that holds a project too.
QString inputFor(const Arguments& arguments) {
    const QString input = path(arguments.file);
    return QFileInfo(input).isDir() ? projectIn(input) : input;
}

/// The folder that side files are looked up in and written to.
QString folderOf(const QString& file) {
    return isStandardStream(file) ? QString() : QFileInfo(file).absolutePath();
}

/// Where the result goes: as told, in the input's place, or beside it under the version's name.
QString outputFor(const Arguments& arguments, const QString& input) {
    if (arguments.inPlace)
        return input;
    if (!arguments.output.empty())
        return path(arguments.output);
    if (isStandardStream(input) && arguments.bundle.empty())
        return Reader::standardStream;
    const QFileInfo file(arguments.bundle.empty()
                             ? input
                             : QDir(path(arguments.bundle))
                                   .filePath(isStandardStream(input) ? QStringLiteral("project")
                                                                     : QFileInfo(input).fileName()));
    const char* suffix = arguments.to > Reader::lastXmlVersion ? "json" : "xml";
    const QString name =
        QStringLiteral("%1.v%2.%3").arg(file.completeBaseName()).arg(arguments.to).arg(suffix);
    return file.path() == QLatin1String(".") ? name : file.path() + QLatin1Char('/') + name;
}

/// Makes the folder of a bundle where it is missing, but not the one that it stands in.
void makeBundle(const QString& folder) {
    if (!QFileInfo(folder).isDir() && !QDir().mkdir(folder))
        throw Reader::Error(Problem::Unwritable,
                            folder.toStdString() +
                                ": can't make this folder; is the one that it stands in there?");
}

void refuseExisting(const Arguments& arguments, const QString& output) {
    const bool exists = QFileInfo::exists(output) || QFileInfo(output).isSymLink();
    if (!isStandardStream(output) && !arguments.inPlace && !arguments.force && exists)
        throw Reader::Error(Problem::OutputExists,
                            output.toStdString() +
                                ": exists already; give --force to replace it, or -o another name");
}

Reader::Existing forExisting(const Arguments& arguments) {
    return arguments.force ? Reader::Existing::Replace : Reader::Existing::Refuse;
}

/// Paths inside a project count from the folder of its file; from the working folder where there is no file.
QString projectLocation(const QString& file, const QString& otherwise) {
    if (!isStandardStream(file))
        return file;
    return isStandardStream(otherwise) ? QStringLiteral("project") : otherwise;
}

/// What is said where memory runs out. It stands ready: nothing can be made then.
std::string outOfMemory;

int complain(const std::string& text, int code) {
    std::cerr << "adaptors: " << Terminal::red("error") << ": " << text << '\n';
    return code;
}

/// Ends the program at once. An exception would let go of what there is, and letting go takes memory too.
[[noreturn]] void endWithoutMemory() {
    static_cast<void>(!::write(STDERR_FILENO, outOfMemory.data(), outOfMemory.size()));
    std::_Exit(needsTooMuchMemory);
}

/// From here on the program can't take more memory than a document of that size may.
void limitMemory(const QString& name, qint64 size) {
    outOfMemory =
        "adaptors: error: " + name.toStdString() +
        ": the document needs more memory than any project of its size takes; nothing was written\n";
    std::set_new_handler(endWithoutMemory);
    rlimit limit = {};
    if (isSanitized || getrlimit(RLIMIT_DATA, &limit) != 0)
        return;
    limit.rlim_cur = std::min(limit.rlim_cur, baseMemory + memoryPerByte * static_cast<rlim_t>(size));
    setrlimit(RLIMIT_DATA, &limit);
}

QByteArray readInput(const QString& input) {
    QByteArray bytes = Reader::readFile(input);
    limitMemory(nameOf(input), bytes.size());
    return bytes;
}

void useFolders(const Arguments& arguments) {
    Settings::setLegacyPackageDeploymentPath(path(arguments.packagesRoot));
    Settings::setAiModelsPath(path(arguments.aiModelsRoot));
    Settings::setDownloadableResourcesPath(path(arguments.downloadableRoot));
    Reader::useStandInFolders();
}

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
    limitMemory(journey.name, bytes.size());
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

void printLog(const Reader::Report& report) {
    for (const Reader::LogLine& line : report.log)
        std::cerr << (line.isError() ? Terminal::red("error") : Terminal::yellow("warning")) << ": "
                  << line.step << ": " << line.text << '\n';
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

int steps(const Arguments& arguments) {
    const int from = arguments.from.value_or(0);
    std::cout << (arguments.json ? stepsAsJson(from, arguments.to) : stepsAsText(from, arguments.to));
    return 0;
}

CLI::Option* addFile(CLI::App* command, Arguments& arguments) {
    return command
        ->add_option("FILE", arguments.file, "The project, or the folder that holds it; - is standard input")
        ->required();
}

void addFrom(CLI::App* command, Arguments& arguments) {
    command
        ->add_option("--from", arguments.from,
                     "The document's schema version, whatever it says itself (older files don't say)")
        ->check(CLI::Range(0, Reader::currentVersion));
}

void addTo(CLI::App* command, Arguments& arguments, const std::string& help) {
    command->add_option("--to", arguments.to, help)
        ->check(CLI::Range(0, Reader::currentVersion))
        ->capture_default_str();
}

void addFolders(CLI::App* command, Arguments& arguments) {
    const char* group = "Folders of the installed editor (unset, markers in paths stay as they are)";
    command->add_option("--packages-root", arguments.packagesRoot, "What #PACKAGES_ROOT# stands for")
        ->group(group);
    command->add_option("--ai-models-root", arguments.aiModelsRoot, "What #AI_MODELS_ROOT# stands for")
        ->group(group);
    command
        ->add_option("--downloadable-root", arguments.downloadableRoot, "What #DOWNLOADABLE_ROOT# stands for")
        ->group(group);
}

void addMigrate(CLI::App& app, Arguments& arguments) {
    CLI::App* command = app.add_subcommand("migrate", "Bring a project to the newest schema version");
    addFile(command, arguments);
    CLI::Option* output =
        command->add_option("-o,--output", arguments.output,
                            "Where the result goes; - is standard output [FILE's name with .v77.json]");
    CLI::Option* inPlace =
        command->add_flag("--in-place", arguments.inPlace, "Replace FILE and keep what it was as FILE.bak");
    inPlace->excludes(output);
    command
        ->add_option("--bundle", arguments.bundle,
                     "Write to this folder, made if missing, with texts of titles that are SVG as files "
                     "beside the project")
        ->excludes(output)
        ->excludes(inPlace);
    command->add_flag("--force", arguments.force, "Replace an output that exists");
    addFrom(command, arguments);
    addTo(command, arguments, "The schema version to stop at: up to 62 an XML archive, from 63 on JSON");
    command->add_flag("--strict", arguments.strict,
                      "Write nothing where a step reports an error or a clip is lost");
    command->add_flag(
        "--json", arguments.json,
        "Print the summary as JSON on standard output (standard error where the project goes there)");
    addFolders(command, arguments);
    command->footer("Examples:\n"
                    "  adaptors migrate film.xml                      writes film.v77.json\n"
                    "  adaptors migrate film.xml --in-place           keeps film.xml.bak\n"
                    "  adaptors migrate film.xml -o new/film.json --strict\n"
                    "  adaptors migrate - --from 27 < film.xml > film.json");
    command->callback([&] { throw CLI::RuntimeError(migrate(arguments)); });
}

void addSteps(CLI::App& app, Arguments& arguments) {
    CLI::App* command = app.add_subcommand("steps", "List the steps of the chain and what each does");
    command->add_option("--from", arguments.from, "Only steps above this schema version");
    command->add_option("--to", arguments.to, "Only steps up to this schema version")->capture_default_str();
    command->add_flag("--json", arguments.json, "Print JSON");
    command->footer("Example:\n  adaptors steps --from 27 --to 35");
    command->callback([&] { throw CLI::RuntimeError(steps(arguments)); });
}

void addRun(CLI::App& app, Arguments& arguments) {
    CLI::App* command =
        app.add_subcommand("run", "Run one step on a document in the form that it is in; its version stays");
    command->add_option("STEP", arguments.step, "Class name, as \"adaptors steps\" lists it")->required();
    addFile(command, arguments);
    command->add_option("-o,--output", arguments.output, "Where the result goes [standard output]");
    command->add_flag("--force", arguments.force, "Replace an output that exists");
    addFolders(command, arguments);
    command->footer("Example:\n  adaptors run V28_ClipLabelAdaptor film.xml -o labelled.xml");
    command->callback([&] { throw CLI::RuntimeError(run(arguments)); });
}

void addInfo(CLI::App& app, Arguments& arguments) {
    CLI::App* command =
        app.add_subcommand("info", "Tell what a project is and holds, and what it would need");
    addFile(command, arguments);
    addFrom(command, arguments);
    command->add_flag("--json", arguments.json, "Print JSON");
    command->footer("Example:\n  adaptors info film.xml --json");
    command->callback([&] { throw CLI::RuntimeError(info(arguments)); });
}

void addVerify(CLI::App& app, Arguments& arguments) {
    CLI::App* command = app.add_subcommand(
        "verify", "Look for faults in a document: references that lead nowhere, ids that two "
                  "objects have, wrong counts, objects that nothing declares or reaches");
    addFile(command, arguments);
    command->add_flag("--json", arguments.json, "Print JSON");
    command->footer("Exits with 17 where something is found.\nExample:\n  adaptors verify film.v77.json");
    command->callback([&] { throw CLI::RuntimeError(verify(arguments)); });
}

void addTrace(CLI::App& app, Arguments& arguments) {
    CLI::App* command = app.add_subcommand(
        "trace",
        "Migrate and write the document after each step that changed it, to find the step that broke it");
    addFile(command, arguments);
    command->add_option("--output-dir", arguments.folder, "Where the documents go; made where it is missing")
        ->required();
    addFrom(command, arguments);
    addTo(command, arguments, "The schema version to stop at");
    command->add_flag("--force", arguments.force, "Replace documents that exist");
    addFolders(command, arguments);
    command->footer("Example:\n  adaptors trace film.xml --output-dir steps --to 30");
    command->callback([&] { throw CLI::RuntimeError(trace(arguments)); });
}

int runProgram(int argc, char** argv) {
    Arguments arguments;
    CLI::App app("Brings old projects of the video editor to the newest schema version.", "adaptors");
    app.set_version_flag("--version", "adaptors " ADAPTORS_VERSION ", schema version " +
                                          std::to_string(Reader::currentVersion));
    app.require_subcommand(1);
    app.set_help_all_flag("--help-all", "Help for all commands");
    app.footer(std::string("Example:\n  adaptors migrate film.xml\n") + exitCodes);
    addMigrate(app, arguments);
    addSteps(app, arguments);
    addRun(app, arguments);
    addInfo(app, arguments);
    addVerify(app, arguments);
    addTrace(app, arguments);
    try {
        app.parse(argc, argv);
    } catch (const CLI::RuntimeError& done) {
        return done.get_exit_code();
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? 0 : usageError;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    // Qt orders attributes by a hash: the same input gives the same bytes only with a fixed seed.
    qSetGlobalQHashSeed(0);
    // Log lines of steps reach people through the summary; glog writes no files and nothing of its own.
    FLAGS_stderrthreshold = google::NUM_SEVERITIES;
    for (int severity = 0; severity < google::NUM_SEVERITIES; ++severity)
        google::SetLogDestination(severity, "");
    google::InitGoogleLogging(argv[0]);
    std::signal(SIGXFSZ, SIG_IGN); // a file that grows too large is an error to report, not the end
    try {
        return runProgram(argc, argv);
    } catch (const Reader::Error& error) {
        return complain(error.what(), static_cast<int>(error.problem()));
    } catch (const std::bad_alloc&) {
        endWithoutMemory();
    } catch (const std::exception& error) {
        return complain(error.what(), 1);
    }
}
