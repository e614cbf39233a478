// RemovalPlan finds the copies that stay and has them compared; here is what makes such a plan of
// one that may be forged.
#include "engine/duplicates/plan/PlanRemoval.h"

#include <algorithm>
#include <utility>

#include "engine/base/saturating.h"
#include "engine/removal/stayReasons.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

std::shared_ptr<SimpleNodeData> leafOf(const PlanMember& member,
                                       const std::vector<std::uint64_t>& passing) {
    auto leaf = SimpleNodeData::leafDataWithName(member.path);
    EntryIdentity identity = member.identity;
    identity.learnPassing(passing);
    leaf->setFileSize(member.size);
    leaf->setIdentity(identity);
    leaf->setBundleDigest(identity.type == FileType::Folder ? member.listing : std::nullopt);
    leaf->setProtected(member.isProtected);
    leaf->setSelectNum(member.goes ? 1 : 0);
    return leaf;
}

}  // namespace

void FoldersAbove::add(const FileSystem& files, const std::string& place) {
    for (std::string folder = folderOf(place); m_known.insert(folder).second;
         folder = folderOf(folder)) {
        const auto seen = files.attributes(FileSystem::noParent, folder.c_str(), Links::Follow);
        if (seen) m_entries.emplace(seen->device, seen->inode);
        if (folder == "/" || folder.empty()) return;
    }
}

GuardedFolders::GuardedFolders(const FileSystem& files, const std::vector<std::string>& folders)
    : m_files(files) {
    for (const std::string& folder : folders) {
        const std::string real = files.resolved(folder).value_or(folder);
        const auto seen = files.attributes(FileSystem::noParent, folder.c_str(), Links::Follow);
        if (seen) m_entries.emplace(seen->device, seen->inode);
        m_above.add(files, real);
        m_guarded.insert({folder, real});
    }
}

// Through another mount a folder has another path, and only its number tells.
bool GuardedFolders::isBelowGuarded(std::string folder) const {
    for (;;) {
        const auto seen = m_files.attributes(FileSystem::noParent, folder.c_str(), Links::Follow);
        if (seen && isGuarded(*seen)) return true;
        if (folder == "/" || folder.empty()) return false;
        folder = folderOf(folder);
    }
}

// The answers are as old as the parents that a removal holds may be (HeldParents).
const GuardedFolders::Folder& GuardedFolders::look(const std::string& folder) {
    constexpr std::chrono::milliseconds answersLast{100};
    if (const auto now = std::chrono::steady_clock::now(); now - m_asked >= answersLast) {
        m_known.clear();
        m_asked = now;
    }
    const auto [place, isNew] = m_known.try_emplace(folder);
    if (isNew) {
        place->second.real = m_files.resolved(folder).value_or(folder);
        place->second.isCovered = !m_entries.empty() && isBelowGuarded(place->second.real);
    }
    return place->second;
}

std::string GuardedFolders::realPlace(const std::string& path) {
    return joinPath(look(folderOf(path)).real, lastPathComponent(path));
}

// Lies in one, is one, or holds one, by the spelling.
bool GuardedFolders::isByName(const std::string& path) const {
    for (std::string folder = path;; folder = folderOf(folder)) {
        if (m_guarded.contains(folder)) return true;
        if (folder == "/" || folder.empty()) break;
    }
    const auto within = m_guarded.lower_bound(path + '/');
    return within != m_guarded.end() && isWithin(*within, path);
}

bool GuardedFolders::covers(const std::string& path) {
    if (m_guarded.empty()) return false;
    const Folder& folder = look(folderOf(path));
    if (folder.isCovered || isByName(path) ||
        isByName(joinPath(folder.real, lastPathComponent(path))))
        return true;
    const auto seen = m_files.attributes(FileSystem::noParent, path.c_str(), Links::Keep);
    return seen && (isGuarded(*seen) || m_above.contains(*seen));
}

