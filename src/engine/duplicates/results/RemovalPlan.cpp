// BundleLook.h compares bundles, engine/removal/CopyLook.h files.
#include "engine/duplicates/results/RemovalPlan.h"

#include <algorithm>
#include <map>
#include <utility>

#include "engine/duplicates/folders/FolderRows.h"
#include "engine/duplicates/results/BundleLook.h"
#include "engine/duplicates/results/DuplicateSelection.h"
#include "engine/removal/stayReasons.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

std::pair<std::uint64_t, std::uint64_t> fileOf(const std::optional<EntryIdentity>& identity) {
    return {identity->device, identity->inode};
}

bool isSameFile(const EntryIdentity& a, const EntryIdentity& b) {
    return a.device == b.device && a.inode == b.inode && !a.inodePasses;
}

}  // namespace

RemovalPlan::RemovalPlan(const FileSystem& files, std::vector<TreeNode::Pointer> ticked,
                         Comparing comparing, Copies copies)
    : m_files(files), m_ticked(std::move(ticked)), m_comparing(comparing), m_copies(copies) {}

void RemovalPlan::prepare() {
    std::unordered_map<const TreeNode*, Place> places;
    std::unordered_set<const TreeNode*> ticked;
    // What was cleared since it came among the ticked ones stays.
    std::erase_if(m_ticked, [](const auto& leaf) { return simpleData(*leaf)->selectNum() != 1; });
    // A folder takes it along.
    std::erase_if(m_ticked,
                  [](const auto& leaf) { return goingFolderOf(*simpleData(*leaf)) != nullptr; });
    foldersFirst();
    for (const auto& leaf : m_ticked) ticked.insert(leaf.get());
    std::unordered_set<const TreeNode*> taken;
    for (const auto& leaf : m_ticked) {
        const TreeNode* const parent = leaf->nodeParent();
        if (parent == nullptr || !taken.insert(leaf.get()).second) continue;
        if (!places.contains(leaf.get())) addGroup(*parent, ticked, places);
        m_entries.push_back({leaf, places.at(leaf.get())});
        const Member& leaving = member(m_entries.size() - 1);
        if (leaving.identity && leaving.identity->type == FileType::Folder && !leaving.isProtected)
            m_leavingFolders.insert(leaving.path);
    }
    m_isPrepared = true;
}

void RemovalPlan::turnHasCome() {
    if (m_wholeFolders.empty()) return;
    for (Group& group : m_groups)
        for (Member& member : group.members) member.isOut |= !learnListing(member);
}

void RemovalPlan::foldersFirst() {
    if (std::ranges::none_of(m_ticked, [](const TreeNode::Pointer& leaf) {
            return simpleData(*leaf)->wholeFolder() != nullptr;
        }))
        return;
    std::ranges::stable_sort(m_ticked, std::ranges::greater(), [](const TreeNode::Pointer& leaf) {
        const FolderFacts* const folder = simpleData(*leaf)->wholeFolder();
        return folder != nullptr ? folder->entries : 0;
    });
}

void RemovalPlan::addGroup(const TreeNode& node, const std::unordered_set<const TreeNode*>& ticked,
                           std::unordered_map<const TreeNode*, Place>& places) {
    Group group;
    group.whollyTicked = simpleData(node)->selectNum() == 1 && losesAll(node);
    for (std::size_t i = 0; i < node.numberOfChildren(); ++i) {
        const TreeNode& child = *node.childAtIndex(i);
        const auto& data = simpleData(child);
        places.emplace(&child, Place{m_groups.size(), i});
        group.members.push_back({data->name(), data->fileSize(), data->identity(),
                                 data->bundleDigest(), data->isProtected(), data->isRecalled()});
        if (data->wholeFolder() != nullptr)
            m_wholeFolders.emplace(data->name(), *data->wholeFolder());
        group.copies.push_back(i);
        if (group.members.back().identity) group.byFile.push_back(i);
    }
    const auto isTicked = [&](std::size_t i) {
        return ticked.contains(node.childAtIndex(i).get());
    };
    if (m_copies == Copies::Staying) std::erase_if(group.copies, isTicked);
    std::stable_partition(group.copies.begin(), group.copies.end(), isTicked);
    std::sort(group.byFile.begin(), group.byFile.end(), [&](std::size_t left, std::size_t right) {
        return fileOf(group.members[left].identity) < fileOf(group.members[right].identity);
    });
    m_groups.push_back(std::move(group));
}

const RemovalPlan::Member& RemovalPlan::member(std::size_t index) const {
    const Place& place = m_entries.at(index).place;
    return m_groups[place.group].members[place.member];
}

// That it is another entry than the one that goes, wherever paths may lead, the look after setting
// aside makes sure.
bool RemovalPlan::isCopyFor(const Member& wanted, const Member& other) const {
    if (other.path == wanted.path || !other.identity || liesInWhatGoes(other.path)) return false;
    const auto now = m_files.attributes(FileSystem::noParent, other.path.c_str(), Links::Keep);
    if (!now || !other.identity->isStill(*now)) return false;
    const bool isOneEntry =
        wanted.identity && isSameFile(*wanted.identity, *other.identity) && now->links < 2;
    if (isOneEntry) return false;
    if (other.digest) return isAsListed(other);
    if (other.identity->type != FileType::SymbolicLink) return true;
    const auto target = m_files.attributes(FileSystem::noParent, other.path.c_str(), Links::Follow);
    return wanted.identity && wanted.identity->type == FileType::SymbolicLink && target &&
           target->type == FileType::Regular;
}

