// A move leaves an entry its number, size and time. By these it is found again among what lies in
// the trash, whatever name it has there, and its record tells that it belongs where the plan had
// it.
#include "engine/duplicates/plan/TrashUndo.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <optional>
#include <set>
#include <utility>

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
    if (identity.type != now.type) return false;
    if (!identity.inodePasses && (identity.device != now.device || identity.inode != now.inode))
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
        : m_files(files),
          m_passing(files.devicesOfPassingInodes()),
          m_trash(files, m_none, variables) {
        for (const UndoFolder& each : folders) m_folders.emplace(each.path, each);
    }

    void bringBack(const PlanMember& member, UndoOutcome& outcome);
    /// Whether it would be found in a trash; each entry there once.
    [[nodiscard]] bool takeFound(const PlanMember& member);

private:
    struct Found {
        const TrashFolder* trash;
        TrashFolder::Trashed entry;
        bool isBack = false;
        bool hasRecord = true;  // known where it is looked for by its record
    };
    struct Target {
        Descriptor folder;
        std::string fault;             // why nothing can come back to it
        std::string place;             // of the folder, as records have it
        std::uint64_t deviceThen = 0;  // of its volume
        std::uint64_t deviceNow = 0;
    };
    /// What there is of an entry in the trash.
    struct Choice {
        Found* found = nullptr;
        std::string objection;  // why it is not that entry after all
    };
    const Target& targetOf(const std::string& folder);
    void openTarget(const std::string& folder, Target& target);
    void learnTrashes(const std::string& folder);
    void learnOrigins();
    [[nodiscard]] Found* findAt(const std::string& origin, const PlanMember& member,
                                const EntryIdentity& identity);
    [[nodiscard]] bool inodesPass(std::uint64_t device) const;
    [[nodiscard]] EntryIdentity identityNow(const PlanMember& member, const Target& target) const;
    [[nodiscard]] bool isThat(const PlanMember& member, const EntryIdentity& identity,
                              const Found& found) const;
    [[nodiscard]] Choice choiceOf(const PlanMember& member, const Target& target);
    [[nodiscard]] Choice choiceByNumber(const PlanMember& member, const EntryIdentity& identity,
                                        const std::string& place);
    [[nodiscard]] Choice choiceByRecord(const PlanMember& member, const EntryIdentity& identity,
                                        const std::string& place);
    [[nodiscard]] bool isInPlace(const Target& target, const std::string& name,
                                 const EntryIdentity& identity) const;
    [[nodiscard]] static std::string reasonOfMissing(const Target& target);

    const FileSystem& m_files;
    const std::vector<std::uint64_t> m_passing;
    const ProtectedPlaces m_none;
    const Trash m_trash;
    std::map<std::string, UndoFolder> m_folders;
    std::map<std::string, Target> m_targets;
    std::set<std::pair<EntryKey, std::uint64_t>> m_knownTrashes;  // and their mounts
    std::set<std::pair<std::uint64_t, std::uint64_t>> m_asked;    // devices and mounts
    std::vector<std::unique_ptr<TrashFolder>> m_trashes;
    std::multimap<EntryKey, Found> m_found;
    std::multimap<std::string, Found*> m_byOrigin;  // where numbers do not last
    std::size_t m_originsKnown = 0;                 // trashes
};

// Each mount once, by a folder of it: two of one volume have trashes of their own, or one that is
// reached, and has its records read, by either.
void UndoRun::learnTrashes(const std::string& folder) {
    for (TrashFolder& each : m_trash.trashesOf(folder)) {
        const auto place =
            m_files.attributes(FileSystem::noParent, each.placeOf("").c_str(), Links::Follow);
        if (!place ||
            !m_knownTrashes.emplace(EntryKey{place->device, place->inode}, place->mount).second)
            continue;
        m_trashes.push_back(std::make_unique<TrashFolder>(std::move(each)));
        auto listed = m_trashes.back()->list();
        if (!listed) continue;
        for (auto& entry : *listed) {
            entry.inodePasses = inodesPass(entry.attributes.device);
            const EntryKey key{entry.attributes.device, entry.attributes.inode};
            m_found.emplace(key, Found{m_trashes.back().get(), std::move(entry)});
        }
    }
}

bool UndoRun::inodesPass(std::uint64_t device) const {
    return std::ranges::binary_search(m_passing, device);
}

