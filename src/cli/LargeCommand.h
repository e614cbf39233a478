// orrinvale-cli large: what takes the space in a folder, biggest first at every level.
#pragma once

#include "cli/Command.h"
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
               "once for each.";
    }
    [[nodiscard]] std::vector<OptionSpec> options() const override;
    Status run(const Arguments& arguments) override;

private:
    const FileSystem& m_files;
};

}  // namespace orrinvale::cli
