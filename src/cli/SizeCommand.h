// orrinvale-cli size: how many bytes lie at a path or below it, counted as the cleaning lists count
// them.
#pragma once

#include "cli/Command.h"
#include "platform/fileTypes.h"

namespace orrinvale::cli {

/// Paths are measured in the order given, each for itself. One that can not be measured is left out
/// of the sizes and told as skipped; only when none can be measured the status is NoSuchFolder and
/// nothing is printed.
class SizeCommand final : public Command {
public:
    /// `files` must outlive the command.
    explicit SizeCommand(const FileSystem& files) : m_files(files) {}

    [[nodiscard]] std::string_view name() const override { return "size"; }
    [[nodiscard]] std::string_view summary() const override {
        return "Add up the sizes of files and folders";
    }
    [[nodiscard]] std::string_view description() const override {
        return "Each path is measured for itself. Lengths of files are added up, not the blocks "
               "that they take on "
               "the disk; a file counts once for each of its names. Links are not followed, except "
               "a path that ends "
               "in a slash.";
    }
    [[nodiscard]] std::vector<OptionSpec> options() const override;
    Status run(const Arguments& arguments) override;

private:
    const FileSystem& m_files;
};

}  // namespace orrinvale::cli
