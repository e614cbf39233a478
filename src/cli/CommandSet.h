// CommandSet: every command of orrinvale-cli, in the order in which the help shows them.
#pragma once

#include <memory>
#include <vector>

#include "cli/Command.h"
#include "platform/linux/LinuxApplications.h"
#include "platform/linux/LinuxFiles.h"
#include "platform/linux/LinuxMemory.h"
#include "platform/linux/LinuxVolumes.h"

namespace orrinvale::cli {

using Commands = std::vector<std::unique_ptr<Command>>;

/// Owns the commands and what they work on. To add one, name it in the constructor.
class CommandSet final {
public:
    CommandSet();
    CommandSet(const CommandSet&) = delete;
    CommandSet& operator=(const CommandSet&) = delete;

    [[nodiscard]] const Commands& commands() const { return m_commands; }

private:
    const LinuxFileSystem m_files;
    LinuxVolumes m_volumes;
    const LinuxMemory m_memory;
    const LinuxApplications m_applications;
    Commands m_commands;
};

}  // namespace orrinvale::cli
