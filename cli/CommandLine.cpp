#include "CommandLine.h"

#include "Commands.h"
#include "Completions.h"
#include "Failures.h"
#include "Help.h"
#include "ManPage.h"
#include "Messages.h"
#include "Names.h"
#include "Output.h"
#include "Reader/Error.h"
#include "Terminal.h"
#include "batch/Batch.h"
#include "batch/CommandOptions.h"
#include "batch/Worker.h"

#include <CLI/CLI.hpp>

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <iostream>
#include <new>
#include <optional>
#include <string>
#include <vector>

namespace {

const std::string newest = std::to_string(Reader::currentVersion);

constexpr const char* exitCodes = R"(
Exit codes:
 0	done
 1	an unexpected failure
 2	wrong use: options, an unknown step
 3	the input can't be read
 4	the input is empty
 5	neither XML nor JSON
 6	broken XML
 7	broken JSON
 8	not one <Archive>, or its root object is missing
 9	XML that is refused: document type declarations, foreign encodings, hostile shapes
10	JSON that is no project
11	no usable schema version: give --from N
12	a version that can't be migrated
13	a step failed
14	--strict or --check: a step reported an error or something was lost; nothing was written
15	the output can't be written
16	the output exists: give --force
17	verify found something
18	more memory is needed than any project takes
19	--check: the project would be migrated without a loss
20	batch: files failed, or results are not whole
21	diff found a difference
22	written, but something of the project is missing in the result)";

// Values

/// What the parser gives for a flag without a value.
constexpr const char* strictFlag = "true";

/// Refuses an empty name.
std::string checkName(const CLI::Option& option, const std::string& value) {
    if (value.empty())
        throw Messages::Failure(Messages::emptyValue(option.get_name()));
    return {};
}

std::string checkVersion(const CLI::Option& option, const std::string& value) {
    int version = -1;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), version);
    const bool isNumber = error == std::errc() && end == value.data() + value.size();
    if (!isNumber || version < 0 || version > Reader::currentVersion)
        throw Messages::Failure(
            Messages::badValue(option.get_name(), value, "a schema version from 0 to " + newest));
    return {};
}

std::optional<Terminal::ColourChoice> colourChoice(const std::string& value) {
    if (value == "auto")
        return Terminal::ColourChoice::Auto;
    if (value == "always")
        return Terminal::ColourChoice::Always;
    if (value == "never")
        return Terminal::ColourChoice::Never;
    return std::nullopt;
}

/// An option or argument that takes the name of a file, a folder or a step.
CLI::Option* addName(CLI::App& command, const std::string& names, std::string& value, const std::string& type,
                     const std::string& help) {
    CLI::Option* option = command.add_option(names, value, help)->type_name(type);
    return option->check([option](const std::string& text) { return checkName(*option, text); }, "");
}

template <class Version>
void addVersion(CLI::App& command, const std::string& name, Version& value, const std::string& help) {
    CLI::Option* option = command.add_option(name, value, help)->type_name("N");
    option->check([option](const std::string& text) { return checkVersion(*option, text); }, "");
}

// Options of several commands

void addFile(CLI::App& command, Arguments& arguments) {
    addName(command, "FILE", arguments.file, "FILE",
            "The project, or the folder that holds it; - is standard input")
        ->required();
}

/// Whether the text is a size above 0, which is replaced by its number of bytes.
bool replaceByBytes(std::string& size) {
    if (size.empty() || size.front() < '0' || size.front() > '9')
        return false; // a sign would pass as a number that wraps
    try {
        return CLI::AsSizeValue(false)(size).empty() && size != "0";
    } catch (const CLI::Error&) {
        return false; // an unknown unit, or too many bytes for a number
    }
}

void addMaxMemory(CLI::App& command, Arguments& arguments) {
    CLI::Option* option = command.add_option("--max-memory", arguments.maxMemory,
                                             "Take no more memory than SIZE: bytes, or with K, M or G [what "
                                             "a project of the file's size takes at most, and "
                                             "three quarters of the machine's or container's]");
    option->type_name("SIZE")->transform(CLI::Validator(
        [](std::string& size) {
            std::string bytes = size;
            if (!replaceByBytes(bytes))
                throw Messages::Failure(Messages::badValue("--max-memory", size, "a size such as 500M"));
            size = bytes;
            return std::string();
        },
        "", "size"));
}

