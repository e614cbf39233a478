// orrinvale-cli remove: does what a plan says, by the program's one removal.
#pragma once

#include "cli/Command.h"
#include "platform/fileTypes.h"

namespace orrinvale {
struct DuplicatePlan;
}

namespace orrinvale::cli {

class RemoveCommand final : public Command {
public:
    /// `files` must outlive the command.
    explicit RemoveCommand(const FileSystem& files) : m_files(files) {}

    [[nodiscard]] std::string_view name() const override { return "remove"; }
    [[nodiscard]] std::string_view summary() const override {
        return "Remove the copies that a plan of the command duplicates names";
    }
    [[nodiscard]] std::string_view description() const override;
    [[nodiscard]] std::vector<OptionSpec> options() const override;
    Status run(const Arguments& arguments) override;

private:
    [[nodiscard]] Status remove(const Arguments& arguments, const DuplicatePlan& plan) const;

    const FileSystem& m_files;
};

}  // namespace orrinvale::cli