PlanRemoval::PlanRemoval(const FileSystem& files, const DuplicatePlan& plan)
    : m_files(files),
      m_tree(SimpleTreeNode::treeNodeWithData(SimpleNodeData::groupDataWithName({}))),
      m_protected(plan.protectedFolders) {
    const auto passing = files.devicesOfPassingInodes();
    std::vector<TreeNode::Pointer> ticked;
    for (const PlanGroup& group : plan.groups) {
        auto data = SimpleNodeData::groupDataWithName({});
        data->setSelectNum(2);  // not all: something stays, whatever is ticked
        const auto node = SimpleTreeNode::treeNodeWithData(std::move(data));
        for (const PlanMember& member : group.members) {
            const auto leaf = SimpleTreeNode::treeNodeWithData(leafOf(member, passing));
            node->insertChild(leaf, node->numberOfChildren());
            if (member.goes) {
                ticked.push_back(leaf);
                m_paths.push_back(member.path);
                continue;
            }
            m_staying.push_back(member.path);
            m_stayingEntries.emplace(member.identity.device, member.identity.inode);
            if (member.identity.type == FileType::Folder) m_stayingBundles.push_back(member.path);
        }
        m_tree->insertChild(node, m_tree->numberOfChildren());
    }
    m_account.resize(ticked.size());
    m_plan =
        std::make_unique<RemovalPlan>(files, std::move(ticked), RemovalPlan::Comparing::Always);
}

void PlanRemoval::turnHasCome() {
    m_guarded.emplace(m_files, m_protected);
    m_bundles.emplace(m_files, m_stayingBundles);
    for (const std::string& path : m_staying) {
        const auto place = m_stayingPlaces.insert(m_guarded->realPlace(path)).first;
        m_aboveStaying.add(m_files, *place);
    }
}

// It, or something in it. One entry may have two paths, by links and by mounts; a file with several
// names is one entry in as many places.
bool PlanRemoval::isToStay(std::size_t index) {
    const std::string& path = m_paths[index];
    const std::string place = m_guarded->realPlace(path);
    if (m_stayingPlaces.contains(place)) return true;
    const auto within = m_stayingPlaces.lower_bound(place + '/');
    if (within != m_stayingPlaces.end() && isWithin(*within, place)) return true;
    const auto identity = m_plan->identity(index);
    const bool isStaying =
        !identity->inodePasses && m_stayingEntries.contains({identity->device, identity->inode});
    if (!isStaying && identity->type != FileType::Folder) return false;
    const auto now = m_files.attributes(FileSystem::noParent, path.c_str(), Links::Keep);
    if (!now) return isStaying;
    return m_aboveStaying.contains(*now) || (isStaying && now->links < 2);
}

tl::expected<std::unique_ptr<CopyLook>, StayedEntry> PlanRemoval::judge(std::size_t index) {
    const std::string& path = m_paths[index];
    if (m_guarded->covers(path))
        return tl::unexpected(
            StayedEntry{path, std::string(stay::isProtected), StayReason::Protected});
    if (m_bundles->covers(path))
        return tl::unexpected(
            StayedEntry{path, "it is a part of a copy that stays", StayReason::NoCopy});
    if (isToStay(index))
        return tl::unexpected(StayedEntry{path, std::string(stay::sameEntry), StayReason::NoCopy});
    return m_plan->judge(index);
}

void PlanRemoval::settled(std::size_t index, const RemovalResult& result) {
    using As = Settled::As;
    Settled& account = m_account[index];
    if (result.gone) account.as = result.byOthers ? As::GoneByOthers : As::Gone;
    else if (result.removed > 0 || !result.failures.empty())
        account = {result.removed > 0 ? As::Partly : As::Stayed,
                   result.failures.empty() ? std::string() : result.failures.front().reason};
    m_isAnyAway = m_isAnyAway || result.removed > 0 ||
                  (!result.failures.empty() && result.failures.front().kind == StayReason::Aside);
    const auto identity = m_plan->identity(index);
    const bool isLastName =
        result.moved ? m_moved.emplace(identity->device, identity->inode).second : !result.changed;
    if (account.as == As::Gone && isLastName) addSaturating(m_gained, m_plan->bytes(index));
    if (account.as == As::Partly) addSaturating(m_gained, result.bytes.value_or(0));
    m_plan->settled(index, result);
}

}  // namespace orrinvale
