#include "batch/CommandOptions.h"

#include "Messages.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <optional>

namespace Batch {
namespace {

std::optional<int> numberIn(std::string_view text, int least, int greatest) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isNumber = error == std::errc() && end == text.data() + text.size();
    return isNumber && number >= least && number <= greatest ? std::optional(number) : std::nullopt;
}

[[noreturn]] void refuse(const std::string& option, const std::string& value, const std::string& expected) {
    throw Messages::Failure(Messages::badValue(option, value, expected));
}

void addNumber(CLI::App& command, const std::string& names, int& number, int least, int greatest,
               const std::string& type, const std::string& help) {
    const std::string name = names.substr(names.rfind('-') - 1);
    command
        .add_option_function<std::string>(
            names,
            [&number, name, least, greatest](const std::string& value) {
                const auto given = numberIn(value, least, greatest);
                if (!given)
                    refuse(name, value,
                           "a number from " + std::to_string(least) + " to " + std::to_string(greatest));
                number = *given;
            },
            help)
        ->type_name(type);
}

/// "2/8"
Shard shardIn(const std::string& value) {
    constexpr int most = 1000000;
    const auto slash = std::min(value.find('/'), value.size());
    const auto count = numberIn(std::string_view(value).substr(std::min(slash + 1, value.size())), 1, most);
    const auto number = numberIn(std::string_view(value).substr(0, slash), 1, count.value_or(0));
    if (!count || !number)
        refuse("--shard", value, "a part and how many there are, such as 2/8");
    return {*number, *count};
}

ProgressForm progressIn(const std::string& value) {
    if (value == "auto")
        return ProgressForm::Auto;
    if (value == "json")
        return ProgressForm::Json;
    if (value == "none")
        return ProgressForm::None;
    refuse("--progress", value, "auto, json or none");
}

WhichPages pagesIn(const std::string& value) {
    if (value == "needed")
        return WhichPages::Needed;
    if (value == "all")
        return WhichPages::All;
    if (value == "none")
        return WhichPages::None;
    refuse("--pages", value, "needed, all or none");
}

template <class Value>
CLI::Option* addName(CLI::App& command, const std::string& names, Value& value, const std::string& type,
                     const std::string& help) {
    CLI::Option* option = command.add_option(names, value, help)->type_name(type);
    return option->check(
        [option](const std::string& text) {
            if (text.empty())
                throw Messages::Failure(Messages::emptyValue(option->get_name()));
            return std::string();
        },
        "");
}

} // namespace

void addOptions(CLI::App& command, Arguments& arguments) {
    Options& options = arguments.batch;
    addName(command, "PATH", options.paths, "PATH", "Folders, which are searched, and projects");
    CLI::Option* folder =
        addName(command, "--output-dir", arguments.folder, "DIR",
                "Where the results go, in folders like those that are searched; made where it is missing");
    command.get_option("--in-place")->excludes(folder)->excludes(command.get_option("--check"));
    command.get_option("--check")->excludes(folder);
    command.add_flag("--force", arguments.force, "Migrate all again, and replace outputs that exist");
    command.add_flag("--retry-failed", options.retryFailed, "Take those again that failed in an earlier run");

    const char* finding = "What is migrated";
    addName(command, "--files0-from", options.list, "FILE",
            "Also the paths in this file, each ended by a NUL character; - is standard input")
        ->group(finding);
    addName(command, "--include", options.include, "GLOB",
            "Only files whose name matches; with a / in it, whose path below PATH matches")
        ->expected(1)
        ->group(finding)
        ->take_all();
    addName(command, "--exclude", options.exclude, "GLOB", "No files and folders that match")
        ->expected(1)
        ->group(finding)
        ->take_all();
    command
        .add_option_function<std::string>(
            "--shard", [&options](const std::string& value) { options.shard = shardIn(value); },
            "Only part K of N parts, which several machines can do at once")
        ->type_name("K/N")
        ->group(finding);

    const char* work = "How it is done";
    addNumber(command, "-j,--jobs", options.jobs, 1, 1024, "N",
              "So many worker processes [one for each core]");
    addNumber(command, "--timeout", options.timeout, 0, 1000000, "SECONDS",
              "Give a file up that takes longer; 0 for never [600]");
    for (const char* name : {"--jobs", "--timeout"})
        command.get_option(name)->group(work);
    command
        .add_option_function<std::string>(
            "--progress", [&options](const std::string& value) { options.progress = progressIn(value); },
            "What is shown of it on standard error: auto, none, or json for events [auto]")
        ->type_name("FORM")
        ->group(work);

    const char* state = "What was done";
    addName(command, "--state", options.state, "FILE",
            "The database that says what was done [DIR/adaptors-batch.sqlite]")
        ->group(state);
    CLI::Option* status =
        addName(command, "--status", options.status, "STATE", "Show the table of a state and do nothing else")
            ->group(state);
    addName(command, "--merge", options.merge, "STATE...",
            "Make one state of several, such as those of shards")
        ->group(state)
        ->excludes(status);
    addName(command, "--report", options.report, "FILE",
            "Write what was done to FILE.csv, FILE.jsonl or FILE.html, a row for each file")
        ->group(state);
    command
        .add_option_function<std::string>(
            "--pages", [&options](const std::string& value) { options.pages = pagesIn(value); },
            "Of which files FILE.html has pages: all, none, or those that failed or lost something [needed]")
        ->type_name("WHICH")
        ->group(state);
    command.footer(
        "The state is a SQLite database. The same command goes on where an earlier one was stopped: what "
        "is done and unchanged is left alone. Ctrl-C lets the files end that are in work; a second one "
        "ends at once.\n"
        "Exits with 0 where all is fine, 20 where files failed or results are not whole, and 130 where "
        "it was stopped.\n\n"
        "Examples:\n"
        "adaptors batch projects --output-dir new\tand the same again to go on\n"
        "adaptors batch projects --output-dir new --retry-failed\t\n"
        "adaptors batch projects --in-place --exclude old\tkeeps backups\n"
        "adaptors batch projects --check --report found.html\twrites no project\n"
        "adaptors batch --files0-from list --output-dir new\t\n"
        "adaptors batch --status new/adaptors-batch.sqlite\t\n"
        "adaptors batch projects --output-dir new --shard 2/8\tthe second of eight parts\n"
        "adaptors batch --merge new/*-of-8.sqlite --output-dir new\t");
}

std::vector<std::string> sharedOptions(const CLI::App& from, const CLI::App& to) {
    std::vector<std::string> words;
    for (const CLI::Option* option : from.get_options()) {
        if (option->count() == 0 || option->get_lnames().empty())
            continue;
        const std::string name = "--" + option->get_lnames().front();
        if (to.get_option_no_throw(name)) {
            for (const std::string& value : option->results()) {
                words.push_back(name);
                words.back().append("=").append(value);
            }
        }
    }
    return words;
}

} // namespace Batch
