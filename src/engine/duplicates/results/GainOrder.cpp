// The groups are gathered first: some 100 bytes each.
#include "engine/duplicates/results/GainOrder.h"

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "engine/base/saturating.h"

namespace orrinvale {
namespace {

class GroupGain final {
public:
    void keep(const fileAttrbItem& file) {
        if (file.links > 1) m_seen.insert({file.device, file.inode});
    }
    void remove(const fileAttrbItem& file) {
        if (file.links < 2 || m_seen.insert({file.device, file.inode}).second)
            addSaturating(m_bytes, file.fileSize);
    }
    [[nodiscard]] std::uint64_t bytes() const { return m_bytes; }

private:
    std::set<std::pair<std::uint64_t, std::uint64_t>> m_seen;
    std::uint64_t m_bytes = 0;
};

}  // namespace

std::uint64_t gainOfGroup(const DuplicateGroup& group) {
    GroupGain gain;
    for (const AppAttrbItem* bundle : group.bundles)
        for (const fileAttrbItem* file : bundle->AllFileInDirectory.items())
            bundle == group.bundles.front() ? gain.keep(*file) : gain.remove(*file);
    for (const fileAttrbItem* file : group.files)
        file == group.files.front() ? gain.keep(*file) : gain.remove(*file);
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
