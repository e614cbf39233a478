// The list of commands. A new one is one line here.
#include "cli/CommandSet.h"

#include "cli/AppsCommand.h"
#include "cli/CacheCommand.h"
#include "cli/CleanCommand.h"
#include "cli/DuplicatesCommand.h"
#include "cli/EjectCommand.h"
#include "cli/LargeCommand.h"
#include "cli/LoginItemsCommand.h"
#include "cli/MemoryCommand.h"
#include "cli/RemoveCommand.h"
#include "cli/SettingsCommand.h"
#include "cli/ShareCommand.h"
#include "cli/SizeCommand.h"
#include "cli/UndoCommand.h"
#include "cli/UsageCommand.h"
#include "cli/VolumesCommand.h"

namespace orrinvale::cli {

CommandSet::CommandSet() {
    m_commands.push_back(std::make_unique<DuplicatesCommand>(m_files));
    m_commands.push_back(std::make_unique<CacheCommand>());
    m_commands.push_back(std::make_unique<RemoveCommand>(m_files));
    m_commands.push_back(std::make_unique<ShareCommand>(m_files));
    m_commands.push_back(std::make_unique<UndoCommand>(m_files));
    m_commands.push_back(std::make_unique<LargeCommand>(m_files));
    m_commands.push_back(std::make_unique<UsageCommand>(m_files));
    m_commands.push_back(std::make_unique<SizeCommand>(m_files));
    m_commands.push_back(std::make_unique<CleanCommand>(m_files, m_volumes));
    m_commands.push_back(std::make_unique<AppsCommand>(m_files, m_applications));
    m_commands.push_back(std::make_unique<VolumesCommand>(m_volumes));
    m_commands.push_back(std::make_unique<EjectCommand>(m_volumes));
    m_commands.push_back(std::make_unique<MemoryCommand>(m_memory, purgePrograms()));
    m_commands.push_back(std::make_unique<SettingsCommand>(m_files));
    m_commands.push_back(std::make_unique<LoginItemsCommand>(m_files));
}

}  // namespace orrinvale::cli
