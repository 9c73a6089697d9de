#include "Completion.h"

#include <sstream>

namespace tarnovel::manual {

namespace {

/// A word that a shell reads as it stands: all three take what is between single quotes literally.
std::string quoted(const std::string &text)
{
    std::string word = "'";
    for (const char letter : text) {
        word += letter == '\'' ? "'\\''" : std::string(1, letter);
    }
    return word + "'";
}

std::string joined(const std::vector<std::string> &words, const std::string &between)
{
    std::string text;
    for (const std::string &word : words) {
        text += (text.empty() ? "" : between) + word;
    }
    return text;
}

std::vector<std::string> commandNames(const CommandTable &table)
{
    std::vector<std::string> names;
    for (const CommandRow &command : table.commands) {
        names.push_back(command.name);
    }
    return names;
}

std::vector<std::string> optionNames(const CommandRow &command)
{
    std::vector<std::string> names;
    for (const OptionRow &option : command.options) {
        names.insert(names.end(), option.names.begin(), option.names.end());
    }
    return names;
}

bool takesPhotos(const CommandRow &command)
{
    return command.operands.starts_with("PHOTO");
}

/// The branch of bash's `case` for one option that takes a value.
void bashValue(std::ostringstream &script, const OptionRow &option)
{
    script << "    " << joined(option.names, "|") << ")\n";
    const std::vector<std::string> values = knownValues(option);
    if (!values.empty()) {
        std::vector<std::string> words;
        for (const std::string &value : values) {
            words.push_back(quoted(value));
        }
        script << "        _tarnovel_offer " << joined(words, " ") << "\n";
    } else if (takesFile(option)) {
        script << "        _tarnovel_files f\n";
    } else if (takesFolder(option)) {
        script << "        _tarnovel_files d\n";
    }
    script << "        return ;;\n";
}

void bashCommand(std::ostringstream &script, const CommandRow &command, const std::string &operands)
{
    script << "_tarnovel_" << (command.name.empty() ? "program" : command.name)
           << "()\n{\n    case $previous in\n";
    for (const OptionRow &option : command.options) {
        if (!option.value.empty()) {
            bashValue(script, option);
        }
    }
    script << "    esac\n    case $current in\n    -*)\n        mapfile -t COMPREPLY < <(compgen -W "
           << quoted(joined(optionNames(command), " ")) << " -- \"$current\") ;;\n";
    if (!operands.empty()) {
        script << "    *)\n        " << operands << " ;;\n";
    }
    script << "    esac\n}\n\n";
}

/// What zsh's _arguments takes for the value of an option.
std::string zshValue(const OptionRow &option)
{
    std::string name;
    for (const char letter : option.value) {
        name += letter == ':' || letter == '[' || letter == ']' ? '-' : letter;
    }
    const std::vector<std::string> values = knownValues(option);
    if (!values.empty()) {
        std::string words;
        for (const std::string &value : values) {
            for (const char letter : value) {
                words += letter == ' ' || letter == '(' || letter == ')' ? "\\" + std::string(1, letter)
                                                                         : std::string(1, letter);
            }
            words += ' ';
        }
        return ":" + name + ":(" + words + ")";
    }
    return ":" + name + ":" + (takesFile(option) ? "_files" : takesFolder(option) ? "_files -/" : " ");
}

/// A description within the brackets of _arguments.
std::string zshText(const std::string &text)
{
    std::string escaped;
    for (const char letter : text) {
        escaped += letter == '[' || letter == ']' || letter == ':' ? "\\" + std::string(1, letter)
                                                                   : std::string(1, letter);
    }
    return escaped;
}

void zshOptions(std::ostringstream &script, const CommandRow &command, const std::string &indent)
{
    for (const OptionRow &option : command.options) {
        for (const std::string &name : option.names) {
            const std::string others = option.repeatable ? "*" : "(" + joined(option.names, " ") + ")";
            script << indent
                   << quoted(others + name + "[" + zshText(option.description) + "]" +
                             (option.value.empty() ? "" : zshValue(option)))
                   << " \\\n";
        }
    }
}

void fishOptions(std::ostringstream &script, const CommandRow &command, const std::string &condition)
{
    for (const OptionRow &option : command.options) {
        script << "complete -c tarnovel -n " << quoted(condition);
        for (const std::string &name : option.names) {
            script << (name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1));
        }
        script << " -d " << quoted(option.description);
        if (option.value.empty()) {
            script << "\n";
            continue;
        }
        const std::vector<std::string> values = knownValues(option);
        std::vector<std::string> words;
        for (const std::string &value : values) {
            words.push_back("\"" + value + "\"");
        }
        if (!words.empty()) {
            script << " -x -a " << quoted(joined(words, " "));
        } else if (takesFolder(option)) {
            script << " -x -a '(__fish_complete_directories)'";
        } else {
            script << (takesFile(option) ? " -r -F" : " -x");
        }
        script << "\n";
    }
}

} // namespace

