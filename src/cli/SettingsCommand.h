// orrinvale-cli settings: shows and changes the settings that the windows use.
#pragma once

#include "cli/Command.h"
#include "platform/fileTypes.h"

namespace orrinvale::cli {

/// Without words it lists all. What may be set is checked by the table of settings; a key that
/// there is not, and a value that the key does not take, are BadUsage. SomeSkipped where it could
/// not be saved.
class SettingsCommand final : public Command {
public:
    /// The file system outlives the command.
    explicit SettingsCommand(const FileSystem& files) : m_files(files) {}

    [[nodiscard]] std::string_view name() const override { return "settings"; }
    [[nodiscard]] std::string_view summary() const override {
        return "Show the settings, or change one";
    }
    [[nodiscard]] std::string_view description() const override;
    [[nodiscard]] std::vector<OptionSpec> options() const override;
    Status run(const Arguments& arguments) override;

private:
    const FileSystem& m_files;
};

}  // namespace orrinvale::cli
