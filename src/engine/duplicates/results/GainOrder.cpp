// The groups are gathered first: some 100 bytes each.
#include "engine/duplicates/results/GainOrder.h"

#include <algorithm>
#include <tuple>
#include <utility>
#include <vector>

#include "engine/base/saturating.h"
#include "engine/duplicates/keep/GainCount.h"
#include "engine/duplicates/results/treeWalk.h"

namespace orrinvale {
namespace {

void addTo(GainCount& gain, const fileAttrbItem& file) {
    const EntryIdentity identity{.device = file.device, .inode = file.inode, .type = file.type};
    gain.add(&identity, file.links, file.fileSize);
}

}  // namespace

std::uint64_t gainOfGroup(const DuplicateGroup& group) {
    GainCount gain;
    for (const AppAttrbItem* bundle : group.bundles)
        if (bundle != group.bundles.front())
            for (const fileAttrbItem* file : bundle->AllFileInDirectory.items()) addTo(gain, *file);
    for (const fileAttrbItem* file : group.files)
        if (file != group.files.front()) addTo(gain, *file);
    return gain.bytes();
}

std::uint64_t gainOfRows(const TreeNode& group) {
    GainCount files;
    std::uint64_t gain = 0;
    for (std::size_t i = 1; i < group.numberOfChildren(); ++i) {
        const SimpleNodeData& leaf = *simpleData(*group.childAtIndex(i));
        if (leaf.wholeFolder() != nullptr) addSaturating(gain, leaf.wholeFolder()->gain);
        else
            files.add(leaf.identity() ? &*leaf.identity() : nullptr, leaf.hardLinks(),
                      leaf.fileSize());
    }
    addSaturating(gain, files.bytes());
    return gain;
}

void orderGroups(TreeNode& tree, GroupOrder order) {
    struct Placed {
        bool isFile;  // and no whole folder
        std::uint64_t before;
        std::uint32_t foundAs;
        TreeNode::Pointer group;
    };
    std::vector<Placed> placed;
    placed.reserve(tree.numberOfChildren());
    for (std::size_t i = 0; i < tree.numberOfChildren(); ++i) {
        expectGroups(tree, i);
        const TreeNode::Pointer& group = tree.childAtIndex(i);
        const SimpleNodeData& data = *simpleData(*group);
        placed.push_back({data.wholeFolder() == nullptr,
                          order == GroupOrder::Gain ? ~gainOfRows(*group) : 0, data.foundAs(),
                          group});
    }
    std::ranges::sort(placed, std::ranges::less(), [](const Placed& each) {
        return std::tuple(each.isFile, each.before, each.foundAs);
    });
    std::vector<TreeNode::Pointer> groups;
    groups.reserve(placed.size());
    for (Placed& each : placed) groups.push_back(std::move(each.group));
    tree.setOrder(std::move(groups));
}

void visitByGain(const DuplicateFilesOpt& search,
                 const std::function<void(const DuplicateGroup&)>& visit) {
    std::vector<std::pair<std::uint64_t, DuplicateGroup>> groups;
    search.visitGroups(
        [&](const DuplicateGroup& group) { groups.emplace_back(gainOfGroup(group), group); });
    std::ranges::stable_sort(groups, std::ranges::greater(),
                             [](const auto& each) { return each.first; });
    for (const auto& [gain, group] : groups) visit(group);
}

}  // namespace orrinvale
