// orrinvale-cli: reads the command line and hands over to a command. CommandSet lists them; each is
// a class of its own.
#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include "cli/Command.h"
#include "cli/CommandSet.h"
#include "cli/MemoryReserve.h"
#include "cli/Output.h"
#include "cli/unknownWord.h"
#include "engine/base/Log.h"
#include "engine/memory/ClearMemory.h"
#include "engine/removal/AsideJournal.h"
#include "engine/settings/UserFolders.h"
#include "platform/linux/LinuxFiles.h"
#include "platform/linux/LinuxMemory.h"
#include "platform/standardStreams.h"

namespace orrinvale::cli {
namespace {

constexpr std::string_view repeated = "...";

std::string keyOf(std::string_view names) {
    std::string_view last =
        names.substr(names.rfind(',') == std::string_view::npos ? 0 : names.rfind(',') + 1);
    while (last.starts_with('-')) last.remove_prefix(1);
    last = unbracketed(last);
    if (last.ends_with(repeated)) last.remove_suffix(repeated.size());
    return std::string(last);
}

CLI::Option* declare(CLI::App& app, const OptionSpec& spec) {
    const std::string_view argument = unbracketed(spec.names);
    const std::string names(argument);
    const std::string help(spec.help);
    if (argument.ends_with(repeated))
        return app.add_option(keyOf(names), help)
            ->required(argument.size() == spec.names.size())
            ->type_name("")
            ->expected(CLI::detail::expected_max_vector_size);
    if (!names.starts_with('-'))
        return app.add_option(names, help)
            ->required(argument.size() == spec.names.size())
            ->type_name("");
    if (spec.argument.empty()) return app.add_flag(names, help);
    CLI::Option* const option = app.add_option(names, help)->type_name(std::string(spec.argument));
    if (spec.argument.starts_with('[')) option->expected(0, 1);
    if (spec.argument.ends_with(repeated))
        option->type_name(std::string(spec.argument.substr(0, spec.argument.size() - 3)))
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    return option;
}

// The arguments as the parser takes them, last one first. Paths that it would misread are put
// otherwise: they are relative, and lead to the same place with "./" before them. One written
// "[a,b]" would be taken for a list; one that begins with a dash behind
// "--" is refused as soon as another path stands before the "--".
std::vector<std::string> parserArguments(int argc, char** argv) {
    std::vector<std::string> out;
    bool pathsOnly = false;
    for (int i = 1; i < argc; ++i) {
        std::string argument(argv[i]);
        if (!pathsOnly && argument == "--") {
            pathsOnly = true;
            continue;
        }
        const bool list = argument.starts_with('[') && argument.ends_with(']');
        if (list || (pathsOnly && argument.starts_with('-'))) argument.insert(0, "./");
        out.push_back(std::move(argument));
    }
    std::reverse(out.begin(), out.end());
    return out;
}

// The parser, made from the tables of the commands.
struct Parser {
    explicit Parser(const Commands& commands)
        : app("Disk maintenance in the terminal.", "orrinvale-cli") {
        app.require_subcommand(0, 1);  // none is told below, an unknown one by its name
        app.set_version_flag("--version", ORRINVALE_VERSION);
        for (const auto& command : commands) {
            CLI::App* const sub =
                app.add_subcommand(std::string(command->name()), std::string(command->summary()));
            auto& known = options[command.get()];
            for (const auto& list : {command->options(), commonOptions()})
                for (const OptionSpec& spec : list)
                    known.emplace_back(keyOf(spec.names), declare(*sub, spec));
        }
    }

    Arguments argumentsOf(const Command& command) const {
        Arguments arguments;
        for (const auto& [key, option] : options.at(&command))
            if (option->count() > 0) arguments.set(key, option->results());
        return arguments;
    }

    CLI::App app;
    std::map<const Command*, std::vector<std::pair<std::string, CLI::Option*>>> options;
};

// What a removal that was killed had set aside.
void tellOfRecovery(const AsideRecovery& recovery) {
    Output errors(STDERR_FILENO);
    for (const std::string& path : recovery.broughtBack)
        errors.write(fmt::format("brought back what a removal that was ended had set aside: {}\n",
                                 printable(path)));
    for (const StayedEntry& each : recovery.stayed)
        errors.write(fmt::format("still set aside, {}: {}\n", each.reason, printable(each.path)));
}

// The log keeps names on one line; beyond that, what a terminal would obey is shown as it is
// everywhere here.
void logToStandardError(bool isWanted) {
    Log::setEnabled(isWanted);
    Log::setSink(
        [](std::string_view line) { Output(STDERR_FILENO).write(printable(line) + '\n'); });
}

int run(int argc, char** argv) {
    const CommandSet set;
    const Commands& commands = set.commands();

    if (const auto complaint = unknownWord({argv + std::min(argc, 1), argv + argc}, commands))
        return static_cast<int>(badUsage(*complaint));
    Parser parser(commands);
    try {
        parser.app.parse(parserArguments(argc, argv));
    } catch (const CLI::Success& asked) {  // --help, --version
        return parser.app.exit(asked);
    } catch (const CLI::ParseError& error) {
        return static_cast<int>(badUsage(error.what()));
    }
    for (const auto& command : commands) {
        if (!parser.app.got_subcommand(std::string(command->name()))) continue;
        const Arguments arguments = parser.argumentsOf(*command);
        if (arguments.has("json") && arguments.has("print0"))
            return static_cast<int>(
                badUsage("--json and -0 are two forms of one result, take one of them"));
        logToStandardError(arguments.has("log"));
        tellOfRecovery(bringBackAside(LinuxFileSystem(), asideJournalFolder(userStateFolder())));
        return static_cast<int>(command->run(arguments));
    }
    return static_cast<int>(badUsage("no command given"));
}

}  // namespace
}  // namespace orrinvale::cli

int main(int argc, char** argv) {
    orrinvale::fillStandardStreams();
    // Where a parent left it ignored, no child's end would be told.
    std::signal(SIGCHLD, SIG_DFL);
    // The process that `memory --free` starts. Only as the first word: behind a command "fr" may be
    // the name of a file.
    if (argc > 1 && std::string_view(argv[1]) == "fr") {
        orrinvale::Log::setEnabled(false);  // as everywhere here without --log
        const auto status =
            orrinvale::ClearMemory::freeMemory(argc, argv, orrinvale::LinuxMemory());
        if (status != -1) return status;
    }
    orrinvale::cli::keepMemoryReserve();
    return orrinvale::cli::run(argc, argv);
}