std::string bashCompletion(const CommandTable &table)
{
    std::ostringstream script;
    script << R"sh(# Completion of tarnovel for bash; made from the program's own table of options.

_tarnovel_offer()
{
    local word
    for word in "$@"; do
        [[ $word == "${current//\\/}"* ]] && COMPREPLY+=("$(printf %q "$word")")
    done
}

_tarnovel_files()
{
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -"$1" -- "$current")
}

)sh";
    for (const CommandRow &command : table.commands) {
        bashCommand(script, command, takesPhotos(command) ? "_tarnovel_files f" : "");
    }
    bashCommand(script, table.program, "");
    script
        << "_tarnovel()\n{\n    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - "
           "1]} i\n"
           "    COMPREPLY=()\n"
           "    for ((i = 1; i < COMP_CWORD; ++i)); do\n        case ${COMP_WORDS[i]} in\n        "
        << joined(commandNames(table), "|") << ")\n            _tarnovel_\"${COMP_WORDS[i]}\"\n"
        << "            return ;;\n        esac\n    done\n    _tarnovel_program\n"
           "    if [[ $current != -* && $COMP_CWORD -eq 1 ]]; then\n        _tarnovel_files f\n"
           "        mapfile -t -O \"${#COMPREPLY[@]}\" COMPREPLY < <(compgen -W "
        << quoted(joined(commandNames(table), " "))
        << " -- \"$current\")\n    fi\n}\n\ncomplete -F _tarnovel tarnovel\n";
    return script.str();
}

std::string zshCompletion(const CommandTable &table)
{
    std::ostringstream script;
    script << "#compdef tarnovel\n# Completion of tarnovel for zsh; made from the program's own table of "
              "options.\n\n_tarnovel() {\n    local context state state_descr line\n    typeset -A opt_args\n"
              "    _arguments -C \\\n";
    zshOptions(script, table.program, "        ");
    script << "        '1: :->first' \\\n        '*:: :->rest' && return 0\n    case $state in\n    first)\n"
              "        local -a commands=(\n";
    for (const CommandRow &command : table.commands) {
        script << "            " << quoted(command.name + ":" + command.description) << '\n';
    }
    script << "        )\n        _describe command commands\n        _files ;;\n    rest)\n        case "
              "$words[1] in\n";
    for (const CommandRow &command : table.commands) {
        script << "        " << command.name << ")\n            _arguments -s \\\n";
        zshOptions(script, command, "                ");
        script << "                " << (takesPhotos(command) ? "'*:PHOTO:_files'" : "'*: : '") << " ;;\n";
    }
    script << "        *) _files ;;\n        esac ;;\n    esac\n}\n\n_tarnovel \"$@\"\n";
    return script.str();
}

std::string fishCompletion(const CommandTable &table)
{
    std::ostringstream script;
    script << "# Completion of tarnovel for fish; made from the program's own table of options.\n\n";
    const std::string names = joined(commandNames(table), " ");
    for (const CommandRow &command : table.commands) {
        script << "complete -c tarnovel -n '__fish_use_subcommand' -a " << command.name << " -d "
               << quoted(command.description) << '\n';
    }
    fishOptions(script, table.program, "not __fish_seen_subcommand_from " + names);
    for (const CommandRow &command : table.commands) {
        const std::string condition = "__fish_seen_subcommand_from " + command.name;
        if (!takesPhotos(command)) {
            script << "complete -c tarnovel -n " << quoted(condition) << " -f\n";
        }
        fishOptions(script, command, condition);
    }
    return script.str();
}

} // namespace tarnovel::manual
