// orrinvale-cli usage: where the space of a folder has gone, level by level.
#pragma once

#include "cli/Command.h"
#include "platform/fileTypes.h"

namespace orrinvale::cli {

/// The scan is always whole; the limit and the depth decide what is kept and printed of it.
class UsageCommand final : public Command {
public:
    /// `files` must outlive the command.
    explicit UsageCommand(const FileSystem& files) : m_files(files) {}

    [[nodiscard]] std::string_view name() const override { return "usage"; }
    [[nodiscard]] std::string_view summary() const override {
        return "Show where the space of a folder has gone";
    }
    [[nodiscard]] std::string_view description() const override {
        return "Prints the entries of the folder that take at least the limit, the biggest first "
               "at every level, and for each folder how many entries are below the limit and what "
               "they take together, so that each level adds up. Sizes are lengths, of a file with "
               "several names once for each; with --json the bytes on the disk stand beside them, "
               "where such a file counts once. Folders on other file systems are told and not "
               "entered, subvolumes are.";
    }
    [[nodiscard]] std::vector<OptionSpec> options() const override;
    Status run(const Arguments& arguments) override;

private:
    const FileSystem& m_files;
};

}  // namespace orrinvale::cli
