// RemovalPlan finds the copies that stay and has them compared; here is what makes such a plan of
// one that may be forged.
#include "engine/duplicates/plan/PlanRemoval.h"

#include <algorithm>
#include <utility>

#include "engine/base/saturating.h"
#include "engine/duplicates/keep/GainCount.h"
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
            if (!std::ranges::binary_search(passing, member.identity.device))
                m_stayingEntries.emplace(member.identity.device, member.identity.inode);
            if (member.identity.type == FileType::Folder) m_stayingBundles.push_back(member.path);
        }
        m_tree->insertChild(node, m_tree->numberOfChildren());
    }
    m_account.resize(ticked.size());
    m_plan = std::make_unique<RemovalPlan>(files, std::move(ticked), RemovalPlan::Comparing::Always,
                                           RemovalPlan::Copies::Staying);
    m_plan->setObjection([this](const HeldEntry& bundle,
                                const BundleListing& listing) -> std::optional<StayedEntry> {
        for (const BundleEntry& entry : listing.entries)
            if (auto reason = objectionTo(bundle, entry.attributes)) return reason;
        learnGain(bundle.path, listing);
        return std::nullopt;
    });
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

// A mount may show what is protected, or stays, by a path on which the bundle does not lie.
std::optional<StayedEntry> PlanRemoval::objectionTo(const HeldEntry& bundle,
                                                    const FileAttributes& entry) const {
    const bool isFolder = entry.type == FileType::Folder;
    if (isFolder && m_guarded->isOneOrAbove(entry))
        return StayedEntry{bundle.path, std::string(stay::isProtected), StayReason::Protected};
    const bool isStaying = m_stayingEntries.contains({entry.device, entry.inode});
    if (isFolder ? isStaying || m_aboveStaying.contains(entry) : isStaying && entry.links < 2)
        return StayedEntry{bundle.path, std::string(stay::sameEntry), StayReason::NoCopy};
    return std::nullopt;
}

// Of a file with other names elsewhere nothing is freed.
void PlanRemoval::learnGain(const std::string& bundle, const BundleListing& listing) {
    GainCount gain;
    for (const BundleEntry& entry : listing.entries) {
        if (entry.attributes.type != FileType::Regular) continue;
        const auto identity = EntryIdentity::of(entry.attributes);
        gain.add(&identity, entry.attributes.links, entry.attributes.size);
    }
    m_gains[bundle] = gain.bytes();
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
    const auto ofBundle = m_gains.extract(m_paths[index]);
    const std::uint64_t bytes =
        ofBundle.empty() || result.moved ? m_plan->bytes(index) : ofBundle.mapped();
    if (account.as == As::Gone && isLastName) addSaturating(m_gained, bytes);
    if (account.as == As::Partly) addSaturating(m_gained, result.bytes.value_or(0));
    m_plan->settled(index, result);
}

}  // namespace orrinvale