const UndoRun::Target& UndoRun::targetOf(const std::string& folder) {
    const auto [place, isNew] = m_targets.try_emplace(folder);
    if (isNew) openTarget(folder, place->second);
    return place->second;
}

// A volume gets another number with a restart, or when it is plugged in again, while its folders
// keep theirs. Where these do not last either the path is all there is.
void UndoRun::openTarget(const std::string& folder, Target& target) {
    const auto was = m_folders.find(folder);
    auto held = HeldEntry::holdParentOf(m_files, joinPath(folder, "x"));
    const auto now = held ? m_files.attributes(held->get()) : tl::unexpected(held.error());
    if (!now)
        target.fault = now.error() == ENOENT ? "the folder that it was in is gone"
                                             : systemError("open", {}, now.error()).reason();
    else if (was == m_folders.end() || was->second.inode == 0 ||
             (was->second.inode != now->inode && !inodesPass(now->device)))
        target.fault = "another folder is where it was";
    else target.folder = std::move(*held);
    const std::string standing = standingAbove(m_files, folder);
    const auto seen = m_files.attributes(FileSystem::noParent, standing.c_str(), Links::Follow);
    target.deviceNow = seen ? seen->device : 0;
    if (was != m_folders.end()) {
        target.deviceThen = was->second.device;
        target.place = was->second.place;
    }
    if (target.place.empty()) target.place = folder;
    if (m_asked.emplace(target.deviceNow, seen ? seen->mount : 0).second) learnTrashes(standing);
}

// What the plan's entry has to look like today.
EntryIdentity UndoRun::identityNow(const PlanMember& member, const Target& target) const {
    EntryIdentity identity = member.identity;
    if (identity.device == target.deviceThen) identity.device = target.deviceNow;
    identity.learnPassing(m_passing);
    return identity;
}

// The number of a folder that was removed for good is given to the next one: a bundle is known by
// what it holds.
bool UndoRun::isThat(const PlanMember& member, const EntryIdentity& identity,
                     const Found& found) const {
    if (!isTheSame(identity, found.entry.attributes)) return false;
    if (member.identity.type != FileType::Folder) return true;
    const std::atomic<bool> never{false};
    const auto now =
        listBundle(m_files, found.trash->placeOf(found.entry.name), {m_passing, false}, never);
    return now && now->digest == member.listing;
}

// Of a file with several names each has a record of its own.
UndoRun::Choice UndoRun::choiceByNumber(const PlanMember& member, const EntryIdentity& identity,
                                        const std::string& place) {
    Choice choice;
    const auto [begin, end] = m_found.equal_range({identity.device, identity.inode});
    for (auto each = begin; each != end; ++each) {
        Found& found = each->second;
        if (found.isBack) continue;
        const auto origin = found.trash->origin(found.entry.name);
        if (!isThat(member, identity, found)) {
            if (choice.found == nullptr && origin == place &&
                found.entry.attributes.type == identity.type)
                choice = {&found, "it was written to since"};
            continue;
        }
        if (origin == place || origin == std::string()) return {&found, {}};
        choice = {&found, origin ? "by the trash's record it was elsewhere"
                                 : "the trash has no record of it any more"};
    }
    return choice;
}

void UndoRun::learnOrigins() {
    for (auto& [key, found] : m_found)
        if (found.entry.inodePasses) {
            auto origin = found.trash->origin(found.entry.name);
            found.hasRecord = origin.has_value();
            m_byOrigin.emplace(std::move(origin).value_or(std::string()), &found);
        }
}

UndoRun::Found* UndoRun::findAt(const std::string& origin, const PlanMember& member,
                                const EntryIdentity& identity) {
    const std::string_view name = lastPathComponent(member.path);
    const auto [begin, end] = m_byOrigin.equal_range(origin);
    for (auto each = begin; each != end; ++each) {
        Found& found = *each->second;
        if (found.isBack || (origin.empty() && !isNameInTrash(name, found.entry.name))) continue;
        if (isThat(member, identity, found)) return &found;
    }
    return nullptr;
}