void addFrom(CLI::App& command, Arguments& arguments) {
    addVersion(command, "--from", arguments.from,
               "The document's schema version, whatever it says itself (older files don't say)");
}

void addTo(CLI::App& command, Arguments& arguments, const std::string& help) {
    addVersion(command, "--to", arguments.to, help + " [" + newest + "]");
}

void addRepair(CLI::App& command, Arguments& arguments) {
    command.add_flag(
        "--repair", arguments.repair,
        "Recover a damaged file, repair what the steps can't pass or would lose, and list what was done; "
        "\"adaptors repairs\" lists all repairs");
}

void addFolders(CLI::App& command, Arguments& arguments) {
    const char* group = "Folders of the installed editor (unset, markers in paths stay as they are)";
    addName(command, "--packages-root", arguments.packagesRoot, "DIR",
            "The folder that #PACKAGES_ROOT# means")
        ->group(group);
    addName(command, "--ai-models-root", arguments.aiModelsRoot, "DIR",
            "The folder that #AI_MODELS_ROOT# means")
        ->group(group);
    addName(command, "--downloadable-root", arguments.downloadableRoot, "DIR",
            "The folder that #DOWNLOADABLE_ROOT# means")
        ->group(group);
}

// Options of each command

/// A flag, so that the word behind it is not taken for its value: "--strict" or "--strict=all".
void addStrict(CLI::App& command, Arguments& arguments) {
    CLI::Option* option = command.add_flag("--strict", arguments.strict,
                                           "Write nothing where a step reports an error, or something is "
                                           "lost that the version did not mean to remove; "
                                           "with =all also where anything is removed");
    option->check(
        [](const std::string& value) {
            if (value != strictFlag && value != "all")
                throw Messages::Failure(Messages::badValue("--strict", value, "all, or no value"));
            return std::string();
        },
        "");
}

void addMigrate(CLI::App& command, Arguments& arguments) {
    addFile(command, arguments);
    CLI::Option* output =
        addName(command, "-o,--output", arguments.output, "FILE",
                "Where the result goes, a file or a folder; - is standard output [FILE's name with .v" +
                    newest + ".json]");
    CLI::Option* inPlace =
        command.add_flag("--in-place", arguments.inPlace, "Replace FILE and keep what it was as FILE.bak");
    inPlace->excludes(output);
    addName(command, "--bundle", arguments.bundle, "DIR",
            "Write to this folder, made if missing, with texts of titles that are SVG as files beside the "
            "project")
        ->excludes(output)
        ->excludes(inPlace);
    command.add_flag("--force", arguments.force, "Replace an output that exists");
    addFrom(command, arguments);
    addTo(command, arguments, "The schema version to stop at: up to 62 an XML archive, from 63 on JSON");
    addRepair(command, arguments);
    addStrict(command, arguments);
    command
        .add_flag(
            "--check", arguments.check,
            "Write nothing, and say by the exit code what a migration would do: 0 nothing to do, 19 it would "
            "migrate, 14 it would lose something")
        ->excludes(output)
        ->excludes(inPlace)
        ->excludes("--bundle");
    addFolders(command, arguments);
    addMaxMemory(command, arguments);
    command.footer("Examples:\n"
                   "adaptors migrate film.xml\twrites film.v" +
                   newest +
                   ".json\n"
                   "adaptors migrate film.xml --in-place\tkeeps film.xml.bak\n"
                   "adaptors migrate film.xml -o film.json --strict\t\n"
                   "adaptors migrate film.xml --check\twrites nothing\n"
                   "adaptors migrate film.xml --repair\twhere it fails or loses something without\n"
                   "adaptors migrate - --from 27 < film.xml > film.json\t");
}

void addSteps(CLI::App& command, Arguments& arguments) {
    addVersion(command, "--from", arguments.from, "Only steps above this schema version");
    addTo(command, arguments, "Only steps up to this schema version");
    command.footer("Example:\nadaptors steps --from 27 --to 35\t");
}

