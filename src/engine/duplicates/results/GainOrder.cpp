// The groups are gathered first: some 100 bytes each.
#include "engine/duplicates/results/GainOrder.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "engine/duplicates/keep/GainCount.h"

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
