// PartFinding: pairs of folders of which one is for the most part in the other too.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <unordered_map>
#include <vector>

#include "engine/duplicates/folders/FolderFindings.h"
#include "engine/duplicates/folders/FolderTable.h"

namespace orrinvale {

/// Counts by the bytes of listed files and by the groups of the search, wherever a copy lies in the
/// other folder. A pair is met through two copies that lie equally deep below it; of pairs within
/// each other the topmost is told. The work is bounded: a copy is held against a few others of its
/// group, and so many pairs are followed, the rest not.
class PartFinding final {
public:
    static constexpr std::size_t mostPairs = 1000;  ///< that are told
    static constexpr std::uint64_t fewestFiles = 3;
    static constexpr std::uint64_t smallestPercent = 50;

    /// The classes of equal folders are known; both outlive the object.
    PartFinding(const FolderTable& table, const FileList& copies)
        : m_table(table), m_copies(copies) {}

    /// Once.
    [[nodiscard]] std::vector<PartlyEqual> run();

private:
    /// A copy of a group, by the row of its folder.
    struct Copy {
        std::uint32_t row;
        std::uint32_t group;
        auto operator<=>(const Copy&) const = default;
    };
    /// About how much the two rows share; copies may count twice.
    struct Shared {
        std::uint64_t bytes = 0;
        std::uint64_t files = 0;
    };
    using Pairs = std::unordered_map<std::uint64_t, Shared>;  // by both rows, the lower one first

    void readGroups();
    void findWorthwhile();
    void findTops();
    void pairOffEquals();
    void pairOff();
    [[nodiscard]] bool areInEquals(std::uint32_t a, std::uint32_t b) const;
    void lift();
    void add(std::uint64_t pair, const Shared& shared);
    [[nodiscard]] std::optional<std::uint64_t> above(std::uint64_t pair) const;
    [[nodiscard]] bool maySuffice(std::uint64_t pair, const Shared& shared) const;
    [[nodiscard]] bool isTold(std::uint64_t pair);
    void tell(std::uint64_t pair);
    std::optional<PartlyEqual> measured(std::uint64_t pair);
    [[nodiscard]] PartlyEqual sharedBy(std::uint32_t folder, std::uint32_t other);
    void spend() { m_effort -= std::min<std::uint64_t>(m_effort, 1); }
    [[nodiscard]] std::vector<PartlyEqual> choose();
    [[nodiscard]] std::uint32_t lowestAround(std::uint32_t group) const;

    const FolderTable& m_table;
    const FileList& m_copies;
    std::vector<std::uint32_t> m_starts{0};  // of the groups in m_members
    std::vector<std::uint32_t> m_members;    // rows, rising within a group
    std::vector<std::uint64_t> m_sizes;      // of a file of the group
    std::vector<Copy> m_byRow;
    std::vector<std::uint32_t> m_depths;
    std::vector<std::uint8_t> m_isWorthwhile;  // it, or a folder above, may be a part of another
    std::vector<std::uint32_t> m_tops;         // the topmost folder above, or itself, with equals
    std::map<std::uint32_t, Pairs> m_pairs;    // by the sum of their depths
    Pairs::value_type* m_last = nullptr;       // the pair that grew last
    std::size_t m_pairCount = 0;
    std::uint64_t m_effort = 0;  // looks at copies and folders that choosing may take still
    std::unordered_map<std::uint32_t, std::vector<std::uint32_t>> m_told;  // each with its others
};

}  // namespace orrinvale
