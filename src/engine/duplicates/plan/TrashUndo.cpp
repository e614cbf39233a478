// A move leaves an entry its number, size and time, and by these it is found again among what lies
// in the trash, whatever name it has there and whoever moved it.
#include "engine/duplicates/plan/TrashUndo.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <optional>
#include <set>

#include "engine/duplicates/BundleListing.h"
#include "engine/files/HeldEntry.h"
#include "engine/files/ProtectedPlaces.h"
#include "engine/files/Trash.h"
#include "platform/error.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

using EntryKey = std::pair<std::uint64_t, std::uint64_t>;  // device, inode

// What a move changes is left out.
bool isTheSame(const EntryIdentity& identity, const FileAttributes& now) {
    if (identity.device != now.device || identity.inode != now.inode || identity.type != now.type)
        return false;
    return identity.type != FileType::Regular ||
           (identity.size == now.size && identity.modified == now.modified);
}

// The nearest folder above one that is gone.
std::string standingAbove(const FileSystem& files, std::string folder) {
    while (folder != "/" && !files.attributes(FileSystem::noParent, folder.c_str(), Links::Follow))
        folder = folderOf(folder);
    return folder;
}

/// One undo, folder by folder.
class UndoRun final {
public:
    UndoRun(const FileSystem& files, const FolderVariables& variables,
            const std::vector<UndoFolder>& folders)
        : m_files(files), m_trash(files, m_none, variables) {
        for (const UndoFolder& each : folders) m_folders.emplace(each.path, each);
    }

    void bringBack(const PlanMember& member, UndoOutcome& outcome);

private:
    struct Found {
        const TrashFolder* trash;
        TrashFolder::Trashed entry;
    };
    struct Target {
        Descriptor folder;
        std::string fault;  // why nothing can come back to it
    };
    const Target& targetOf(const std::string& folder);
    void learnTrashes(const std::string& folder);
    using Place = std::multimap<EntryKey, Found>::iterator;
    [[nodiscard]] Place foundOf(const PlanMember& member);
    [[nodiscard]] bool isThat(const PlanMember& member, const Found& found) const;

    const FileSystem& m_files;
    const ProtectedPlaces m_none;
    const Trash m_trash;
    std::map<std::string, UndoFolder> m_folders;
    std::map<std::string, Target> m_targets;
    std::set<EntryKey> m_knownTrashes;
    std::set<std::uint64_t> m_askedDevices;
    std::vector<std::unique_ptr<TrashFolder>> m_trashes;
    std::multimap<EntryKey, Found> m_found;
};

// Each volume once, by a folder of it.
void UndoRun::learnTrashes(const std::string& folder) {
    for (TrashFolder& each : m_trash.trashesOf(folder)) {
        const auto place =
            m_files.attributes(FileSystem::noParent, each.placeOf("").c_str(), Links::Follow);
        if (!place || !m_knownTrashes.emplace(place->device, place->inode).second) continue;
        m_trashes.push_back(std::make_unique<TrashFolder>(std::move(each)));
        const auto listed = m_trashes.back()->list();
        if (!listed) continue;
        for (const auto& entry : *listed)
            m_found.emplace(EntryKey{entry.attributes.device, entry.attributes.inode},
                            Found{m_trashes.back().get(), entry});
    }
}

const UndoRun::Target& UndoRun::targetOf(const std::string& folder) {
    const auto [place, isNew] = m_targets.try_emplace(folder);
    Target& target = place->second;
    if (!isNew) return target;
    const auto was = m_folders.find(folder);
    auto held = HeldEntry::holdParentOf(m_files, joinPath(folder, "x"));
    const auto now = held ? m_files.attributes(held->get()) : tl::unexpected(held.error());
    if (!now)
        target.fault = now.error() == ENOENT ? "the folder that it was in is gone"
                                             : systemError("open", {}, now.error()).reason();
    else if (was == m_folders.end() || was->second.device != now->device ||
             was->second.inode != now->inode)
        target.fault = "another folder is where it was";
    else target.folder = std::move(*held);
    const std::string standing = standingAbove(m_files, folder);
    const auto seen = m_files.attributes(FileSystem::noParent, standing.c_str(), Links::Follow);
    if (m_askedDevices.insert(seen ? seen->device : 0).second) learnTrashes(standing);
    return target;
}

