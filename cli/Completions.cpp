#include "Completions.h"

#include "Help.h"
#include "Reader/AdaptorTable.h"
#include "Reader/Verify.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <set>
#include <string_view>
#include <vector>

namespace Completions {
namespace {

using Help::Row;

/// What an argument or the value of an option can be.
struct Values {
    enum class Kind {
        Any, ///< numbers and the like: nothing is offered
        Files,
        Folders,
        Words,
    };
    Kind kind = Kind::Any;
    std::vector<Row> words = {};
};

struct Option {
    std::vector<std::string> shortNames; ///< without hyphens
    std::vector<std::string> longNames;
    std::string text;
    bool takesValue;
    std::string valueName;
    Values values;

    /// "-o" and "--output"
    std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (const std::string& name : shortNames)
            result.push_back('-' + name);
        for (const std::string& name : longNames)
            result.push_back("--" + name);
        return result;
    }
};

struct Argument {
    std::string name;
    Values values;
};

struct Command {
    std::string name;
    std::string text;
    std::vector<Option> options;
    std::vector<Argument> arguments;
};

std::vector<Row> stepNames() {
    std::vector<Row> rows;
    for (const Reader::AdaptorRow& row : Reader::adaptorTable())
        rows.push_back({std::string(row.className), std::string(row.summary)});
    return rows;
}

std::vector<Row> severities() {
    std::vector<Row> rows;
    for (const auto severity : {Reader::Severity::Error, Reader::Severity::Warning, Reader::Severity::Note})
        rows.push_back({std::string(nameOf(severity)), ""});
    return rows;
}

/// What is called FILE, STEP and so on in the help.
Values valuesFor(const std::string& name, const CLI::App& app) {
    using Kind = Values::Kind;
    if (name == "FILE")
        return {Kind::Files};
    if (name == "DIR")
        return {Kind::Folders};
    if (name == "STEP")
        return {Kind::Words, stepNames()};
    if (name == "COMMAND")
        return {Kind::Words, Help::textsOf(app).commands};
    if (name == "WHEN")
        return {Kind::Words, {{"auto", ""}, {"always", ""}, {"never", ""}}};
    if (name == "SEVERITY")
        return {Kind::Words, severities()};
    return {};
}

/// The program itself, or one of its commands with its own options and arguments.
Command commandFor(const CLI::App& command, const CLI::App& app) {
    Command result{command.get_name(), command.get_description(), {}, {}};
    const bool isProgram = &command == &app;
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_positional()) {
            result.arguments.push_back({option->get_name(true), valuesFor(option->get_name(true), app)});
            continue;
        }
        // Each command has help options of its own; they are among the program's.
        const bool isInherited =
            !isProgram && (option == command.get_help_ptr() || option == command.get_help_all_ptr());
        if (option->get_group().empty() || isInherited)
            continue;
        const bool takesValue = Help::takesValue(*option);
        result.options.push_back({option->get_snames(), option->get_lnames(), option->get_description(),
                                  takesValue, takesValue ? option->get_type_name() : std::string(),
                                  takesValue ? valuesFor(option->get_type_name(), app) : Values()});
    }
    return result;
}

std::vector<Command> commandsOf(const CLI::App& app) {
    std::vector<Command> commands;
    for (const CLI::App* command : Help::listedCommands(app))
        commands.push_back(commandFor(*command, app));
    return commands;
}

std::string joined(const std::vector<std::string>& texts, std::string_view separator) {
    std::string result;
    for (const std::string& text : texts)
        result += (result.empty() ? "" : std::string(separator)) + text;
    return result;
}

std::string joined(const std::vector<Row>& rows) {
    std::string result;
    for (const Row& row : rows)
        result += (result.empty() ? "" : " ") + row.name;
    return result;
}

std::vector<std::string> namesOf(const std::vector<Option>& options) {
    std::vector<std::string> names;
    for (const Option& option : options) {
        for (const std::string& name : option.names())
            names.push_back(name);
    }
    return names;
}

/// All options with a value, each once: a name means the same in every command.
std::vector<Option> optionsWithValue(const Command& program, const std::vector<Command>& commands) {
    std::vector<Option> result;
    std::set<std::vector<std::string>> seen;
    const auto add = [&](const Command& command) {
        for (const Option& option : command.options) {
            if (option.takesValue && seen.insert(option.names()).second)
                result.push_back(option);
        }
    };
    add(program);
    for (const Command& command : commands)
        add(command);
    return result;
}

