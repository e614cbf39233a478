// orrinvale-cli duplicates: the search as the duplicate page runs it, in the terminal.
#pragma once

#include "cli/Command.h"
#include "platform/fileTypes.h"

namespace orrinvale::cli {

class DuplicatesCommand final : public Command {
public:
    /// `files` must outlive the command.
    explicit DuplicatesCommand(const FileSystem& files) : m_files(files) {}

    [[nodiscard]] std::string_view name() const override { return "duplicates"; }
    [[nodiscard]] std::string_view summary() const override {
        return "Find files and application bundles with identical content";
    }
    [[nodiscard]] std::string_view description() const override {
        return "Files are equal when their sizes and a 64-bit checksum over their whole contents "
               "agree; they are "
               "not compared byte by byte. Folders whose names end in .app are applications and "
               "compared as wholes. "
               "Links directly in the folder are followed, links further down are not, and empty "
               "files are left out. "
               "Nothing is removed.";
    }
    [[nodiscard]] std::vector<OptionSpec> options() const override;
    Status run(const Arguments& arguments) override;

private:
    const FileSystem& m_files;
};

}  // namespace orrinvale::cli