bool RemovalPlan::isAsListed(const Member& bundle) const {
    const auto passing = m_files.devicesOfPassingInodes();
    const auto now = listBundle(m_files, bundle.path, {passing}, *m_stop);
    return now && now->digest == *bundle.digest;
}

bool RemovalPlan::liesInWhatGoes(const std::string& path) const {
    if (m_leavingFolders.empty()) return false;
    const auto isIn = [&](const std::string& place) {
        for (std::string folder = folderOf(place); folder.size() > 1; folder = folderOf(folder))
            if (m_leavingFolders.contains(folder)) return true;
        return false;
    };
    const auto real = m_files.resolved(path);
    return isIn(path) || (real && isIn(*real));
}

// The search kept no listing of a folder that is no bundle.
bool RemovalPlan::learnListing(Member& folder) const {
    const auto seen = m_wholeFolders.find(folder.path);
    if (folder.digest || seen == m_wholeFolders.end()) return true;
    folder.digest = digestOfUnchanged(m_files, folder.path, seen->second, *m_stop);
    return folder.digest.has_value();
}

// From the end, where the copy that stays by itself stands. What is found gone or changed is asked
// no more.
const RemovalPlan::Member* RemovalPlan::copyFor(Group& group, const Member& wanted) const {
    while (!group.copies.empty() && group.members[group.copies.back()].isOut)
        group.copies.pop_back();
    for (std::size_t at = group.copies.size(); at-- > 0;) {
        Member& other = group.members[group.copies[at]];
        if (other.isOut || &other == &wanted) continue;
        if (!learnListing(other)) {
            other.isOut = true;
            continue;
        }
        if (isCopyFor(wanted, other)) return &other;
        const auto now = m_files.attributes(FileSystem::noParent, other.path.c_str(), Links::Keep);
        other.isOut = !now || !other.identity || !other.identity->isStill(*now) ||
                      (other.digest && !isAsListed(other));
    }
    return nullptr;
}

std::unique_ptr<CopyLook> RemovalPlan::lookFor(const Member& wanted, const Member* kept) const {
    auto copy =
        kept != nullptr ? std::optional(KeptCopy{kept->path, *kept->identity}) : std::nullopt;
    const bool compares = m_comparing == Comparing::Always || wanted.isRecalled ||
                          m_wholeFolders.contains(wanted.path) ||
                          (kept != nullptr && kept->isRecalled);
    if (!wanted.digest) return std::make_unique<FileLook>(m_files, std::move(copy), compares);
    return std::make_unique<BundleLook>(
        m_files, BundleLook::Digests{wanted.digest, kept != nullptr ? kept->digest : std::nullopt},
        std::move(copy), compares, m_objection);
}

tl::expected<std::unique_ptr<CopyLook>, StayedEntry> RemovalPlan::judge(std::size_t index) {
    const Place& place = m_entries.at(index).place;
    Group& group = m_groups[place.group];
    Member& wanted = group.members[place.member];
    if (wanted.isProtected)
        return tl::unexpected(
            StayedEntry{wanted.path, std::string(stay::isProtected), StayReason::Protected});
    if (!learnListing(wanted))
        return tl::unexpected(
            StayedEntry{wanted.path, std::string(stay::changed), StayReason::Changed});
    const Member* kept = nullptr;
    if (!group.whollyTicked) {
        kept = copyFor(group, wanted);
        if (kept == nullptr)
            return tl::unexpected(
                StayedEntry{wanted.path, std::string(stay::noCopy), StayReason::NoCopy});
    }
    return lookFor(wanted, kept);
}

void RemovalPlan::excuse(std::span<const Excuse> excuses) {
    struct File {
        std::int64_t changed = 0;
        std::uint32_t namesGone = 0;
        std::uint32_t namesMade = 0;
    };
    std::map<const TreeNode*, std::map<std::pair<std::uint64_t, std::uint64_t>, File>> byGroup;
    for (const auto& [leaf, changed, gone, namesMade] : excuses)
        if (const auto& identity = simpleData(*leaf)->identity();
            identity && leaf->nodeParent() != nullptr) {
            File& file = byGroup[leaf->nodeParent()][fileOf(identity)];
            file.changed = changed;
            file.namesGone += gone ? 1U : 0U;
            file.namesMade += namesMade;
        }
    for (const auto& [group, files] : byGroup)
        for (std::size_t i = 0; i < group->numberOfChildren(); ++i) {
            auto identity = simpleData(*group->childAtIndex(i))->identity();
            const auto file = identity ? files.find(fileOf(identity)) : files.end();
            if (file == files.end()) continue;
            identity->changed = file->second.changed;
            SimpleNodeData& data = *simpleData(*group->childAtIndex(i));
            data.setIdentity(identity);
            const std::uint32_t names = data.hardLinks() + file->second.namesMade;
            data.setHardLinks(names - std::min(names - 1, file->second.namesGone));
        }
}

// All names of a file have its new time of change.
void RemovalPlan::learnChanged(Group& group, const FileKey& file, std::int64_t changed) {
    const auto key = [&](std::size_t i) { return fileOf(group.members[i].identity); };
    for (auto name = std::ranges::lower_bound(group.byFile, file, {}, key);
         name != group.byFile.end() && key(*name) == file; ++name)
        group.members[*name].identity->changed = changed;
}

void RemovalPlan::settled(std::size_t index, const RemovalResult& result) {
    const Place place = m_entries.at(index).place;
    Group& group = m_groups[place.group];
    Member& member = group.members[place.member];
    member.isOut = result.gone;
    if (result.shared && result.shared->keptChanged)
        learnChanged(group, result.shared->keptFile, *result.shared->keptChanged);
    if (result.changed && member.identity)
        learnChanged(group, fileOf(member.identity), *result.changed);
}

}  // namespace orrinvale