/// Replaces each of these characters by itself with a backslash in front.
std::string withBackslashes(const std::string& text, std::string_view characters) {
    std::string result;
    for (const char c : text) {
        if (characters.find(c) != std::string_view::npos)
            result += '\\';
        result += c;
    }
    return result;
}

// bash

/// Sets what is offered, as the variables `kind` and `words` of the script.
std::string bashValues(const Values& values) {
    switch (values.kind) {
    case Values::Kind::Files:
        return "kind=default";
    case Values::Kind::Folders:
        return "kind=dirnames";
    case Values::Kind::Words:
        return "kind=words words='" + joined(values.words) + '\'';
    case Values::Kind::Any:
        break;
    }
    return "kind=nothing";
}

std::string bashCase(const std::string& pattern, const std::string& action) {
    return "    " + pattern + ") " + action + " ;;\n";
}

// zsh

/// Inside of single quotes.
std::string zshQuoted(std::string text) {
    for (std::size_t at = 0; (at = text.find('\'', at)) != std::string::npos; at += 4)
        text.replace(at, 1, "'\\''");
    return text;
}

std::string zshAction(const std::string& name, const Values& values) {
    switch (values.kind) {
    case Values::Kind::Files:
        return ":" + name + ":_files";
    case Values::Kind::Folders:
        return ":" + name + ":_files -/";
    case Values::Kind::Words:
        if (name == "STEP")
            return ":" + name + ":_adaptors_steps";
        if (name == "COMMAND")
            return ":" + name + ":_adaptors_commands";
        return ":" + name + ":(" + joined(values.words) + ')';
    case Values::Kind::Any:
        break;
    }
    return ":" + name + ": ";
}

/// As words for _arguments, one for each name.
std::vector<std::string> zshOption(const Option& option) {
    const std::string text = zshQuoted("[" + withBackslashes(option.text, "[]\\") + "]" +
                                       (option.takesValue ? zshAction(option.valueName, option.values) : ""));
    const std::vector<std::string> names = option.names();
    const std::string excluded = "'(" + joined(names, " ") + ')';
    std::vector<std::string> result;
    for (const std::string& name : names) {
        std::string& word = result.emplace_back(excluded);
        word += name;
        if (option.takesValue)
            word += name.starts_with("--") ? '=' : '+';
        word += text;
        word += '\'';
    }
    return result;
}

std::string zshWords(const std::string& function, const std::string& what, const std::vector<Row>& rows) {
    std::string result = function + "() {\n    local -a words\n    words=(\n";
    for (const Row& row : rows)
        result += "        '" + row.name + ':' + zshQuoted(withBackslashes(row.text, "\\")) + "'\n";
    return result + "    )\n    _describe -t " + what + "s " + what + " words\n}\n\n";
}

// fish

/// In single quotes.
std::string fishQuoted(const std::string& text) {
    return '\'' + withBackslashes(text, "\\'") + '\'';
}

/// How an option or argument is completed. Words have their texts.
std::string fishValues(const Values& values) {
    switch (values.kind) {
    case Values::Kind::Files:
        return " -F";
    case Values::Kind::Folders:
        return " -f -a '(__fish_complete_directories)'";
    case Values::Kind::Words: {
        std::string words;
        for (const Row& row : values.words)
            words += ' ' + fishQuoted(row.name + (row.text.empty() ? "" : '\t' + row.text));
        return " -f -a " + fishQuoted("(printf '%s\\n'" + words + ")"); // it is evaluated when it is needed
    }
    case Values::Kind::Any:
        break;
    }
    return " -f";
}

std::string fishOption(const std::string& condition, const Option& option) {
    std::string line = "complete -c adaptors" + condition;
    for (const std::string& name : option.shortNames)
        line += " -s " + name;
    for (const std::string& name : option.longNames)
        line += " -l " + name;
    if (option.takesValue)
        line += " -r" + fishValues(option.values);
    return line + " -d " + fishQuoted(option.text) + '\n';
}

std::string fishCondition(const std::string& test) {
    return " -n " + fishQuoted(test);
}

} // namespace

