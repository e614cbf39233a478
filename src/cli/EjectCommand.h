// orrinvale-cli eject: takes a volume out of the system, and says who is in the way where it stays.
#pragma once

#include "cli/Command.h"
#include "platform/volumes.h"

namespace orrinvale::cli {

/// An argument with a slash is the path that a volume is mounted on; without one, or where nothing
/// is mounted there, it is a volume's name. No such volume is NoSuchFolder, several of that name
/// are BadUsage, and a volume that stays is SomeSkipped.
class EjectCommand final : public Command {
public:
    /// `platform` must outlive the command.
    explicit EjectCommand(Volumes& platform) : m_platform(platform) {}

    [[nodiscard]] std::string_view name() const override { return "eject"; }
    [[nodiscard]] std::string_view summary() const override {
        return "Eject a volume, with all others of its drive";
    }
    [[nodiscard]] std::string_view description() const override {
        return "All that is mounted of the drive is unmounted, what was unlocked is locked again, "
               "a disk image is "
               "detached, "
               "a medium is ejected, and a drive that can be powered off is. Nothing is forced: a "
               "volume that is in "
               "use stays, and "
               "the programs that hold it are named as far as you may see them. A drive that the "
               "system runs from is "
               "refused before anything is touched. Drives need the service udisks2; writing what "
               "is still in memory "
               "to a "
               "slow medium may take minutes. An ejection that has begun can not be taken back, so "
               "that Ctrl-C ends "
               "nothing; the second one ends the program.";
    }
    [[nodiscard]] std::vector<OptionSpec> options() const override;
    Status run(const Arguments& arguments) override;

private:
    Volumes& m_platform;
};

}  // namespace orrinvale::cli
