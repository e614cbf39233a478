// The completions of bash, zsh and fish: what the tables of the commands say, in the language of
// each shell. All offer the commands, the options, and for arguments folders, paths or the places
// of mounted volumes.
#include <fmt/format.h>

#include "cli/pages/CommandTable.h"

namespace orrinvale::cli {
namespace {

std::string replaced(std::string_view text, std::string_view what, std::string_view by) {
    std::string out(text);
    for (std::size_t at = out.find(what); at != std::string::npos;
         at = out.find(what, at + by.size()))
        out.replace(at, what.size(), by);
    return out;
}

// The kind of what stands behind the options; all arguments of a command are of one kind.
WordKind argumentKind(const CommandForms& command) {
    return command.arguments.empty() ? WordKind::Free
                                     : kindOf(unbracketed(command.arguments.front().names));
}

// --- bash
// -----------------------------------------------------------------------------------------------------------

std::string_view bashKind(WordKind kind) {
    switch (kind) {
        case WordKind::Folder: return "folder";
        case WordKind::Path: return "path";
        case WordKind::Volume: return "volume";
        case WordKind::Free: break;
    }
    return "";
}

std::string bashCase(const CommandForms& command) {
    std::string options;
    std::string takers;
    for (const OptionForms& option : allOptions(command)) {
        for (const std::string_view name : option.names) {
            options += (options.empty() ? "" : " ") + std::string(name);
            if (needsValue(option)) takers += ' ' + std::string(name) + ' ';
        }
    }
    return fmt::format("        {}) options='{}' takers='{}' kind='{}' ;;\n", command.name, options,
                       takers, bashKind(argumentKind(command)));
}

// Folders and paths are left to the shell itself, which knows how to quote them.
constexpr std::string_view bashEnd = R"sh(        *) return ;;
    esac
    [[ $previous == '=' || $takers == *" $previous "* ]] && return
    if [[ $word == -* && -z $ended ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
        return
    fi
    case $kind in
        folder) compopt -o dirnames ;;
        path) compopt -o default ;;
        volume)
            compopt -o filenames
            while IFS= read -r -d '' place; do
                [[ $place == "${word//\\/}"* ]] && COMPREPLY+=("$place")
            done < <("$1" volumes -0 --quiet 2>/dev/null)
            ;;
    esac
}
complete -F _orrinvale_cli orrinvale-cli
)sh";

// --- zsh
// ------------------------------------------------------------------------------------------------------------

// In single quotes and in brackets, where a colon divides too.
std::string zshText(std::string_view text) {
    std::string out = replaced(text, "'", "'\\''");
    for (const char* const special : {"[", "]", ":"})
        out = replaced(out, special, std::string("\\") + special);
    return out;
}

std::string_view zshKind(WordKind kind) {
    switch (kind) {
        // The other one, _files, falls back to files where there is no folder.
        case WordKind::Folder: return "_path_files -/";
        case WordKind::Path: return "_files";
        case WordKind::Volume: return "_orrinvale_volumes";
        case WordKind::Free: break;
    }
    return "";
}

std::string zshOption(const OptionForms& option) {
    std::string names;
    std::string others;
    for (const std::string_view name : option.names) {
        names += (names.empty() ? "" : ",") + std::string(name);
        others += (others.empty() ? "" : " ") + std::string(name);
    }
    const bool several = option.names.size() > 1;
    std::string out = several ? fmt::format("'({})'{{{}}}", others, names) : "'" + names + "'";
    out += fmt::format("'[{}]", zshText(option.help));
    if (!option.argument.empty())
        out += (needsValue(option) ? ":" : "::") + zshText(option.argument) + ": ";
    return out + "'";
}

std::string zshCase(const CommandForms& command) {
    std::string out = fmt::format("        {})\n            _arguments -s", command.name);
    for (const OptionForms& option : allOptions(command))
        out += " \\\n                " + zshOption(option);
    for (const OptionSpec& argument : command.arguments) {
        const std::string_view name = unbracketed(argument.names);
        const bool repeated = name.ends_with("...");
        out += fmt::format(" \\\n                '{}:{}:{}'", repeated ? "*" : "", zshText(name),
                           zshKind(kindOf(name)));
    }
    return out + " ;;\n";
}

