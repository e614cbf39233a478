// step() gathers the rows, first() puts them in order as far as somebody looks. Names are compared
// by parts of eight bytes that stand in the rows themselves: a million files of one size would
// otherwise be a million looks at names that lie far apart, again and again.
#include "engine/largefiles/LargestFiles.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>

#include "engine/base/saturating.h"
#include "engine/files/bundleName.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::size_t partBytes = sizeof(std::uint64_t);
// Whoever comes back for more will do so again: choosing from all that is left costs more than
// putting some of it into order ahead.
constexpr std::size_t rowsAhead = 20'000;
// So few rows are compared one with the other.
constexpr std::ptrdiff_t fewRows = 32;

char inSmallLetters(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

int comparedNames(std::string_view a, std::string_view b) {
    const auto [inA, inB] = std::ranges::mismatch(a, b, {}, inSmallLetters, inSmallLetters);
    if (inA != a.end() && inB != b.end())
        return static_cast<unsigned char>(inSmallLetters(*inA)) <
                       static_cast<unsigned char>(inSmallLetters(*inB))
                   ? -1
                   : 1;
    if (inA != a.end() || inB != b.end()) return inA == a.end() ? -1 : 1;
    return a.compare(b);
}

std::size_t levelsAbove(const FileNode& node) {
    std::size_t depth = 0;
    for (const FileNode* above = node.father(); above != nullptr; above = above->father()) ++depth;
    return depth;
}

// By the first names on the way down that differ; the same node is equal to itself alone.
int comparedPlaces(const FileNode* a, const FileNode* b) {
    std::size_t depthA = levelsAbove(*a);
    std::size_t depthB = levelsAbove(*b);
    const bool isDeeper = depthA > depthB;
    for (; depthA > depthB; --depthA) a = a->father();
    for (; depthB > depthA; --depthB) b = b->father();
    if (a == b) return isDeeper ? 1 : 0;
    while (a->father() != b->father()) {
        a = a->father();
        b = b->father();
    }
    return a->name().compare(b->name());
}

}  // namespace

LargestFiles::LargestFiles(FileNodeTree& tree, FileWish wish)
    : m_tree(tree),
      m_wish(std::move(wish)),
      m_revision(tree.revision()),
      m_growthRevision(tree.growthRevision()) {
    m_levels.push_back({&tree.root(), 0});
    m_rows.reserve(tree.nodeCount());  // what is not used of it is never touched
}

LargestFiles::LargestFiles(std::shared_ptr<const LargestFiles> before)
    : m_tree(before->m_tree),
      m_wish(before->m_wish),
      m_revision(m_tree.revision()),
      m_growthRevision(m_tree.growthRevision()),
      m_before(std::move(before)),
      m_orderedBefore(m_before->m_ordered),
      m_unknown(m_before->m_unknown),
      m_unanswered(m_before->m_unanswered) {
    m_rows.reserve(m_before->count());
}

bool LargestFiles::step(std::size_t nodes) {
    if (m_before != nullptr) return stepRest(nodes);
    while (!m_levels.empty() && nodes > 0) {
        Level& level = m_levels.back();
        const auto children = level.folder->childrenInAnyOrder();
        if (level.next >= children.size()) {
            m_levels.pop_back();
            continue;
        }
        --nodes;
        FileNode& child = *children[level.next++];
        if (child.isDirectory() && !isClosedAmongLargeFiles(child.name()))
            m_levels.push_back({&child, 0});
        else take(child);
    }
    return m_levels.empty();
}

// What comes into order meanwhile, since somebody looks further, changes its place.
bool LargestFiles::stepRest(std::size_t nodes) {
    if (m_orderedBefore != m_before->m_ordered) {
        m_rows.clear();
        m_bytes = m_biggest = m_ordered = m_next = 0;
        m_orderedBefore = m_before->m_ordered;
    }
    const std::span<const Row> rows = m_before->m_rows;
    for (; nodes > 0 && m_next < rows.size(); --nodes, ++m_next) {
        if (rows[m_next].node->isTakenOut()) continue;
        add(rows[m_next]);
        if (m_next < m_orderedBefore) ++m_ordered;
    }
    if (m_next < rows.size()) return false;
    m_before.reset();
    return true;
}

void LargestFiles::take(FileNode& node) {
    if (isWished(node)) add({keyOf(node), &node});
}

void LargestFiles::add(const Row& row) {
    m_rows.push_back(row);
    addSaturating(m_bytes, row.node->size());
    m_biggest = std::max(m_biggest, row.node->size());
}

bool LargestFiles::isWished(const FileNode& node) {
    if (!m_wish.kinds.empty() &&
        std::ranges::find(m_wish.kinds, kindOf(node)) == m_wish.kinds.end())
        return false;
    const auto isBy = [](std::optional<std::int64_t> time, std::optional<std::int64_t> last) {
        return !last || (time && *time <= *last);
    };
    if (!isBy(node.lastWritten(), m_wish.writtenBy)) return false;
    if (!m_wish.openedBy) return true;
    if (const auto opened = m_wish.lastOpened(node)) return isBy(opened, m_wish.openedBy);
    if (node.isDirectory()) return false;  // a bundle is never old
    const bool isAnswered =
        !node.lastOpened() || m_wish.openingsAt(node) != OpeningNotes::Unanswered;
    ++(isAnswered ? m_unknown : m_unanswered);
    return false;
}

