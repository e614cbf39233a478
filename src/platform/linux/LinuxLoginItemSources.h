// LinuxLoginItemSources: who brought a file, and what systemd starts in the background when this
// person logs in.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/FolderVariables.h"
#include "platform/login_items.h"

namespace orrinvale {

/// The Debian packages that have these absolute paths, by path; nothing for those of none. With the
/// programs of a system whose /bin is that of /usr both spellings are looked for. Reads every list
/// of packages once, some 30 ms for 1,300 of them. Any thread.
[[nodiscard]] std::map<std::string, std::string> packagesOf(
    const std::vector<std::string>& paths, const std::string& lists = "/var/lib/dpkg/info");

/// By name, each once; the person's word counts before the system's. A unit that is masked is none.
/// Any thread.
[[nodiscard]] std::vector<BackgroundService> backgroundServices(
    const FolderVariables& variables = FolderVariables::ofThisProcess(),
    const std::vector<std::string>& systems = {"/etc/systemd/user", "/usr/lib/systemd/user"});

}  // namespace orrinvale