// The number of a folder that was removed for good is given to the next one: a bundle is known by
// what it holds.
bool UndoRun::isThat(const PlanMember& member, const Found& found) const {
    if (!isTheSame(member.identity, found.entry.attributes)) return false;
    if (member.identity.type != FileType::Folder) return true;
    const auto passing = m_files.devicesOfPassingInodes();
    const std::atomic<bool> never{false};
    const auto now =
        listBundle(m_files, found.trash->placeOf(found.entry.name), {passing, false}, never);
    return now && now->digest == member.listing;
}

// Of a file with several names any of those in the trash: they are one file, and each comes back
// once.
UndoRun::Place UndoRun::foundOf(const PlanMember& member) {
    const auto [begin, end] = m_found.equal_range({member.identity.device, member.identity.inode});
    const auto found =
        std::find_if(begin, end, [&](const auto& each) { return isThat(member, each.second); });
    return found == end ? m_found.end() : found;
}

void UndoRun::bringBack(const PlanMember& member, UndoOutcome& outcome) {
    const Target& target = targetOf(folderOf(member.path));
    const std::string name(lastPathComponent(member.path));
    if (target.folder.isOpen()) {
        const auto now = m_files.attributes(target.folder.get(), name.c_str(), Links::Keep);
        if (now && now->device == member.identity.device && now->inode == member.identity.inode) {
            ++outcome.inPlace;  // never went, whatever was written to it since
            return;
        }
    }
    const auto found = foundOf(member);
    if (found == m_found.end()) {
        outcome.left.push_back({member.path,
                                {},
                                target.fault.empty()
                                    ? "it is not in the trash any more"
                                    : target.fault + ", and it is not in the trash"});
        return;
    }
    const auto& [trash, entry] = found->second;
    auto why = target.folder.isOpen() ? trash->giveBack(entry, target.folder.get(), name)
                                      : std::optional(target.fault);
    if (why) {
        outcome.left.push_back({member.path, trash->placeOf(entry.name), std::move(*why)});
        return;
    }
    outcome.restored.push_back(member.path);
    m_found.erase(found);
}

}  // namespace

std::vector<UndoFolder> foldersOf(const FileSystem& files, const DuplicatePlan& plan) {
    std::map<std::string, UndoFolder> folders;
    for (const PlanGroup& group : plan.groups)
        for (const PlanMember& member : group.members) {
            if (!member.goes) continue;
            const auto [place, isNew] = folders.try_emplace(folderOf(member.path));
            if (!isNew) continue;
            const auto seen =
                files.attributes(FileSystem::noParent, place->first.c_str(), Links::Follow);
            if (seen) place->second = {place->first, seen->device, seen->inode};
            else place->second.path = place->first;
        }
    std::vector<UndoFolder> list;
    for (auto& each : folders) list.push_back(std::move(each.second));
    return list;
}

UndoOutcome undoPlan(const FileSystem& files, const FolderVariables& variables,
                     const DuplicatePlan& plan, const std::vector<UndoFolder>& folders,
                     const std::atomic<bool>& stop) {
    UndoOutcome outcome;
    UndoRun run(files, variables, folders);
    for (const PlanGroup& group : plan.groups)
        for (const PlanMember& member : group.members) {
            if (!member.goes) continue;
            if (stop) {
                outcome.stopped = true;
                return outcome;
            }
            run.bringBack(member, outcome);
        }
    return outcome;
}

}  // namespace orrinvale
