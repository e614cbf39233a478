// orrinvale-cli undo: brings back what `remove --plan FILE --trash` moved.
#pragma once

#include "cli/Command.h"
#include "platform/fileTypes.h"

namespace orrinvale::cli {

class UndoCommand final : public Command {
public:
    /// `files` must outlive the command.
    explicit UndoCommand(const FileSystem& files) : m_files(files) {}

    [[nodiscard]] std::string_view name() const override { return "undo"; }
    [[nodiscard]] std::string_view summary() const override {
        return "Bring back what the command remove moved to the trash";
    }
    [[nodiscard]] std::string_view description() const override;
    [[nodiscard]] std::vector<OptionSpec> options() const override;
    Status run(const Arguments& arguments) override;

private:
    [[nodiscard]] Status undo(const Arguments& arguments, const std::string& id) const;

    const FileSystem& m_files;
};

}  // namespace orrinvale::cli