void addRun(CLI::App& command, Arguments& arguments) {
    addName(command, "STEP", arguments.step, "STEP",
            "Class name as \"adaptors steps\" lists it, or a beginning of it that no other has")
        ->required();
    addFile(command, arguments);
    addName(command, "-o,--output", arguments.output, "FILE", "Where the result goes [standard output]");
    command.add_flag("--force", arguments.force, "Replace an output that exists");
    addRepair(command, arguments);
    addFolders(command, arguments);
    addMaxMemory(command, arguments);
    command.footer("Examples:\n"
                   "adaptors run V28_ClipLabelAdaptor film.xml -o labelled.xml\t\n"
                   "adaptors run V28 film.xml > labelled.xml\tthe same");
}

void addInfo(CLI::App& command, Arguments& arguments) {
    addFile(command, arguments);
    addFrom(command, arguments);
    command.add_flag("--timeline", arguments.timeline, "Draw the timelines with their clips as well");
    addMaxMemory(command, arguments);
    command.footer(
        "Examples:\nadaptors info film.xml\t\nadaptors info film.xml --timeline\twith a picture of the "
        "film\nadaptors info film.xml --json\tfor programs");
}

void addVerify(CLI::App& command, Arguments& arguments) {
    addFile(command, arguments);
    command
        .add_option_function<std::string>(
            "--fail-on",
            [&arguments](const std::string& value) {
                const auto severity = Reader::severityNamed(value);
                if (!severity)
                    throw Messages::Failure(Messages::badValue("--fail-on", value, "error, warning or note"));
                arguments.failOn = *severity;
            },
            "The least severity that makes the exit code 17: error, warning or note [error]")
        ->type_name("SEVERITY");
    addMaxMemory(command, arguments);
    command.footer("Exits with 17 where something is found that is as bad as --fail-on "
                   "says.\n\nExample:\nadaptors verify film.v" +
                   newest + ".json\t");
}

void addTrace(CLI::App& command, Arguments& arguments) {
    addFile(command, arguments);
    addName(command, "--output-dir", arguments.folder, "DIR",
            "Where the documents go; made where it is missing (required)")
        ->required();
    addFrom(command, arguments);
    addTo(command, arguments, "The schema version to stop at");
    command.add_flag("--diff", arguments.diff,
                     "Write what changed, as \"diff -u\" shows it, beside each document");
    command.add_flag("--force", arguments.force, "Replace documents that exist");
    addRepair(command, arguments);
    addFolders(command, arguments);
    addMaxMemory(command, arguments);
    command.footer("Examples:\nadaptors trace film.xml --output-dir steps --to 30\t\n"
                   "adaptors trace film.xml --output-dir steps --diff\twith a .diff beside each document");
}

void addDiff(CLI::App& command, Arguments& arguments) {
    addName(command, "OLD", arguments.file, "OLD",
            "The project as it was, or the folder that holds it; - is standard input")
        ->required();
    addName(command, "NEW", arguments.otherFile, "NEW", "The project as it is now, of any form and version")
        ->required();
    command.add_flag(
        "--raw", arguments.raw,
        "Compare the documents as they are; without it the older one is migrated in memory first");
    addRepair(command, arguments);
    addFolders(command, arguments);
    addMaxMemory(command, arguments);
    command.footer("Exits with 0 where there is no difference, and with 21 where there is one.\n\n"
                   "Examples:\nadaptors diff film.xml film.v" +
                   newest + ".json\twhat was edited since the migration\nadaptors diff film.xml film.v" +
                   newest + ".json --json\t");
}

void addExplain(CLI::App& command, Arguments& arguments) {
    addFile(command, arguments);
    addName(command, "--step", arguments.step, "STEP",
            "Only this step: a class name, or a beginning of it that no other has");
    addName(command, "--clip", arguments.clip, "CLIP",
            "Only what was done to the clips of this name or id, and to what belongs to them");
    addRepair(command, arguments);
    addFrom(command, arguments);
    addTo(command, arguments, "The schema version to stop at");
    addFolders(command, arguments);
    addMaxMemory(command, arguments);
    command.footer("Examples:\nadaptors explain film.xml\t\nadaptors explain film.xml --step V28\tone step\n"
                   "adaptors explain film.xml --clip Beach\tone clip");
}

void addTimeline(CLI::App& command, Arguments& arguments) {
    addFile(command, arguments);
    addName(command, "-o,--output", arguments.output, "FILE", "Where the picture goes [standard output]");
    command.add_flag("--force", arguments.force, "Replace an output that exists");
    addFrom(command, arguments);
    addMaxMemory(command, arguments);
    command.footer(
        "Examples:\nadaptors timeline film.xml -o film.svg\t\nadaptors timeline film.xml > film.svg\t");
}

