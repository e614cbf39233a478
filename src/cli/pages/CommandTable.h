// CommandTable: what the manual page and the completions of the shells both read out of the
// commands' own tables.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/Command.h"

namespace orrinvale::cli {

/// What the words of an option or of an argument stand for, judged by the name that people read.
enum class WordKind { Free, Folder, Path, Volume };

/// One option taken apart. The texts live as long as the command's table, which is the program's.
struct OptionForms {
    std::vector<std::string_view> names;  ///< "-0", "--print0"
    std::string_view argument;            ///< what it takes; empty for a flag
    std::string_view help;
};

/// Whether something has to stand behind the option.
[[nodiscard]] inline bool needsValue(const OptionForms& option) {
    return !option.argument.empty() && !option.argument.starts_with('[');
}

/// A command taken apart.
struct CommandForms {
    std::string_view name;
    std::string_view summary;
    std::string_view description;
    std::vector<OptionForms>
        options;  ///< its own; commonForms() has those that every command takes
    std::vector<OptionSpec> arguments;  ///< in their order
};

[[nodiscard]] CommandForms formsOf(const Command& command);
[[nodiscard]] std::vector<OptionForms> commonForms();
/// Its own options and then the common ones.
[[nodiscard]] std::vector<OptionForms> allOptions(const CommandForms& command);

/// "FOLDER", "PATH...", "VOLUME": folders, paths, mounted volumes.
[[nodiscard]] WordKind kindOf(std::string_view argument);

/// The manual page orrinvale-cli(1). `date` is that of the release, "2026-11-21".
[[nodiscard]] std::string manualPage(const std::vector<CommandForms>& commands,
                                     std::string_view version, std::string_view date);

[[nodiscard]] std::string bashCompletion(const std::vector<CommandForms>& commands);
[[nodiscard]] std::string zshCompletion(const std::vector<CommandForms>& commands);
[[nodiscard]] std::string fishCompletion(const std::vector<CommandForms>& commands);

}  // namespace orrinvale::cli
