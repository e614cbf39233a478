// One command of orrinvale-cli: what it is called, what it takes, what it does. Everything that a
// person reads about it, and the parser, come from the table that it declares. main.cpp lists the
// commands.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/error.h"
#include "platform/fileTypes.h"

namespace orrinvale::cli {

class Output;
enum class Ending : std::uint8_t;

/// The exit statuses that all commands share.
enum class Status : int {
    Done = 0,
    SomeSkipped = 1,
    BadUsage = 2,
    NoSuchFolder = 3,
    Stopped = 130
};

/// What an exit status tells, in one sentence for people.
struct StatusMeaning {
    Status status;
    std::string_view meaning;
};

/// Every status, in ascending order.
[[nodiscard]] std::vector<StatusMeaning> statusMeanings();

/// One option or argument of a command, as data.
struct OptionSpec {
    std::string_view names;     ///< "--json", "-0,--print0"; a bare name such as "FOLDER" is an
                                ///< argument that must be given, one such as "PATH..." an argument
                                ///< that must be given and may be repeated, one such as
                                ///< "[WORD...]" an argument that may be left out too
    std::string_view argument;  ///< what the option takes ("SIZE"); empty for a flag; with dots
                                ///< behind it ("PATH...") the option may be given several times;
                                ///< in brackets ("[ID]") it may be left out
    std::string_view help;
};

/// The name of an argument without the brackets of one that may be left out.
[[nodiscard]] constexpr std::string_view unbracketed(std::string_view name) {
    return name.starts_with('[') ? name.substr(1, name.size() - 2) : name;
}

/// What was given on the command line.
class Arguments final {
public:
    void set(std::string name, std::vector<std::string> values) {
        m_values[std::move(name)] = std::move(values);
    }

    /// By the long name without dashes, or the argument's name without dots.
    [[nodiscard]] bool has(const std::string& name) const { return m_values.contains(name); }
    [[nodiscard]] std::string text(const std::string& name) const {
        const auto found = m_values.find(name);
        return found == m_values.end() || found->second.empty() ? std::string()
                                                                : found->second.front();
    }
    /// All that was given, in its order; empty when nothing was.
    [[nodiscard]] std::vector<std::string> texts(const std::string& name) const {
        const auto found = m_values.find(name);
        return found == m_values.end() ? std::vector<std::string>() : found->second;
    }

private:
    std::map<std::string, std::vector<std::string>> m_values;
};

class Command {
public:
    virtual ~Command() = default;
    [[nodiscard]] virtual std::string_view name() const = 0;
    [[nodiscard]] virtual std::string_view summary() const = 0;
    /// What the manual page says beyond the summary; empty where that says it all.
    [[nodiscard]] virtual std::string_view description() const { return {}; }
    [[nodiscard]] virtual std::vector<OptionSpec> options() const = 0;

    /// Runs the command and gives the exit status.
    virtual Status run(const Arguments& arguments) = 0;
};

/// The options that every command has.
[[nodiscard]] std::vector<OptionSpec> commonOptions();

/// Writes "orrinvale-cli: MESSAGE" to standard error, and for a bad command line the hint at
/// --help.
void complain(std::string_view message);
Status badUsage(std::string_view message);

/// One complaint for each entry that a run left out.
void complainOfEach(const std::vector<Error>& skipped);

/// Flushes the output and gives the exit status of a run that left this out and ended so. Tells it
/// where memory was what ended it.
[[nodiscard]] Status finish(Output& out, const std::vector<Error>& skipped, Ending ending);

/// Why the folder can not be listed at all; empty when it can.
[[nodiscard]] std::string folderFault(const FileSystem& files, const std::string& path);

/// Complains of it.
Status noSuchFolder(const std::string& path, const std::string& reason);
/// A folder could not be looked through: it can not be read, or there was not even a thread to be
/// had for reading it.
Status notScanned(const Error& error);

/// The path as an absolute one without "." and doubled slashes; ".." is resolved by the file
/// system. Hidden parts are judged by whole paths, so that "." must not count as a hidden name.
[[nodiscard]] std::string absolutePath(const std::string& path);

}  // namespace orrinvale::cli