UndoRun::Choice UndoRun::choiceByRecord(const PlanMember& member, const EntryIdentity& identity,
                                        const std::string& place) {
    if (m_originsKnown != m_trashes.size()) {
        m_byOrigin.clear();
        learnOrigins();
        m_originsKnown = m_trashes.size();
    }
    if (Found* const found = findAt(place, member, identity)) return {found, {}};
    // Of a link neither size nor time is known.
    Found* const found =
        identity.type != FileType::SymbolicLink ? findAt({}, member, identity) : nullptr;
    if (found == nullptr) return {};
    return {found, found->hasRecord ? "" : "the trash has no record of it any more"};
}

// It never went, whatever was written to it since; or it is back already.
bool UndoRun::isInPlace(const Target& target, const std::string& name,
                        const EntryIdentity& identity) const {
    if (!target.folder.isOpen()) return false;
    const auto now = m_files.attributes(target.folder.get(), name.c_str(), Links::Keep);
    if (!now) return false;
    return identity.inodePasses ? isTheSame(identity, *now)
                                : now->device == identity.device && now->inode == identity.inode;
}

std::string UndoRun::reasonOfMissing(const Target& target) {
    if (target.folder.isOpen()) return "it is not in the trash any more";
    if (target.deviceThen != 0 && target.deviceThen != target.deviceNow)
        return "the volume that it was on is not there";
    return target.fault + ", and it is not in the trash";
}

UndoRun::Choice UndoRun::choiceOf(const PlanMember& member, const Target& target) {
    const std::string place = joinPath(target.place, lastPathComponent(member.path));
    const EntryIdentity identity = identityNow(member, target);
    return identity.inodePasses ? choiceByRecord(member, identity, place)
                                : choiceByNumber(member, identity, place);
}

bool UndoRun::takeFound(const PlanMember& member) {
    const Choice choice = choiceOf(member, targetOf(folderOf(member.path)));
    if (choice.found == nullptr || !choice.objection.empty()) return false;
    choice.found->isBack = true;
    return true;
}

void UndoRun::bringBack(const PlanMember& member, UndoOutcome& outcome) {
    const Target& target = targetOf(folderOf(member.path));
    const std::string name(lastPathComponent(member.path));
    const EntryIdentity identity = identityNow(member, target);
    Choice choice = choiceOf(member, target);
    const bool isFound = choice.found != nullptr && choice.objection.empty();
    if (!isFound && isInPlace(target, name, identity)) {
        ++outcome.inPlace;
        return;
    }
    if (choice.found == nullptr) {
        outcome.left.push_back({member.path, {}, reasonOfMissing(target)});
        return;
    }
    const TrashFolder* const trash = choice.found->trash;
    const TrashFolder::Trashed& entry = choice.found->entry;
    if (choice.objection.empty() && !target.folder.isOpen()) choice.objection = target.fault;
    if (choice.objection.empty()) {
        auto notBack = trash->giveBack(entry, target.folder.get(), name);
        choice.found->isBack = !notBack;
        if (!notBack) {
            outcome.restored.push_back(member.path);
            outcome.restoredFolders += member.identity.type == FileType::Folder ? 1U : 0U;
            return;
        }
        if (notBack->isOtherOut) {
            outcome.left.push_back({member.path, {}, std::move(notBack->reason)});
            return;
        }
        choice.objection = std::move(notBack->reason);
    }
    const auto now = trash->attributesOf(entry.name);
    const bool isThere = now || now.error() != ENOENT;
    if (!isThere && isInPlace(target, name, identity)) ++outcome.inPlace;  // by another undo
    else if (!isThere) outcome.left.push_back({member.path, {}, reasonOfMissing(target)});
    else
        outcome.left.push_back(
            {member.path, trash->placeOf(entry.name), std::move(choice.objection)});
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
            place->second.path = place->first;
            place->second.place = files.resolved(place->first).value_or(place->first);
            if (!seen) continue;
            place->second.device = seen->device;
            place->second.inode = seen->inode;
        }
    std::vector<UndoFolder> list;
    list.reserve(folders.size());
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

std::size_t countInTrash(const FileSystem& files, const FolderVariables& variables,
                         const DuplicatePlan& plan, const std::vector<UndoFolder>& folders,
                         const std::atomic<bool>& stop) {
    UndoRun run(files, variables, folders);
    std::size_t count = 0;
    for (const PlanGroup& group : plan.groups)
        for (const PlanMember& member : group.members)
            if (member.goes && !stop && run.takeFound(member)) ++count;
    return count;
}

}  // namespace orrinvale
