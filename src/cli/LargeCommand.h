// orrinvale-cli large: what takes the space in a folder, biggest first at every level.
#pragma once

#include <vector>

#include "cli/Command.h"
#include "engine/largefiles/LargestFiles.h"
#include "platform/fileTypes.h"

namespace orrinvale::cli {

/// The scan is always whole; the options limit what is printed of it.
class LargeCommand final : public Command {
public:
    /// `files` must outlive the command.
    explicit LargeCommand(const FileSystem& files) : m_files(files) {}

    [[nodiscard]] std::string_view name() const override { return "large"; }
    [[nodiscard]] std::string_view summary() const override {
        return "Show what is large in a folder, biggest first";
    }
    [[nodiscard]] std::string_view description() const override {
        return "Prints the entries of the folder, the biggest first at every level. The whole tree "
               "is scanned, "
               "hidden and system files included, however little of it is printed. A file with "
               "several names counts "
               "once for each. With --flat prints the files of all folders in one list, each with "
               "the day on which it was last written; an application folder counts as one file. "
               "Ages are given as 10d, 2w, 6m or 1y. What was not opened for so long is told from "
               "the times that the system keeps: not on what is mounted noatime or read-only, and "
               "elsewhere mostly to a day; files without such a time are left out and counted.";
    }
    [[nodiscard]] std::vector<OptionSpec> options() const override;
    Status run(const Arguments& arguments) override;

private:
    [[nodiscard]] static Status printFlat(const Arguments& arguments, FileNodeTree& tree,
                                          FileWish wish, std::uint64_t top,
                                          const std::vector<Error>& skipped, Ending ending);

    const FileSystem& m_files;
};

}  // namespace orrinvale::cli
