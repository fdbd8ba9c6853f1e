#include "CommandLine.h"

#include "Commands.h"
#include "Messages.h"

#include <CLI/CLI.hpp>

#include <string>

namespace {

const std::string newest = std::to_string(Reader::currentVersion);

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

/// An empty name is nobody's file.
const CLI::Validator notEmpty(
    [](const std::string& name) {
        return name.empty() ? std::string("a name can't be empty") : std::string();
    },
    "", "a name");

void addMaxMemory(CLI::App* command, Arguments& arguments) {
    command
        ->add_option(
            "--max-memory", arguments.maxMemory,
            "Take no more memory than SIZE: bytes, or with K, M or G [what a project of the file's size "
            "takes at most, and three quarters of the machine's or container's]")
        ->type_name("SIZE")
        ->transform(CLI::AsSizeValue(false))
        // The last transformation comes first: a sign would pass as a number that wraps.
        ->transform(CLI::Validator(
            [](const std::string& size) {
                const bool isNumber = !size.empty() && size.front() >= '0' && size.front() <= '9';
                return isNumber ? std::string() : std::string("SIZE begins with a digit");
            },
            "", "digits"))
        ->check(CLI::Validator(
            [](const std::string& size) {
                return size == "0" ? std::string("SIZE can't be 0") : std::string();
            },
            "", "a size"));
}

CLI::Option* addFile(CLI::App* command, Arguments& arguments) {
    return command
        ->add_option("FILE", arguments.file, "The project, or the folder that holds it; - is standard input")
        ->required()
        ->check(notEmpty);
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
    command->add_option("--packages-root", arguments.packagesRoot, "The folder that #PACKAGES_ROOT# means")
        ->group(group);
    command->add_option("--ai-models-root", arguments.aiModelsRoot, "The folder that #AI_MODELS_ROOT# means")
        ->group(group);
    command
        ->add_option("--downloadable-root", arguments.downloadableRoot,
                     "The folder that #DOWNLOADABLE_ROOT# means")
        ->group(group);
}

void addMigrate(CLI::App& app, Arguments& arguments) {
    CLI::App* command = app.add_subcommand("migrate", "Bring a project to the newest schema version");
    addFile(command, arguments);
    CLI::Option* output = command->add_option(
        "-o,--output", arguments.output,
        "Where the result goes, a file or a folder; - is standard output [FILE's name with .v" + newest +
            ".json]");
    output->check(notEmpty);
    CLI::Option* inPlace =
        command->add_flag("--in-place", arguments.inPlace, "Replace FILE and keep what it was as FILE.bak");
    inPlace->excludes(output);
    command
        ->add_option("--bundle", arguments.bundle,
                     "Write to this folder, made if missing, with texts of titles that are SVG as files "
                     "beside the project")
        ->check(notEmpty)
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
    addMaxMemory(command, arguments);
    command->footer("Examples:\n"
                    "  adaptors migrate film.xml                      writes film.v" +
                    newest +
                    ".json\n"
                    "  adaptors migrate film.xml --in-place           keeps film.xml.bak\n"
                    "  adaptors migrate film.xml -o film.json --strict\n"
                    "  adaptors migrate - --from 27 < film.xml > film.json");
    command->callback([&] { throw CLI::RuntimeError(Commands::migrate(arguments)); });
}

void addSteps(CLI::App& app, Arguments& arguments) {
    CLI::App* command = app.add_subcommand("steps", "List the steps and what each does");
    command->add_option("--from", arguments.from, "Only steps above this schema version");
    command->add_option("--to", arguments.to, "Only steps up to this schema version")->capture_default_str();
    command->add_flag("--json", arguments.json, "Print JSON");
    command->footer("Example:\n  adaptors steps --from 27 --to 35");
    command->callback([&] { throw CLI::RuntimeError(Commands::steps(arguments)); });
}

void addRun(CLI::App& app, Arguments& arguments) {
    CLI::App* command =
        app.add_subcommand("run", "Run one step on a document in the form that it is in; its version stays");
    command->add_option("STEP", arguments.step, "Class name, as \"adaptors steps\" lists it")->required();
    addFile(command, arguments);
    command
        ->add_option("-o,--output", arguments.output,
                     "Where the result goes, a file or a folder [standard output]")
        ->check(notEmpty);
    command->add_flag("--force", arguments.force, "Replace an output that exists");
    addFolders(command, arguments);
    addMaxMemory(command, arguments);
    command->footer("Example:\n  adaptors run V28_ClipLabelAdaptor film.xml -o labelled.xml");
    command->callback([&] { throw CLI::RuntimeError(Commands::run(arguments)); });
}

void addInfo(CLI::App& app, Arguments& arguments) {
    CLI::App* command =
        app.add_subcommand("info", "Show what a project is and holds, and what it would need");
    addFile(command, arguments);
    addFrom(command, arguments);
    command->add_flag("--json", arguments.json, "Print JSON");
    addMaxMemory(command, arguments);
    command->footer("Example:\n  adaptors info film.xml --json");
    command->callback([&] { throw CLI::RuntimeError(Commands::info(arguments)); });
}

void addVerify(CLI::App& app, Arguments& arguments) {
    CLI::App* command = app.add_subcommand(
        "verify", "Look for faults in a document: references that lead nowhere, ids that two "
                  "objects have, wrong counts, objects that nothing declares or reaches");
    addFile(command, arguments);
    command->add_flag("--json", arguments.json, "Print JSON");
    addMaxMemory(command, arguments);
    command->footer("Exits with 17 where something is found.\nExample:\n  adaptors verify film.v" + newest +
                    ".json");
    command->callback([&] { throw CLI::RuntimeError(Commands::verify(arguments)); });
}

void addTrace(CLI::App& app, Arguments& arguments) {
    CLI::App* command = app.add_subcommand(
        "trace",
        "Migrate and write the document after each step that changed it, to find the step that broke it");
    addFile(command, arguments);
    command->add_option("--output-dir", arguments.folder, "Where the documents go; made where it is missing")
        ->required()
        ->check(notEmpty);
    addFrom(command, arguments);
    addTo(command, arguments, "The schema version to stop at");
    command->add_flag("--force", arguments.force, "Replace documents that exist");
    addFolders(command, arguments);
    addMaxMemory(command, arguments);
    command->footer("Example:\n  adaptors trace film.xml --output-dir steps --to 30");
    command->callback([&] { throw CLI::RuntimeError(Commands::trace(arguments)); });
}

} // namespace

int runCommandLine(int argc, char** argv) {
    Arguments arguments;
    CLI::App app("Brings old projects of the video editor to the newest schema version.", "adaptors");
    app.set_version_flag("--version", "adaptors " ADAPTORS_VERSION ", schema version " + newest);
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
        return app.exit(error) == 0 ? 0 : Messages::WrongUse;
    }
    return 0;
}
