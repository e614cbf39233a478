// orrinvale-cli eject: takes a volume out of the system, and says who is in the way where it stays.
#pragma once

#include "cli/Command.h"
#include "platform/volumes.h"

namespace orrinvale::cli {

/// An argument with a slash is the path that a volume is mounted on; without one, or where nothing is mounted there, it is a
/// volume's name. No such volume is NoSuchFolder, several of that name are BadUsage, and a volume that stays is SomeSkipped.
class EjectCommand final : public Command {
public:
    /// `platform` must outlive the command.
    explicit EjectCommand(Volumes& platform) : m_platform(platform) {}

    [[nodiscard]] std::string_view name() const override { return "eject"; }
    [[nodiscard]] std::string_view summary() const override { return "Eject a volume, with all others of its drive"; }
    [[nodiscard]] std::vector<OptionSpec> options() const override;
    Status run(const Arguments& arguments) override;

private:
    Volumes& m_platform;
};

}  // namespace orrinvale::cli
