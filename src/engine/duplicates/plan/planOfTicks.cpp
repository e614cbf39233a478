// The tree knows more than the search that it is of: what our own removals have done since. Hashes
// alone are the search's.
#include "engine/duplicates/plan/planOfTicks.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "engine/duplicates/tree/SimpleTreeNode.h"

namespace orrinvale {
namespace {

// Nothing of a copy that the search did not look at, which goes by no plan.
std::optional<PlanMember> memberOfLeaf(const SimpleNodeData& leaf) {
    if (!leaf.identity()) return std::nullopt;
    PlanMember member;
    member.path = leaf.name();
    member.size = leaf.fileSize();
    member.identity = *leaf.identity();
    member.listing = leaf.bundleDigest();
    member.isProtected = leaf.isProtected();
    member.goes = leaf.selectNum() == 1 && !leaf.isProtected();
    return member;
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
