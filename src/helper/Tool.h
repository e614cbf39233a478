// Tool: the one program that the helper runs, and where it runs it.
#pragma once

#include <string>

#include "helper/EndSignal.h"
#include "platform/descriptor.h"

namespace orrinvale::helper {

/// Where the tool works.
struct WorkFolder {
    Descriptor folder;
    bool hidesMounts = false;  ///< what is mounted below it can not be seen from it

    /// A copy of the folder's mount without those below it; the folder itself where the system
    /// makes no copies (Linux before 5.2, and containers).
    [[nodiscard]] static WorkFolder of(Descriptor folder);
};

/// What came of a run.
struct ToolRun {
    std::string
        failure;  ///< why it did not run, or not to its own end; for people. Empty when it did.
    std::string output;      ///< the first bytes of what it printed
    std::string firstError;  ///< the first line of its complaints
};

/// Runs "/bin/rm -rf ./name" in the folder to its end, without environment and with no descriptor
/// but its three streams; nothing of it is left when this returns. When the signal comes it has a
/// second to end. Where the folder is no copy of its mount, the tool is kept from other file
/// systems by its own means. One thread.
[[nodiscard]] ToolRun runTool(int folder, bool hidesMounts, const std::string& name,
                              const EndSignal& end);

}  // namespace orrinvale::helper