void addReport(CLI::App& command, Arguments& arguments) {
    addFile(command, arguments);
    addName(command, "-o,--output", arguments.output, "FILE",
            "Where the page goes, a file or a folder; - is standard output [FILE's name with .html]");
    command.add_flag("--force", arguments.force, "Replace a page that exists");
    addFrom(command, arguments);
    addTo(command, arguments, "The schema version to stop at");
    addRepair(command, arguments);
    addFolders(command, arguments);
    addMaxMemory(command, arguments);
    command.footer(
        "Writes no project. Exits as migrate does: with 0 where the result would be whole, and with 22 where "
        "something would be missing.\n\n"
        "Examples:\n"
        "adaptors report film.xml\twrites film.html\n"
        "adaptors report film.xml -o page.html --force\t\n"
        "adaptors report - -o - < film.xml > film.html\t");
}

void addExport(CLI::App& command, Arguments& arguments) {
    addFile(command, arguments);
    addName(command, "-o,--output", arguments.output, "FILE",
            "Where the timeline goes, a file or a folder; - is standard output [FILE's name with .otio]");
    CLI::Option* format = command.add_option("--format", arguments.exchangeFormat,
                                             "What to write: otio, OpenTimelineIO [otio]");
    format->type_name("FORMAT")->check(
        [](const std::string& value) {
            if (value != "otio")
                throw Messages::Failure(Messages::badValue("--format", value, "otio"));
            return std::string();
        },
        "");
    command.add_flag("--force", arguments.force, "Replace an output that exists");
    addFrom(command, arguments);
    addRepair(command, arguments);
    addStrict(command, arguments);
    addFolders(command, arguments);
    addMaxMemory(command, arguments);
    command.footer(
        "Writes no project. What the format has no words for is in its metadata, and is listed. Exits as "
        "migrate does: with 0 where the migrated project is whole, and with 22 where something of it is "
        "missing.\n\n"
        "Examples:\n"
        "adaptors export film.xml\twrites film.otio\n"
        "adaptors export film.xml -o cut.otio --force\t\n"
        "adaptors export - -o - < film.xml > film.otio\t");
}

void addRestore(CLI::App& command, Arguments& arguments) {
    addName(command, "FILE", arguments.file, "FILE",
            "The project whose backup is put back, or the folder that holds it")
        ->required();
    command.add_flag("--list", arguments.list, "List the backups, the newest first, and change nothing");
    command.footer("What FILE was before takes the backup's name, so the same command undoes it.\n\n"
                   "Examples:\n"
                   "adaptors restore film.xml --list\tthe backups of film.xml\n"
                   "adaptors restore film.xml\tputs the newest one back");
}

void addRepairs(CLI::App& command, Arguments&) {
    command.footer(
        "migrate, batch, report, export, run, trace, diff and explain make them with --repair, where the "
        "document needs them, and recover damaged files.\n\n"
        "Examples:\nadaptors repairs\t\nadaptors repairs --json\tfor programs");
}

/// The options of `migrate` that hold for each file of a batch; workers get them all.
void addOptionsForEachFile(CLI::App& command, Arguments& arguments) {
    command.add_flag("--in-place", arguments.inPlace,
                     "Replace the files and keep what they were as FILE.bak");
    command.add_flag("--check", arguments.check, "Write no project, and say what a migration would do");
    addRepair(command, arguments);
    addFrom(command, arguments);
    addTo(command, arguments, "The schema version to stop at: up to 62 an XML archive, from 63 on JSON");
    addStrict(command, arguments);
    addFolders(command, arguments);
    addMaxMemory(command, arguments);
}

void addBatch(CLI::App& command, Arguments& arguments) {
    addOptionsForEachFile(command, arguments);
    Batch::addOptions(command, arguments);
}

void addBatchWorker(CLI::App& command, Arguments& arguments) {
    addOptionsForEachFile(command, arguments);
    command.group(Help::hidden);
}

struct Command {
    const char* name;
    const char* description;
    void (*addOptions)(CLI::App& command, Arguments& arguments);
    int (*run)(const Arguments& arguments, Output& output);
};