// --- fish
// -----------------------------------------------------------------------------------------------------------

std::string fishText(std::string_view text) {
    return '\'' + replaced(replaced(text, "\\", "\\\\"), "'", "\\'") + '\'';
}

std::string fishOption(const std::string& condition, const OptionForms& option) {
    std::string out = fmt::format("complete -c orrinvale-cli -n {}", condition);
    for (std::string_view name : option.names) {
        const bool isLong = name.starts_with("--");
        name.remove_prefix(isLong ? 2 : 1);
        out += fmt::format(" {} {}", isLong ? "-l" : "-s", name);
    }
    if (needsValue(option)) out += " -x";
    return out + " -d " + fishText(option.help) + '\n';
}

std::string_view fishKind(WordKind kind) {
    switch (kind) {
        case WordKind::Folder: return "-a '(__fish_complete_directories)'";
        case WordKind::Path: return "-F";
        case WordKind::Volume:
            return "-a '(orrinvale-cli volumes -0 --quiet 2>/dev/null | string split0)'";
        case WordKind::Free: break;
    }
    return "";
}

std::string fishCommand(const CommandForms& command) {
    std::string out =
        fmt::format("complete -c orrinvale-cli -n __fish_use_subcommand -a {} -d {}\n",
                    command.name, fishText(command.summary));
    const std::string condition = fmt::format("'__fish_seen_subcommand_from {}'", command.name);
    for (const OptionForms& option : allOptions(command)) out += fishOption(condition, option);
    const std::string_view words = fishKind(argumentKind(command));
    if (!words.empty())
        out += fmt::format("complete -c orrinvale-cli -n {} {}\n", condition, words);
    return out;
}

}  // namespace

std::string bashCompletion(const std::vector<CommandForms>& commands) {
    std::string out =
        R"sh(# bash completion of orrinvale-cli, made from the program's own table of commands.
_orrinvale_cli() {
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command='' ended='' options='' takers='' kind='' place at
    COMPREPLY=()
    for ((at = 1; at < COMP_CWORD; at++)); do
        case ${COMP_WORDS[at]} in
            --) ended=1 ;;
            -*) ;;
            *) [[ -n $command ]] || command=${COMP_WORDS[at]} ;;
        esac
    done
    case $command in
)sh";
    std::string names;
    for (const CommandForms& command : commands) names += std::string(command.name) + ' ';
    out += fmt::format(
        "        '') mapfile -t COMPREPLY < <(compgen -W '{}--help --version' -- \"$word\"); "
        "return ;;\n",
        names);
    for (const CommandForms& command : commands) out += bashCase(command);
    return out + std::string(bashEnd);
}

std::string zshCompletion(const std::vector<CommandForms>& commands) {
    std::string out = R"sh(#compdef orrinvale-cli
# Made from the program's own table of commands.
_orrinvale_volumes() {
    local -a places=(${(0)"$(orrinvale-cli volumes -0 --quiet 2>/dev/null)"})
    compadd -f -a places
}
_orrinvale_cli() {
    local context state state_descr line
    local -A opt_args
    local -a commands=(
)sh";
    for (const CommandForms& command : commands)
        out += fmt::format("        '{}:{}'\n", command.name, zshText(command.summary));
    out += R"sh(    )
    _arguments -C '(- *)'{-h,--help}'[Tell the options and end]' '(- *)--version[Tell the version]' \
        '1: :->command' '*:: :->argument' && return
    case $state in
        command) _describe command commands; return ;;
    esac
    case $words[1] in
)sh";
    for (const CommandForms& command : commands) out += zshCase(command);
    return out + "    esac\n}\n_orrinvale_cli \"$@\"\n";
}

std::string fishCompletion(const std::vector<CommandForms>& commands) {
    std::string out =
        "# Made from the program's own table of commands.\ncomplete -c orrinvale-cli -f\n";
    const std::string first = "__fish_use_subcommand";
    out += fishOption(first, {{"-h", "--help"}, "", "Tell the options and end"});
    out += fishOption(first, {{"--version"}, "", "Tell the version"});
    for (const CommandForms& command : commands) out += fishCommand(command);
    return out;
}

}  // namespace orrinvale::cli
