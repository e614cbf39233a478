// orrinvale-cli apps: the applications of this machine, of every kind, and what they left.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/Command.h"
#include "platform/applications.h"

namespace orrinvale::cli {

/// Nothing is removed by it.
class AppsCommand final : public Command {
public:
    /// Both outlive the command.
    AppsCommand(const FileSystem& files, const Applications& applications)
        : m_files(files), m_applications(applications) {}

    [[nodiscard]] std::string_view name() const override { return "apps"; }
    [[nodiscard]] std::string_view summary() const override {
        return "List the applications that are installed, or what they left";
    }
    [[nodiscard]] std::string_view description() const override;
    [[nodiscard]] std::vector<OptionSpec> options() const override;
    Status run(const Arguments& arguments) override;

private:
    /// Of all types where none is wanted.
    Status listApplications(const Arguments& arguments,
                            const std::vector<ApplicationType>& wanted) const;
    Status listLeftovers(const Arguments& arguments) const;

    const FileSystem& m_files;
    const Applications& m_applications;
};

}  // namespace orrinvale::cli