constexpr Command commands[] = {
    {"migrate", "Bring a project to the newest schema version", addMigrate, Commands::migrate},
    {"steps", "List the steps and what each does", addSteps, Commands::steps},
    {"run", "Run one step on a document in the form that it is in; its version stays", addRun, Commands::run},
    {"info", "Show what a project is and holds, and what it would need", addInfo, Commands::info},
    {"verify",
     "Look for faults in a document: references that lead nowhere, ids that two objects have, wrong "
     "counts, "
     "objects that nothing declares or reaches",
     addVerify, Commands::verify},
    {"trace",
     "Migrate and write the document after each step that changed it, to find the step that broke it",
     addTrace, Commands::trace},
    {"restore", "Put the newest backup of a project back in its place", addRestore, Commands::restore},
    {"repairs", "List the repairs that --repair makes where a document needs them", addRepairs,
     Commands::repairs},
    {"batch", "Migrate all projects below folders, on all cores; can be stopped and taken up again", addBatch,
     Batch::run},
    {"batch-worker", "Migrate the files that a batch names on standard input", addBatchWorker, Batch::work},
    {"diff", "Compare two projects and say what is different, in the words of the project", addDiff,
     Commands::diff},
    {"explain", "Migrate in memory and say what each step did to this project", addExplain,
     Commands::explain},
    {"timeline", "Draw the timelines of a project as an SVG picture", addTimeline, Commands::timeline},
    {"report", "Migrate in memory and write a page about it: timelines before and after, steps, losses",
     addReport, Commands::report},
    {"export", "Migrate in memory and write the timeline for other editors, as OpenTimelineIO", addExport,
     Commands::exportTimeline},
};

void addOptionsForEveryCommand(CLI::App& app, OutputOptions& options) {
    const char* group = "Options for every command";
    app.set_help_flag("-h,--help", "Show help and do nothing else")->group(group);
    app.set_help_all_flag("--help-all", "Show the help of all commands")->group(group);
    app.set_version_flag("-V,--version", "adaptors " ADAPTORS_VERSION ", schema version " + newest,
                         "Show the program's version")
        ->group(group);
    app.add_flag("-q,--quiet", options.quiet, "Say nothing but errors on standard error")->group(group);
    app.add_flag("-v,--verbose", options.verbose, "Say more: list the steps that ran")->group(group);
    CLI::Option* colour = app.add_option_function<std::string>(
        "--color",
        [&options](const std::string& value) {
            const auto choice = colourChoice(value);
            if (!choice)
                throw Messages::Failure(Messages::badValue("--color", value, "auto, always or never"));
            options.colour = *choice;
        },
        "Colours on standard error: auto, always or never [auto: on a terminal]");
    colour->type_name("WHEN")->take_last()->group(group);
    app.add_flag("--json", options.json,
                 "Print one JSON object for programs, on standard output (standard error where the project "
                 "goes there), and nothing else")
        ->group(group);
}

/// The command line as CLI11 parses it, and the values that it fills.
struct Parser {
    CLI::App app{"Brings old projects of the video editor to the newest schema version.", "adaptors"};
    Arguments arguments;
    OutputOptions options;
    CLI::App* help = nullptr;
    std::string helpTopic;
    std::string installedFile;

    Parser() {
        addOptionsForEveryCommand(app, options);
        // Without a group it is hidden: the build makes the files with it that are installed with the program.
        addName(app, "--generate", installedFile, "NAME", "Print a file that is installed with the program")
            ->group("");
        app.require_subcommand(0, 1);
        app.fallthrough(); // commands inherit it: options for every command may follow a command
        app.footer(std::string("Examples:\nadaptors migrate film.xml\t\nadaptors help migrate\t\n") +
                   exitCodes);
        for (const Command& command : commands)
            command.addOptions(*app.add_subcommand(command.name, command.description), arguments);
        help = app.add_subcommand("help", "Show the help of the program or of a command");
        help->add_option("COMMAND", helpTopic, "A command [the whole program]");
        help->footer("Example:\nadaptors help migrate\t");
    }
};

/// The name of the command; empty for none.
std::string commandIn(const CLI::App& app) {
    const auto found = app.get_subcommands();
    return found.empty() ? std::string() : found.front()->get_name();
}

// What is wrong with a command line

