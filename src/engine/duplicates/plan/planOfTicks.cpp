// The tree knows more than the search that it is of: what our own removals have done since. Hashes
// alone are the search's.
#include "engine/duplicates/plan/planOfTicks.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "engine/duplicates/folders/FolderRows.h"
#include "engine/duplicates/tree/SimpleTreeNode.h"

namespace orrinvale {
namespace {

// Nothing of a copy that the search did not look at, which goes by no plan, and of what goes with
// its folder.
std::optional<PlanMember> memberOfLeaf(const SimpleNodeData& leaf) {
    if (!leaf.identity() || holdOf(leaf) == FolderHold::Goes) return std::nullopt;
    PlanMember member;
    member.path = leaf.name();
    member.size = leaf.fileSize();
    member.identity = *leaf.identity();
    member.listing = leaf.bundleDigest();
    member.isProtected = leaf.isProtected();
    member.goes = leaf.selectNum() == 1 && !leaf.isProtected();
    return member;
}

// Of whole folders.
std::unordered_map<std::string_view, FolderFacts> factsByPath(const DuplicateFilesOpt& search) {
    std::unordered_map<std::string_view, FolderFacts> facts;
    const auto state = search.search();
    if (state == nullptr) return facts;
    for (const FolderGroup& group : state->folders().groups)
        for (const FolderMember& folder : group.members)
            facts.emplace(folder.path, FolderFacts{.entries = group.entries,
                                                   .files = group.files,
                                                   .bytes = group.bytes,
                                                   .searched = state->folders().searched});
    return facts;
}

bool doesAnyGo(const PlanGroup& group) {
    return std::ranges::any_of(group.members, &PlanMember::goes);
}

}  // namespace

DuplicatePlan planOfTicks(std::span<const TreeNode::Pointer> ticked, const PlanOrigin& origin) {
    DuplicatePlan plan = emptyPlan(origin);
    std::unordered_set<const TreeNode*> known;
    for (const TreeNode::Pointer& leaf : ticked) {
        const TreeNode* const group = leaf->nodeParent();
        if (group == nullptr || !known.insert(group).second) continue;
        PlanGroup planned;
        for (std::size_t i = 0; i < group->numberOfChildren(); ++i)
            if (auto member = memberOfLeaf(*simpleData(*group->childAtIndex(i))))
                planned.members.push_back(std::move(*member));
        if (doesAnyGo(planned)) plan.groups.push_back(std::move(planned));
    }
    return plan;
}

LeftOutOfPlan takeOutUnplannable(DuplicatePlan& plan) {
    LeftOutOfPlan left;
    std::erase_if(plan.groups, [&](PlanGroup& group) {
        if (std::ranges::all_of(group.members, &PlanMember::goes)) {
            ++left.groups;
            return true;
        }
        for (PlanMember& member : group.members) {
            if (!member.goes || member.identity.type != FileType::SymbolicLink) continue;
            ++left.links;
            member.goes = false;
        }
        return !doesAnyGo(group);
    });
    return left;
}

std::size_t addListings(DuplicatePlan& plan, const FileSystem& files,
                        const DuplicateFilesOpt& search) {
    const auto facts = factsByPath(search);
    const std::atomic<bool> never{false};
    std::size_t changed = 0;
    for (PlanGroup& group : plan.groups)
        changed += std::erase_if(group.members, [&](PlanMember& member) {
            const auto seen = facts.find(member.path);
            if (seen == facts.end() || member.listing) return false;
            member.listing = digestOfUnchanged(files, member.path, seen->second, never);
            return !member.listing;
        });
    if (changed != 0)
        std::erase_if(plan.groups, [](const PlanGroup& group) { return !doesAnyGo(group); });
    return changed;
}

void noteListings(DuplicatePlan& plan, const FileSystem& files, const DuplicateFilesOpt& search,
                  const std::atomic<bool>& stop) {
    const auto facts = factsByPath(search);
    if (facts.empty()) return;
    for (PlanGroup& group : plan.groups)
        for (PlanMember& member : group.members)
            if (const auto seen = facts.find(member.path);
                seen != facts.end() && member.goes && !member.listing)
                member.listing = digestOfUnchanged(files, member.path, seen->second, stop);
}

void addContents(DuplicatePlan& plan, const DuplicateFilesOpt& search) {
    std::unordered_map<std::string, PlanMember*> files;
    for (PlanGroup& group : plan.groups)
        for (PlanMember& member : group.members) files.emplace(member.path, &member);
    search.visitGroups([&](const DuplicateGroup& group) {
        for (const fileAttrbItem* const file : group.files) {
            if (file->md5 == 0) continue;
            const auto found = files.find(file->filePathName());
            if (found != files.end()) found->second->contents = file->md5;
        }
    });
}

}  // namespace orrinvale
