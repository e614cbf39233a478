// From entries to the folders that hold what they start.
#include "platform/linux/FolderApplications.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <iterator>

#include "platform/linux/DesktopEntries.h"
#include "platform/linux/trashForecast.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

// A link stands for a folder that is somebody else's.
bool isRealFolder(const std::string& path, bool& isOwn) {
    struct stat seen {};
    if (::lstat(path.c_str(), &seen) != 0 || !S_ISDIR(seen.st_mode)) return false;
    isOwn = seen.st_uid == ::getuid();
    return true;
}

// Where people and build tools put the parts of many programs.
bool isForMany(std::string_view name) {
    constexpr std::array<std::string_view, 14> names{"bin",     "sbin", "lib",   "lib32", "lib64",
                                                     "libexec", "etc",  "share", "var",   "src",
                                                     "include", "man",  "games", "apps"};
    return std::ranges::any_of(
        names, [&](std::string_view each) { return equalIgnoringCase(each, name); });
}

}  // namespace

// The uppermost folder on the way to the program; nothing where the program lies in a holder
// itself, or beside others' parts.
std::string FolderApplications::folderHolding(const std::string& program) const {
    for (const std::string& holder : m_places.folderHolders) {
        const std::string real = withoutLinks(holder);
        for (const std::string& spelled : {real, holder}) {
            if (!isWithin(program, spelled) || program.size() <= spelled.size()) continue;
            std::string_view rest = std::string_view(program).substr(spelled.size());
            const std::string_view name = nextComponent(rest);
            if (!rest.empty() && !isForMany(name)) return joinPath(real, name);
        }
    }
    return {};
}

void FolderApplications::list(std::vector<StartingEntry>& entries,
                              ApplicationInventory& inventory) const {
    std::vector<ApplicationRecord> out;
    for (StartingEntry& each : entries) {
        if (each.isClaimed) continue;
        std::string folder = folderHolding(each.file);
        if (folder.empty()) folder = folderHolding(each.program);
        bool isOwn = false;
        // Bundles are listed as such.
        if (folder.empty() || pathExtension(folder) == "app" || !isRealFolder(folder, isOwn))
            continue;
        each.isClaimed = true;
        auto found = std::find_if(out.begin(), out.end(), [&](const ApplicationRecord& record) {
            return record.path == folder;
        });
        if (found == out.end()) {
            ApplicationRecord record;
            record.type = ApplicationType::Folder;
            record.path = folder;
            record.id = each.id;
            record.name = each.entry.name.empty() ? each.id : each.entry.name;
            record.icon = each.entry.icon;
            record.installed = madeAt(folder);
            record.isPersons = isOwn;
            record.isOurs = isWithin(m_places.ownProgram, folder);
            found = out.insert(out.end(), std::move(record));
        }
        const std::string& program = each.file.empty() ? each.program : each.file;
        const bool isOther =
            !found->programs.empty() && std::ranges::count(found->programs, program) == 0;
        if (isOther) found->others.push_back(each.entry.name.empty() ? each.id : each.entry.name);
        found->entries.push_back(each.path);
        found->programs.push_back(program);
    }
    std::ranges::move(out, std::back_inserter(inventory.records));
}

ApplicationDetails FolderApplications::details(const ApplicationRecord& record) const {
    ApplicationDetails out;
    for (const std::string& each : record.programs)
        out.lastUse = std::max(out.lastUse, lastReadAt(each));
    return out;
}

RemovalForecast FolderApplications::forecast(const std::vector<ApplicationRecord>& records,
                                             const Waiting& /*waiting*/) const {
    return forecastOfTrash(records, m_places);
}

}  // namespace orrinvale
