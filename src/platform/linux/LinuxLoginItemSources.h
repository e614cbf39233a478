// LinuxLoginItemSources: who brought a file, and what systemd starts in the background when this
// person logs in.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/FolderVariables.h"

namespace orrinvale {

/// The Debian packages that have these absolute paths, by path; nothing for those of none. With the
/// programs of a system whose /bin is that of /usr both spellings are looked for. Reads every list
/// of packages once, some 30 ms for 1,300 of them. Any thread.
[[nodiscard]] std::map<std::string, std::string> packagesOf(
    const std::vector<std::string>& paths, const std::string& lists = "/var/lib/dpkg/info");

/// One service that is enabled for the person's own systemd.
struct BackgroundService {
    std::string name;         ///< "pipewire.service"
    std::string description;  ///< for people; empty where its unit says none
    std::string file;         ///< of the unit
    bool isPersons = false;   ///< enabled by the person, not by the system
    friend bool operator==(const BackgroundService&, const BackgroundService&) = default;
};

/// By name, each once; the person's word counts before the system's. A unit that is masked is none.
/// Any thread.
[[nodiscard]] std::vector<BackgroundService> backgroundServices(
    const FolderVariables& variables = FolderVariables::ofThisProcess(),
    const std::vector<std::string>& systems = {"/etc/systemd/user", "/usr/lib/systemd/user"});

}  // namespace orrinvale
