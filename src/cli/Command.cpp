// What all commands share. See Command.h.
#include "cli/Command.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <memory>

#include "cli/Output.h"
#include "cli/SearchWatch.h"
#include "engine/files/FolderNode.h"
#include "platform/paths.h"

namespace orrinvale::cli {

std::vector<StatusMeaning> statusMeanings() {
    return {{Status::Done, "Done."},
            {Status::SomeSkipped,
             "Done, but some entries could not be read; each is named on standard error and listed "
             "as skipped. Or the one "
             "thing that was asked for failed, or memory ran out; standard error says why."},
            {Status::BadUsage, "The command line is wrong."},
            {Status::NoSuchFolder,
             "What was named does not exist, or can not be used; nothing was printed."},
            {Status::Stopped, "Stopped by a signal; what was found until then was printed."}};
}

std::vector<OptionSpec> commonOptions() {
    return {{"--json", "", "Print one JSON document"},
            {"-0,--print0", "",
             "Print exact path bytes, each path ended by a NUL byte; not with --json"},
            {"--quiet", "", "No progress and no messages about single entries"},
            {"--log", "", "Send the log of the engine to standard error"}};
}

void complain(std::string_view message) {
    Output error(STDERR_FILENO);
    error.write("orrinvale-cli: " + printable(message) + "\n");
}

Status badUsage(std::string_view message) {
    complain(fmt::format("{}; see orrinvale-cli --help", message));
    return Status::BadUsage;
}

void complainOfEach(const std::vector<Error>& skipped) {
    for (const Error& entry : skipped) complain(fmt::format("{}: {}", entry.path, entry.reason()));
}

Status finish(Output& out, const std::vector<Error>& skipped, Ending ending) {
    if (!out.flush()) {
        complain("the result could not be written");
        return Status::SomeSkipped;
    }
    if (ending == Ending::Signalled) return Status::Stopped;
    if (ending == Ending::OutOfMemory) {
        complain("there was not enough memory to go on; what was found until then was printed");
        return Status::SomeSkipped;
    }
    return skipped.empty() ? Status::Done : Status::SomeSkipped;
}

std::string folderFault(const FileSystem& files, const std::string& path) {
    const auto folder = openFolderByPath(files, path, Links::Follow);
    return folder ? std::string() : systemError("open", path, folder.error()).reason();
}

Status noSuchFolder(const std::string& path, const std::string& reason) {
    complain(fmt::format("{}: {}", path, reason));
    return Status::NoSuchFolder;
}

Status notScanned(const Error& error) {
    if (error.number != EAGAIN) return noSuchFolder(error.path, error.reason());
    complain("there is not enough memory for this");
    return Status::SomeSkipped;
}

std::string absolutePath(const std::string& path) {
    std::string full = path;
    if (!path.starts_with('/')) {
        const std::unique_ptr<char, decltype(&std::free)> here(::getcwd(nullptr, 0), &std::free);
        if (!here) return path;
        full = std::string(here.get()) + '/' + path;
    }
    std::string out;
    for (std::string_view rest = full; !rest.empty();) {
        const std::string_view component = nextComponent(rest);
        if (component.empty() || component == ".") continue;
        if (component == "..") {
            const std::unique_ptr<char, decltype(&std::free)> real(
                ::realpath(full.c_str(), nullptr), &std::free);
            return real ? std::string(real.get()) : full;
        }
        out += '/';
        out += component;
    }
    return out.empty() ? "/" : out;
}

}  // namespace orrinvale::cli