std::string forBash(const CLI::App& app) {
    const Command program = commandFor(app, app);
    const std::vector<Command> commands = commandsOf(app);
    const std::vector<Option> withValue = optionsWithValue(program, commands);

    std::string result = R"(# Completion of adaptors for bash.

_adaptors() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
    local command= place=0 kind= words= i
    # An option with its value, "--color=never", comes as three words.
    if [[ $word == = ]]; then
        word=
    elif [[ $before == = ]] && ((COMP_CWORD > 1)); then
        before=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    for ((i = 1; i < COMP_CWORD; ++i)); do
        case ${COMP_WORDS[i]} in
        =) ((++i)) ;;
)";
    result += "        " + joined(namesOf(withValue), " | ") +
              R"() [[ ${COMP_WORDS[i + 1]} == = ]] || ((++i)) ;;
        -?*) ;;
        *) if [[ -z $command ]]; then command=${COMP_WORDS[i]}; else ((++place)); fi ;;
        esac
    done
    case $before in
)";
    for (const Option& option : withValue)
        result += bashCase(joined(option.names(), " | "), bashValues(option.values));
    result += R"(    esac
    [[ $kind ]] || case $command:$place:$word in
)";
    result += bashCase(":*:-*", "kind=words words='" + joined(namesOf(program.options), " ") + '\'');
    for (const Command& command : commands) {
        std::vector<std::string> names = namesOf(command.options);
        for (const std::string& name : namesOf(program.options))
            names.push_back(name);
        result += bashCase(command.name + ":*:-*", "kind=words words='" + joined(names, " ") + '\'');
    }
    result += bashCase(":0:*", bashValues(valuesFor("COMMAND", app)));
    for (const Command& command : commands) {
        for (std::size_t place = 0; place < command.arguments.size(); ++place)
            result += bashCase(command.name + ':' + std::to_string(place) + ":*",
                               bashValues(command.arguments[place].values));
    }
    return result + R"(    esac
    COMPREPLY=()
    case $kind in
    words) COMPREPLY=($(compgen -W "$words" -- "$word")) ;;
    default | dirnames) compopt -o "$kind" ;;
    esac
}

complete -F _adaptors adaptors
)";
}

std::string forZsh(const CLI::App& app) {
    const Command program = commandFor(app, app);
    const std::vector<Command> commands = commandsOf(app);

    std::string result = "#compdef adaptors\n# Completion of adaptors for zsh.\n\n";
    result += zshWords("_adaptors_commands", "command", Help::textsOf(app).commands);
    result += zshWords("_adaptors_steps", "step", stepNames());
    result += R"(_adaptors() {
    local curcontext=$curcontext state line
    typeset -A opt_args
    local -a everywhere
    everywhere=(
)";
    for (const Option& option : program.options) {
        for (const std::string& word : zshOption(option))
            result += "        " + word + '\n';
    }
    result += R"(    )
    _arguments -C $everywhere '1:command:_adaptors_commands' '*::argument:->arguments' && return
    [[ $state == arguments ]] || return
    case $words[1] in
)";
    for (const Command& command : commands) {
        result += "    " + command.name + ")\n        _arguments $everywhere";
        for (const Option& option : command.options) {
            for (const std::string& word : zshOption(option))
                result += " \\\n            " + word;
        }
        for (std::size_t place = 0; place < command.arguments.size(); ++place)
            result += " \\\n            '" + std::to_string(place + 1) +
                      zshAction(command.arguments[place].name, command.arguments[place].values) + '\'';
        result += "\n        ;;\n";
    }
    return result + R"(    esac
}

_adaptors "$@"
)";
}

std::string forFish(const CLI::App& app) {
    const Command program = commandFor(app, app);
    const std::vector<Command> commands = commandsOf(app);

    std::string result = R"(# Completion of adaptors for fish.

# Whether the command line before the cursor has this command, or none for "", and that many arguments of it.
function __adaptors_at --argument-names command place
    set -l found
    set -l count 0
    set -l isValue 0
    for word in (commandline -opc)[2..-1]
        if test $isValue = 1
            set isValue 0
            continue
        end
        switch $word
            case )";
    result += joined(namesOf(optionsWithValue(program, commands)), " ") + R"(
                set isValue 1
            case '-?*'
            case '*'
                if test -z "$found"
                    set found $word
                else
                    set count (math $count + 1)
                end
        end
    end
    test "$found" = "$command"; and begin
        test -z "$place"; or test "$count" = "$place"
    end
end

complete -c adaptors -f
)";
    for (const Option& option : program.options)
        result += fishOption("", option);
    result += "complete -c adaptors" + fishCondition("__adaptors_at '' 0") +
              fishValues(valuesFor("COMMAND", app)) + '\n';
    for (const Command& command : commands) {
        for (const Option& option : command.options)
            result += fishOption(fishCondition("__adaptors_at " + command.name), option);
        for (std::size_t place = 0; place < command.arguments.size(); ++place)
            result += "complete -c adaptors" +
                      fishCondition("__adaptors_at " + command.name + ' ' + std::to_string(place)) +
                      fishValues(command.arguments[place].values) + '\n';
    }
    return result;
}

} // namespace Completions
