// orrinvale-cli login-items: what the desktop starts at login, seen, switched and added.
#pragma once

#include "cli/Command.h"
#include "platform/fileTypes.h"

namespace orrinvale::cli {

/// Has the registry of login items work on those of this person.
void useLoginItems(const FileSystem& files);

/// Without words it lists. An item is named by its index in that list or by its file name; one that
/// there is not is BadUsage. What could not be done is SomeSkipped, with the reason.
class LoginItemsCommand final : public Command {
public:
    /// The file system outlives the command.
    explicit LoginItemsCommand(const FileSystem& files) : m_files(files) {}

    [[nodiscard]] std::string_view name() const override { return "login-items"; }
    [[nodiscard]] std::string_view summary() const override {
        return "Show what starts at login, or change it";
    }
    [[nodiscard]] std::string_view description() const override;
    [[nodiscard]] std::vector<OptionSpec> options() const override;
    Status run(const Arguments& arguments) override;

private:
    const FileSystem& m_files;
};

}  // namespace orrinvale::cli