/// "--to" and "-o" for all options that the command knows, those for every command too.
std::vector<std::string> optionNames(const CLI::App& app, const std::string& command) {
    std::vector<std::string> names;
    const auto add = [&names](const CLI::App& from) {
        for (const CLI::Option* option : from.get_options()) {
            if (option->get_group().empty())
                continue;
            for (const std::string& name : option->get_lnames())
                names.push_back("--" + name);
        }
    };
    if (!command.empty())
        add(*app.get_subcommand(command));
    add(app);
    return names;
}

std::vector<std::string> commandNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* command : Help::listedCommands(app))
        names.push_back(command->get_name());
    return names;
}

Messages::Message unknownCommand(const CLI::App& app, const std::string& word) {
    return Messages::unknownCommand(word, Names::nearest(word, commandNames(app)));
}

/// "STEP FILE"
std::string argumentsOf(const CLI::App& command) {
    std::string names;
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_positional())
            names += (names.empty() ? "" : " ") + option->get_name(true);
    }
    return names;
}

/// What is said of words that belong to nothing; none where there are none.
std::optional<Messages::Message> messageForExtras(const CLI::App& app, const std::string& command) {
    const std::vector<std::string> extras = app.remaining(true);
    const auto option = std::find_if(extras.begin(), extras.end(), [](const std::string& word) {
        return word.size() > 1 && word.front() == '-' && word != "--";
    });
    if (command.empty() && !extras.empty() && option != extras.begin())
        return unknownCommand(app, extras.front());
    if (option != extras.end()) {
        const std::string name = option->substr(0, option->find('='));
        return Messages::unknownOption(name, command, Names::nearest(name, optionNames(app, command)));
    }
    if (!extras.empty())
        return Messages::oneArgumentTooMany(extras.front(), command,
                                            argumentsOf(*app.get_subcommand(command)));
    return std::nullopt;
}

/// What is missing, given too often, or given together with what excludes it.
std::optional<Messages::Message> messageForOptions(const CLI::App& app, const std::string& command) {
    if (command.empty())
        return std::nullopt;
    for (const CLI::Option* option : app.get_subcommand(command)->get_options()) {
        if (option->get_required() && option->count() == 0)
            return Messages::missingArgument(option->get_positional()
                                                 ? option->get_name(true)
                                                 : option->get_name() + ' ' + option->get_type_name(),
                                             command);
        if (option->get_type_size() != 0 && option->count() > 1 && option->get_items_expected_max() == 1)
            return Messages::givenTwice(option->get_name());
        for (const CLI::Option* other : option->get_excludes()) {
            if (option->count() > 0 && other->count() > 0)
                return Messages::excludeEachOther(option->get_name(), other->get_name());
        }
    }
    return std::nullopt;
}

Messages::Message messageFor(const CLI::App& app, const CLI::ParseError& error) {
    const std::string command = commandIn(app);
    const std::string reason = error.what();
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) && reason.find(" missing") != std::string::npos)
        return Messages::missingValue(reason.substr(0, reason.find(':')), command);
    if (auto message = messageForExtras(app, command))
        return *message;
    if (auto message = messageForOptions(app, command))
        return *message;
    return Messages::otherWrongUse(reason, command);
}

/// For a command line that is wrong: what it says of how errors are shown.
OutputOptions optionsForErrors(const std::vector<std::string>& words) {
    OutputOptions options;
    const std::string colour = "--color";
    for (std::size_t i = 0; i < words.size() && words[i] != "--"; ++i) {
        const std::string& word = words[i];
        options.json = options.json || word == "--json";
        const bool isBehind = word == colour && i + 1 < words.size();
        if (isBehind || word.starts_with(colour + '='))
            options.colour = colourChoice(isBehind ? words[i + 1] : word.substr(colour.size() + 1))
                                 .value_or(options.colour);
    }
    return options;
}

/// An option like "--output=" takes nothing, rather than the word behind it.
void refuseMissingValues(const std::vector<std::string>& words, const std::vector<std::string>& names) {
    const auto command = std::find_first_of(words.begin(), words.end(), names.begin(), names.end());
    const auto end = std::find(words.begin(), words.end(), "--");
    const auto found = std::find_if(words.begin(), end, [](const std::string& word) {
        return word.starts_with("--") && word.find('=') == word.size() - 1;
    });
    if (found != end)
        throw Messages::Failure(Messages::missingValue(found->substr(0, found->size() - 1),
                                                       command == words.end() ? std::string() : *command));
}

