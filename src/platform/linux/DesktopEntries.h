// DesktopEntries: all entries of this machine that start an application, with the program that each
// starts looked up.
#pragma once

#include <string>
#include <vector>

#include "platform/applications.h"
#include "platform/linux/ApplicationPlaces.h"
#include "platform/linux/DesktopEntry.h"

namespace orrinvale {

struct StartingEntry {
    std::string path;
    std::string id;  ///< its name below "applications" with hyphens for slashes, without ".desktop"
    DesktopEntry entry;
    StartedProgram started;
    std::string program;  ///< as it was found, absolute; empty when it was not
    std::string file;     ///< the same without links
    bool isClaimed = false;
};

/// The entries that count: applications that are neither hidden nor kept from menus, and whose
/// TryExec is there. Of entries with one id the first that counts. At most 20,000 files are looked
/// at; folders are entered through links, each once.
[[nodiscard]] std::vector<StartingEntry> startingEntries(const ApplicationPlaces& places);

/// The path of a program by its name or path; empty when there is none that may be run.
[[nodiscard]] std::string programNamed(const std::string& name,
                                       const std::vector<std::string>& folders);

/// Gives the record the names of all that its package brings beside the one that it goes by, each
/// once: they go with it.
void takeOthers(ApplicationRecord& record, const std::vector<std::string>& names);

}  // namespace orrinvale