// Finding the kind of an extension takes longer than all else that is done with a file.
FileKind LargestFiles::kindOf(const FileNode& node) {
    const std::string_view extension = pathExtension(node.name());
    if (extension.empty() || extension.size() > partBytes) return kindOfExtension(extension);
    std::uint64_t packed = 0;
    for (const char c : extension) packed = packed << 8U | static_cast<unsigned char>(c);
    const auto [known, isNew] = m_kinds.try_emplace(packed, FileKind::Others);
    if (isNew) known->second = kindOfExtension(extension);
    return known->second;
}

std::uint64_t LargestFiles::keyOf(const FileNode& node) const {
    using enum FileWish::Order;
    constexpr std::uint64_t latest = std::numeric_limits<std::uint32_t>::max();
    if (m_wish.order == Name) return partOf(node, 0);
    if (m_wish.order == Size) return m_wish.isReversed ? node.size() : ~node.size();
    const auto second = m_wish.order == Written ? node.lastWritten() : m_wish.lastOpened(node);
    std::uint64_t time = latest;
    if (second) {
        time = static_cast<std::uint64_t>(*second - FileNode::before1970);
        if (m_wish.isReversed) time = latest - 1 - time;
    }
    // Of one second the biggest first, which is true to a kilobyte: archives give thousands of
    // files the same time.
    const std::uint64_t kilobytes = std::min<std::uint64_t>(node.size() >> 10U, latest);
    return time << 32U | (latest - kilobytes);
}

// The eight bytes of its name from there on in small letters, as a number that is ordered as they
// are; 0 behind the end of the name.
std::uint64_t LargestFiles::partOf(const FileNode& node, std::size_t part) const {
    std::uint64_t number = 0;
    const std::string_view name = node.name();
    for (std::size_t i = part * partBytes; i < (part + 1) * partBytes; ++i)
        number = number << 8U |
                 (i < name.size() ? static_cast<unsigned char>(inSmallLetters(name[i])) : 0U);
    return m_wish.order == FileWish::Order::Name && m_wish.isReversed ? ~number : number;
}

bool LargestFiles::standsBefore(const Row& a, const Row& b) const {
    if (a.key != b.key) return a.key < b.key;
    int names = comparedNames(a.node->name(), b.node->name());
    if (m_wish.order == FileWish::Order::Name && m_wish.isReversed) names = -names;
    return names != 0 ? names < 0 : comparedPlaces(a.node, b.node) < 0;
}

std::span<const LargestFiles::Row> LargestFiles::first(std::size_t count) {
    count = std::min(count, m_rows.size());
    if (m_ordered >= count) return m_rows;
    if (m_ordered > 0) count = std::min(count + rowsAhead, m_rows.size());
    const std::span<Row> left = std::span(m_rows).subspan(m_ordered);
    const std::size_t wanted = count - m_ordered;
    const std::size_t part = m_wish.order == FileWish::Order::Name ? 1 : 0;
    if (wanted < left.size()) choose(left, wanted, part);
    arrange(left.first(wanted), part);
    m_ordered = count;
    return m_rows;
}

// The `count` rows that stand first come to the front, in no order. Names are equal up to `part`
// where keys are.
void LargestFiles::choose(std::span<Row> rows, std::size_t count, std::size_t part) const {
    const auto byKey = [](const Row& a, const Row& b) { return a.key < b.key; };
    const auto border = rows.begin() + static_cast<std::ptrdiff_t>(count);
    std::nth_element(rows.begin(), border, rows.end(), byKey);
    const std::uint64_t key = border->key;
    const auto low =
        std::partition(rows.begin(), border, [&](const Row& row) { return row.key != key; });
    const auto high =
        std::partition(border, rows.end(), [&](const Row& row) { return row.key == key; });
    if (low == border) return;
    const auto isEnded = [&](const Row& row) {
        return row.node->name().size() <= part * partBytes;
    };
    if (high - low <= fewRows || std::all_of(low, high, isEnded)) {
        std::nth_element(low, border, high,
                         [&](const Row& a, const Row& b) { return standsBefore(a, b); });
        return;
    }
    for (auto row = low; row != high; ++row) row->key = partOf(*row->node, part);
    choose({low, high}, static_cast<std::size_t>(border - low), part + 1);
    for (auto row = low; row != high; ++row) row->key = key;
}

void LargestFiles::arrange(std::span<Row> rows, std::size_t part) const {
    const auto whole = [&](const Row& a, const Row& b) { return standsBefore(a, b); };
    if (std::ssize(rows) <= fewRows) return std::sort(rows.begin(), rows.end(), whole);
    std::sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) { return a.key < b.key; });
    for (auto low = rows.begin(); low != rows.end();) {
        const std::uint64_t key = low->key;
        const auto high =
            std::find_if(low, rows.end(), [&](const Row& row) { return row.key != key; });
        const auto isEnded = [&](const Row& row) {
            return row.node->name().size() <= part * partBytes;
        };
        if (high - low <= fewRows || std::all_of(low, high, isEnded)) {
            if (high - low > 1) std::sort(low, high, whole);
        } else {
            for (auto row = low; row != high; ++row) row->key = partOf(*row->node, part);
            arrange({low, high}, part + 1);
            for (auto row = low; row != high; ++row) row->key = key;
        }
        low = high;
    }
}

}  // namespace orrinvale
