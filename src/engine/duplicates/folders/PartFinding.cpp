// Pairs are added up from the bottom to the top, and measured from the top to the bottom.
#include "engine/duplicates/folders/PartFinding.h"

#include <span>
#include <tuple>
#include <utility>

#include "engine/base/saturating.h"

namespace orrinvale {
namespace {

// A copy is paired with so many that follow it in its group. Of a group of equal versions of one
// file each meets its neighbours, and no group costs the square of its size.
constexpr std::size_t mostNeighbours = 3;
// Each takes some 50 bytes; beyond that only pairs that are known already grow.
constexpr std::size_t mostFollowed = std::size_t{1} << 19U;

std::uint64_t pairOf(std::uint32_t a, std::uint32_t b) {
    return (std::uint64_t{std::min(a, b)} << 32U) | std::max(a, b);
}
std::uint32_t firstOfPair(std::uint64_t pair) { return static_cast<std::uint32_t>(pair >> 32U); }
std::uint32_t secondOfPair(std::uint64_t pair) { return static_cast<std::uint32_t>(pair); }

bool isSameContent(const fileAttrbItem& a, const fileAttrbItem& b) {
    return a.md5 == b.md5 && a.fileSize == b.fileSize && a.md5_1k == b.md5_1k;
}

}  // namespace

std::vector<PartlyEqual> PartFinding::run() {
    readGroups();
    findWorthwhile();
    findTops();
    pairOffEquals();
    pairOff();
    if (m_pairs.empty()) return {};
    lift();
    return choose();
}

void PartFinding::readGroups() {
    for (std::size_t from = 0; from < m_copies.size();) {
        std::size_t to = from;
        for (; to < m_copies.size() && isSameContent(*m_copies[to], *m_copies[from]); ++to) {
            const std::uint32_t row = m_table.rowOf(m_copies[to]->folder);
            if (row != FolderRow::none && isOwnFile(*m_copies[to]) && !m_table[row].isBehindLink)
                m_members.push_back(row);
        }
        std::sort(m_members.begin() + m_starts.back(), m_members.end());
        m_sizes.push_back(m_copies[from]->fileSize);
        m_starts.push_back(static_cast<std::uint32_t>(m_members.size()));
        from = to;
    }
    m_depths.resize(m_table.size());
    for (std::uint32_t at = 0; at < m_table.size(); ++at)
        if (const std::uint32_t parent = m_table[at].parent; parent != FolderRow::none)
            m_depths[at] = m_depths[parent] + 1;
}

// The folder that all members of the group lie in.
std::uint32_t PartFinding::lowestAround(std::uint32_t group) const {
    std::uint32_t row = m_members[m_starts[group]];
    const std::uint32_t last = m_members[m_starts[group + 1] - 1];
    while (row != FolderRow::none && !m_table.isWithin(last, row)) row = m_table[row].parent;
    return row;
}

// A folder can be a part of another only as far as its files have copies outside of it.
void PartFinding::findWorthwhile() {
    std::vector<std::uint64_t> outside(m_table.size());
    for (std::uint32_t group = 0; group < m_sizes.size(); ++group) {
        const std::uint32_t count = m_starts[group + 1] - m_starts[group];
        if (count < 2) continue;
        for (std::uint32_t at = m_starts[group]; at < m_starts[group + 1]; ++at)
            outside[m_members[at]] += m_sizes[group];
        if (const std::uint32_t around = lowestAround(group); around != FolderRow::none)
            outside[around] -= m_sizes[group] * count;
    }
    for (std::uint32_t at = m_table.size(); at-- > 0;)
        if (m_table[at].parent != FolderRow::none) outside[m_table[at].parent] += outside[at];
    m_isWorthwhile.resize(m_table.size());
    for (std::uint32_t at = 0; at < m_table.size(); ++at) {
        const FolderRow& row = m_table[at];
        const bool isItself =
            outside[at] > 0 && outside[at] >= row.listedBytes / 100 * smallestPercent;
        m_isWorthwhile[at] =
            isItself || (row.parent != FolderRow::none && m_isWorthwhile[row.parent] != 0);
    }
}

void PartFinding::findTops() {
    m_tops.assign(m_table.size(), FolderRow::none);
    for (std::uint32_t at = 0; at < m_table.size(); ++at) {
        const FolderRow& row = m_table[at];
        if (row.parent != FolderRow::none) m_tops[at] = m_tops[row.parent];
        if (m_tops[at] == FolderRow::none && row.equals != 0) m_tops[at] = at;
    }
}

// Of two folders that are equal all is shared, which needs no look at their files.
void PartFinding::pairOffEquals() {
    std::map<std::uint32_t, std::vector<std::uint32_t>> classes;
    for (std::uint32_t at = 0; at < m_table.size(); ++at)
        if (m_tops[at] == at) classes[m_table[at].equals].push_back(at);
    for (const auto& [number, members] : classes)
        for (std::size_t i = 0; i < members.size(); ++i)
            for (std::size_t j = i + 1; j < std::min(members.size(), i + 1 + mostNeighbours); ++j)
                add(pairOf(members[i], members[j]),
                    {m_table[members[i]].listedBytes, m_table[members[i]].files});
}

bool PartFinding::areInEquals(std::uint32_t a, std::uint32_t b) const {
    const std::uint32_t topA = m_tops[a];
    const std::uint32_t topB = m_tops[b];
    return topA != topB && topA != FolderRow::none && topB != FolderRow::none &&
           m_table[topA].equals == m_table[topB].equals;
}

void PartFinding::pairOff() {
    for (std::uint32_t group = 0; group < m_sizes.size(); ++group) {
        const std::span members(m_members.data() + m_starts[group],
                                m_starts[group + 1] - m_starts[group]);
        for (std::size_t i = 0; i < members.size(); ++i)
            for (std::size_t j = i + 1; j < std::min(members.size(), i + 1 + mostNeighbours); ++j)
                if (members[i] != members[j] && !areInEquals(members[i], members[j]) &&
                    (m_isWorthwhile[members[i]] != 0 || m_isWorthwhile[members[j]] != 0))
                    add(pairOf(members[i], members[j]), {m_sizes[group], 1});
    }
}

void PartFinding::add(std::uint64_t pair, const Shared& shared) {
    if (m_last != nullptr && m_last->first == pair) {
        addSaturating(m_last->second.bytes, shared.bytes);
        m_last->second.files += shared.files;
        return;
    }
    Pairs& pairs = m_pairs[m_depths[firstOfPair(pair)] + m_depths[secondOfPair(pair)]];
    auto found = pairs.find(pair);
    if (found == pairs.end()) {
        if (m_pairCount >= mostFollowed) return;
        ++m_pairCount;
        found = pairs.emplace(pair, Shared{}).first;
    }
    m_last = &*found;  // stays where it is
    addSaturating(found->second.bytes, shared.bytes);
    found->second.files += shared.files;
}

// Nothing where one of the two holds the other then.
std::optional<std::uint64_t> PartFinding::above(std::uint64_t pair) const {
    const std::uint32_t a = m_table[firstOfPair(pair)].parent;
    const std::uint32_t b = m_table[secondOfPair(pair)].parent;
    if (a == FolderRow::none || b == FolderRow::none) return std::nullopt;
    if (m_table.isWithin(a, b) || m_table.isWithin(b, a)) return std::nullopt;
    return pairOf(a, b);
}

void PartFinding::lift() {
    for (auto level = m_pairs.rbegin(); level != m_pairs.rend(); ++level)
        for (const auto& [pair, shared] : level->second)
            if (const auto parents = above(pair)) add(*parents, shared);
}

bool PartFinding::maySuffice(std::uint64_t pair, const Shared& shared) const {
    const std::uint32_t a = firstOfPair(pair);
    const std::uint32_t b = secondOfPair(pair);
    const std::uint64_t smaller = std::min(m_table[a].listedBytes, m_table[b].listedBytes);
    return shared.files >= fewestFiles && shared.bytes >= smaller / 100 * smallestPercent / 2 &&
           !m_table.isWithin(a, b) && !m_table.isWithin(b, a);
}

PartlyEqual PartFinding::sharedBy(std::uint32_t folder, std::uint32_t other) {
    PartlyEqual part;
    part.bytes = m_table[folder].listedBytes;
    const std::uint32_t end = m_table[folder].end;
    for (auto copy = std::ranges::lower_bound(m_byRow, Copy{folder, 0});
         copy != m_byRow.end() && copy->row < end; ++copy) {
        spend();
        const auto members = m_members.begin() + m_starts[copy->group];
        const auto last = m_members.begin() + m_starts[copy->group + 1];
        const auto there = std::lower_bound(members, last, other);
        if (there == last || !m_table.isWithin(*there, other)) continue;
        addSaturating(part.shared, m_sizes[copy->group]);
        ++part.files;
    }
    return part;
}

std::optional<PartlyEqual> PartFinding::measured(std::uint64_t pair) {
    std::uint32_t folder = firstOfPair(pair);
    std::uint32_t other = secondOfPair(pair);
    PartlyEqual part = sharedBy(folder, other);
    PartlyEqual back = sharedBy(other, folder);
    if (back.percent() > part.percent()) {
        std::swap(part, back);
        std::swap(folder, other);
    }
    if (part.files < fewestFiles || part.percent() < smallestPercent) return std::nullopt;
    part.folder = m_table.pathOf(folder);
    part.other = m_table.pathOf(other);
    return part;
}

void PartFinding::tell(std::uint64_t pair) {
    m_told[firstOfPair(pair)].push_back(secondOfPair(pair));
    m_told[secondOfPair(pair)].push_back(firstOfPair(pair));
}

// The two lie in a pair that is told, or in folders that are equal, or are these.
bool PartFinding::isTold(std::uint64_t pair) {
    const std::uint32_t other = secondOfPair(pair);
    std::vector<std::uint32_t> classes;
    for (std::uint32_t at = firstOfPair(pair); at != FolderRow::none; at = m_table[at].parent) {
        spend();
        if (m_table[at].equals != 0) classes.push_back(m_table[at].equals);
        const auto told = m_told.find(at);
        if (told != m_told.end() && std::ranges::any_of(told->second, [&](std::uint32_t outer) {
                return m_table.isWithin(other, outer);
            }))
            return true;
    }
    for (std::uint32_t at = other; !classes.empty() && at != FolderRow::none;
         at = m_table[at].parent) {
        spend();
        const bool isAround = m_table.isWithin(firstOfPair(pair), at);
        if (!isAround && std::ranges::find(classes, m_table[at].equals) != classes.end())
            return true;
    }
    return false;
}

std::vector<PartlyEqual> PartFinding::choose() {
    for (std::uint32_t group = 0; group < m_sizes.size(); ++group)
        for (std::uint32_t at = m_starts[group]; at < m_starts[group + 1]; ++at)
            m_byRow.push_back({m_members[at], group});
    std::ranges::sort(m_byRow);
    m_effort = 16 * std::uint64_t{m_byRow.size()};

    std::vector<PartlyEqual> parts;
    for (const auto& [depth, pairs] : m_pairs)
        for (const auto& [pair, shared] : pairs) {
            if (m_effort == 0 || !maySuffice(pair, shared) || isTold(pair)) continue;
            if (auto part = measured(pair)) {
                parts.push_back(std::move(*part));
                tell(pair);
            }
        }
    std::ranges::sort(parts, [](const PartlyEqual& a, const PartlyEqual& b) {
        return std::tie(b.shared, a.folder, a.other) < std::tie(a.shared, b.folder, b.other);
    });
    if (parts.size() > mostPairs) parts.resize(mostPairs);
    return parts;
}

}  // namespace orrinvale
