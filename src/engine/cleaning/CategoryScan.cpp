// First the rules of the moment, then the scan that walks by them. A fault in the rules closes
// every folder.
#include "engine/cleaning/CategoryScan.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "engine/base/Log.h"
#include "engine/base/saturating.h"
#include "engine/cleaning/FolderUtilities.h"
#include "engine/files/HeldEntry.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

std::int64_t machineTime() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

std::vector<std::string> mountPathsOf(const FileSystem& files) {
    std::vector<std::string> out;
    if (const auto mounts = files.mountPoints())
        for (const MountPoint& each : *mounts) out.push_back(each.path);
    return out;
}

}  // namespace

CleanRules::CleanRules(const CleanParts& parts)
    : m_files(*parts.files),
      m_settings{parts.settingsFolder, parts.otherSettings},
      m_clock(parts.clock ? parts.clock : machineTime),
      m_run(parts.run != nullptr ? parts.run : std::make_shared<FoldersOfRun>()),
      m_folders(m_run->get(*parts.files, *parts.folders, *parts.utilities)),
      m_places(parts.files->resolved(m_folders.systemCaches()).value_or(m_folders.systemCaches()),
               parts.files->resolved(m_folders.systemLogs()).value_or(m_folders.systemLogs())),
      m_passing(parts.files->devicesOfPassingInodes()),
      m_mounts(mountPathsOf(*parts.files)) {
    loadKeepList();
}

void CleanRules::loadKeepList() {
    KeepList all;
    m_fault.reset();
    for (const std::string& folder : m_settings) {
        if (folder.empty()) continue;
        auto keep = KeepList::load(m_files, folder);
        if (keep) all.include(std::move(*keep));
        else m_fault = keep.error();
    }
    m_keep = std::move(all);
}

void CleanRules::askAnew(const std::vector<std::string>& realFolders) {
    loadKeepList();
    m_mounts = mountPathsOf(m_files);
    askPrograms(realFolders);
}

void CleanRules::learnMounts(CleanGround& ground) const {
    ground.mounts.clear();
    for (const std::string& mount : m_mounts)
        if (mount != ground.real && isWithin(mount, ground.real)) ground.mounts.push_back(mount);
}

void CleanRules::askPrograms(const std::vector<std::string>& realFolders) {
    m_open = OpenFiles::below(realFolders);
}

CleanGround CleanRules::groundOf(const CleanFolders::Folder& folder) {
    const auto rules = m_folders.rulesFor(folder.real);
    if (!isOfTheSystem(rules) && rules != CleanCategory::UserTrash) askPrograms({folder.real});
    return groundAsBefore(folder);
}

CleanGround CleanRules::groundAsBefore(const CleanFolders::Folder& folder) const {
    CleanGround ground{.folder = folder.path,
                       .real = folder.real,
                       .rules = m_folders.rulesFor(folder.real),
                       .places = &m_places,
                       .keep = &m_keep,
                       .open = &m_open,
                       .mounts = {},
                       .inodesPass = false,
                       .now = m_clock()};
    learnMounts(ground);
    const auto seen = m_files.attributes(FileSystem::noParent, folder.real.c_str(), Links::Keep);
    ground.inodesPass = seen && std::ranges::count(m_passing, seen->device) != 0;
    return ground;
}

std::string CleanRules::objection() const {
    return m_fault ? fmt::format("the list of what is always kept can not be read: {}: {}",
                                 m_fault->path, m_fault->reason())
                   : std::string();
}

CategoryScan::CategoryScan(const CleanParts& parts, const CleanWatch& watch)
    : m_parts(parts), m_watch(watch), m_rules(parts) {}

CategoryListing CategoryScan::run(const std::vector<std::string>& folders) {
    CategoryListing listing;
    for (const std::string& path : folders) {
        if (m_watch.stop != nullptr && *m_watch.stop) break;
        const auto folder = m_rules.folders().lookAt(path);
        if (!folder) continue;
        Log::line(fmt::format("Scan folder: {}", path));
        std::string objection = m_rules.objection();
        if (objection.empty()) objection = folder->objection;
        if (objection.empty()) scan(*folder, listing);
        else listing.closed.push_back({path, objection});
    }
    listing.skipped = m_skipped.entries();
    return listing;
}

void CategoryScan::scan(const CleanFolders::Folder& folder, CategoryListing& listing) {
    if (folder.isSingle) {
        std::vector<CleanRow> one;
        if (auto row = rowAt(folder.path)) one.push_back(std::move(*row));
        return sort(std::move(one), listing);
    }
    const CleanGround ground = m_rules.groundOf(folder);
    CleanWalk walk(*m_parts.files, ground, walkWatch());
    auto opened = m_parts.files->openFolder(FileSystem::noParent, folder.path.c_str(), Links::Keep);
    if (!opened) return m_skipped.add(systemError("open", folder.path, opened.error()));
    sort(walk.rows(std::move(*opened)), listing);
}

CleanWalk::Watch CategoryScan::walkWatch() {
    return {.stop = m_watch.stop,
            .skipped = &m_skipped,
            .entries = m_watch.entries,
            .complete = [this](const CleanRow& row) {
                if (row.isOffered() && m_watch.total != nullptr)
                    m_watch.total->fetch_add(row.bytes);
            }};
}

std::optional<CleanRow> CategoryScan::rowAt(const std::string& path) {
    const std::string name(lastPathComponent(path));
    const auto parent = HeldEntry::holdParentOf(*m_parts.files, path);
    if (!parent || !m_rules.objection().empty() ||
        !m_rules.folders().objectionToEntry(path).empty())
        return std::nullopt;
    const auto entry = m_parts.files->attributes(parent->get(), name.c_str(), Links::Keep);
    if (!entry) return std::nullopt;
    CleanFolders::Folder folder{.path = folderOf(path), .real = folderOf(path)};
    folder.real = m_parts.files->resolved(folder.path).value_or(folder.path);
    CleanGround ground = m_rules.groundOf(folder);
    ground.rules = m_rules.folders().rulesFor(joinPath(folder.real, name));
    return CleanWalk(*m_parts.files, ground, walkWatch()).one(parent->get(), name, *entry);
}

void CategoryScan::sort(std::vector<CleanRow> rows, CategoryListing& listing) const {
    for (CleanRow& row : rows) {
        if (row.kept != KeptBecause::Nothing) {
            CleanRow& kept = listing.kept.emplace_back(row);
            kept.seen.reset();
        }
        if (!row.isOffered()) continue;
        addSaturating(listing.bytes, row.bytes);
        addSaturating(listing.onDisk, row.onDisk);
        listing.rows.push_back(std::move(row));
    }
}

}  // namespace orrinvale