// Running

int showHelp(const std::string& text) {
    std::cout << text;
    return Messages::Done;
}

int showHelpTopic(const Parser& parser) {
    const int width = Terminal::width(STDOUT_FILENO);
    const auto names = commandNames(parser.app);
    if (parser.helpTopic.empty())
        return showHelp(Help::of(parser.app, width));
    if (std::find(names.begin(), names.end(), parser.helpTopic) == names.end())
        throw Messages::Failure(unknownCommand(parser.app, parser.helpTopic));
    return showHelp(Help::of(*parser.app.get_subcommand(parser.helpTopic), width));
}

/// A manual page or a script for a shell, by the name that its file has where it is installed.
int showInstalledFile(const Parser& parser) {
    const std::string& name = parser.installedFile;
    if (name == "adaptors")
        return showHelp(Completions::forBash(parser.app));
    if (name == "_adaptors")
        return showHelp(Completions::forZsh(parser.app));
    if (name == "adaptors.fish")
        return showHelp(Completions::forFish(parser.app));
    if (name == "adaptors.1")
        return showHelp(ManPage::of(parser.app));
    for (const CLI::App* command : Help::listedCommands(parser.app)) {
        if (name == "adaptors-" + command->get_name() + ".1")
            return showHelp(ManPage::of(*command));
    }
    throw Messages::Failure(Messages::badValue("--generate", name, "the name of a file that is installed"));
}

int runCommand(const Parser& parser, Output& output) {
    if (!parser.installedFile.empty())
        return showInstalledFile(parser);
    const std::string name = commandIn(parser.app);
    if (name == parser.help->get_name())
        return showHelpTopic(parser);
    for (const Command& command : commands) {
        if (name == command.name)
            return output.finish(command.run(parser.arguments, output));
    }
    if (output.isJson())
        throw Messages::Failure(Messages::noCommand());
    return showHelp(Help::of(parser.app, Terminal::width(STDOUT_FILENO)));
}

/// Runs a part of the program; what fails there is reported.
template <class Part>
int reportingFailures(Output& output, Part part) {
    int code = Messages::Done;
    const auto failure = failureOf([&] { code = part(); });
    return failure ? output.fail(*failure) : code;
}

/// Parses the command line. Gives an exit code where there is no command to run.
std::optional<int> parse(Parser& parser, int argc, char** argv) {
    const std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    const auto command = [&] { return commandIn(parser.app); };
    try {
        refuseMissingValues(words, commandNames(parser.app));
        parser.app.parse(argc, argv);
        if (command() == "batch")
            parser.arguments.batch.workerOptions = Batch::sharedOptions(
                *parser.app.get_subcommand("batch"), *parser.app.get_subcommand("batch-worker"));
        return std::nullopt;
    } catch (const CLI::CallForHelp&) {
        const std::string name = command();
        return showHelp(Help::of(name.empty() ? parser.app : *parser.app.get_subcommand(name),
                                 Terminal::width(STDOUT_FILENO)));
    } catch (const CLI::CallForAllHelp&) {
        return showHelp(Help::ofAll(parser.app, Terminal::width(STDOUT_FILENO)));
    } catch (const CLI::CallForVersion& version) {
        return showHelp(version.what() + std::string("\n"));
    } catch (const CLI::ParseError& error) {
        Output output(optionsForErrors(words));
        output.setCommand(command());
        return output.fail(messageFor(parser.app, error));
    } catch (const Messages::Failure& failure) {
        Output output(optionsForErrors(words));
        output.setCommand(command());
        return output.fail(failure.message());
    }
}

/// Warnings of the toolkit are neither for people nor for programs, and name what documents hold.
void dropMessage(QtMsgType, const QMessageLogContext&, const QString&) {}

} // namespace

int runCommandLine(int argc, char** argv) {
    qInstallMessageHandler(dropMessage);
    Parser parser;
    if (const auto code = parse(parser, argc, argv))
        return *code;
    Output output(parser.options);
    output.setCommand(commandIn(parser.app));
    return reportingFailures(output, [&] { return runCommand(parser, output); });
}
