// The list of what goes, and the removal entry by entry.
#include "engine/uninstall/UninstallApp.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

#include "engine/base/Log.h"
#include "engine/cleaning/QnAuthorization.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {

// "com" begins the names of half of a Library, and "com.example" those of all that one maker wrote.
bool isClaimedBy(const std::string& name, const std::string& identifier) {
    if (identifier.empty()) return false;
    int parts = 0;
    for (std::size_t i = 0; i < identifier.size(); ++i)
        if (identifier[i] != '.' && (i == 0 || identifier[i - 1] == '.')) ++parts;
    return parts >= 3 ? name.starts_with(identifier) : name == identifier;
}

PlannedEntry PlannedEntry::at(const FileSystem& files, std::string path) {
    const auto seen = files.attributes(FileSystem::noParent, path.c_str(), Links::Keep);
    return {std::move(path), seen ? EntryIdentity::of(*seen) : EntryIdentity(),
            seen ? 0 : seen.error()};
}

std::vector<std::string> UninstallApp::searchedFolders() const {
    const std::string library = joinPath(m_home, "Library");
    return {m_root + "/Library", library, joinPath(library, "Preferences"),
            joinPath(library, "Caches")};
}

// The longest identifier that fits is the owner; of two equal ones, which two copies of one
// application have, the one that stays.
bool UninstallApp::isClaimedByOthers(const std::string& name, const std::string& bundle) const {
    return std::any_of(m_others.begin(), m_others.end(), [&](const std::string& other) {
        return other.size() >= bundle.size() && isClaimedBy(name, other);
    });
}

std::vector<std::string> UninstallApp::getFilesByBundle(
    const std::string& bundle, const std::vector<std::string>& Paths) const {
    std::vector<std::string> out;
    std::set<std::tuple<std::uint64_t, std::uint64_t, std::string>> seen;  // by folder and name
    for (const std::string& folder : Paths) {
        const auto opened = m_files.openFolder(FileSystem::noParent, folder.c_str(), Links::Follow);
        const auto own = opened ? m_files.attributes(opened->get()) : tl::unexpected(0);
        if (!own) continue;
        CatalogBatch batch;
        for (auto more = m_files.readFolder(opened->get(), batch); more && *more;
             more = m_files.readFolder(opened->get(), batch))
            for (const CatalogEntry& each : batch.entries) {
                const std::string name = each.name;
                if (!isClaimedBy(name, bundle) || isClaimedByOthers(name, bundle)) continue;
                if (m_areOthersUnread && name != bundle) continue;
                if (seen.emplace(own->device, own->inode, name).second)
                    out.push_back(joinPath(folder, name));
            }
    }
    return out;
}

std::vector<PlannedEntry> UninstallApp::planOf(const AppItems& app) const {
    std::vector<std::string> paths;
    if (app.bundleID && !app.bundleID->empty())
        paths = getFilesByBundle(*app.bundleID, searchedFolders());
    paths.push_back(app.path);
    std::vector<PlannedEntry> out;
    out.reserve(paths.size());
    for (std::string& path : paths) out.push_back(PlannedEntry::at(m_files, std::move(path)));
    return out;
}

bool UninstallApp::uninstallApp(const AppItems& app) const {
    const std::atomic<bool> never{false};
    return uninstallApp(app, planOf(app), *QnAuthorization::makeDoor(), never, nullptr);
}

bool UninstallApp::uninstallApp(const AppItems& app, const std::vector<PlannedEntry>& plan,
                                RemovalDoor& door, const std::atomic<bool>& stop,
                                std::string* reason) {
    Log::line(fmt::format("Del App Name:{}  Path:{}", app.bundleID.value_or("(null)"), app.path));
    for (const PlannedEntry& each : plan) {
        LeavingEntry entry;
        entry.path = each.path;
        entry.identity = each.identity;
        const RemovalResult result = door.remove(entry, stop);
        if (result.gone) continue;
        if (reason != nullptr)
            *reason =
                result.failures.empty() ? std::string("stopped") : result.failures.front().reason;
        return false;
    }
    return true;
}

}  // namespace orrinvale
