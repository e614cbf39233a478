// The order of children, made as far as somebody looks, and how they leave a list.
#include "engine/largefiles/FileNode.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <vector>

#include "engine/largefiles/FileNodeTree.h"
#include "engine/largefiles/SystemFolder.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

// Below this a level is ordered as a whole: choosing a part of it costs as much.
constexpr std::size_t wholeLevel = 4096;
constexpr std::size_t sortedAhead = 20'000;

}  // namespace

std::string FileNode::path() const {
    std::vector<const FileNode*> way;
    for (const FileNode* node = this; node->m_father != nullptr; node = node->m_father)
        way.push_back(node);
    std::string path = FileNodeTree::of(*this).rootPath();
    if (!way.empty() && !way.back()->m_father->m_isDirectory)
        return path;  // the chosen file itself
    // Only the names directly in the chosen folder are put behind a slash whatever the folder is,
    // so below "/" paths begin with two.
    for (auto node = way.rbegin(); node != way.rend(); ++node) {
        path += '/';
        path += (*node)->m_name;
    }
    return path;
}

std::string FileNode::displayName() const { return m_name; }

// The list knows no path with two slashes, as those below "/" have.
bool FileNode::isSystemFile() const {
    if (!SystemFolder::mayBeNamed(m_name)) return false;
    const std::string spelled = path();
    return SystemFolder::isSystemFileWithFilePath(plainPath(spelled).value_or(spelled));
}

EntryIdentity FileNode::identity() const {
    EntryIdentity identity;
    identity.device = FileNodeTree::of(*this).m_devices[m_device];
    identity.inode = m_inode;
    identity.type = m_type;
    identity.size = m_size;
    if (m_type == FileType::Regular) identity.times = m_times;
    else identity.born = static_cast<std::int64_t>(m_times);
    return identity;
}

bool FileNode::isTakenOut() const {
    for (const FileNode* node = this; node != nullptr; node = node->m_father)
        if (node->m_isTakenOut) return true;
    return false;
}

std::uint32_t FileNode::keptTime(std::int64_t nanoseconds) {
    constexpr std::int64_t perSecond = 1'000'000'000;
    constexpr std::int64_t latest = std::numeric_limits<std::uint32_t>::max();
    if (nanoseconds < 0) return 1;
    return static_cast<std::uint32_t>(std::min(nanoseconds / perSecond + 2, latest));
}

FileNode* FileNode::father() const {
    return m_father != nullptr && m_father->m_father != nullptr ? m_father : nullptr;
}

bool FileNode::standsBefore(const FileNode& other) const {
    if (m_size != other.m_size) return m_size > other.m_size;
    // A newcomer is put before those of its size. A folder comes as an empty one and is moved
    // behind those whose size it reaches; at the top level it is put at the end to begin with.
    const auto isMoved = [](const FileNode& node) {
        return node.m_isDirectory && (node.m_size > 0 || node.father() == nullptr);
    };
    const bool moved = isMoved(*this);
    if (moved != isMoved(other)) return !moved;
    return moved ? m_position < other.m_position : m_position > other.m_position;
}

std::span<FileNode* const> FileNode::biggestChildren(std::size_t count) {
    const std::span<FileNode*> all{m_children, m_childCount};
    count = std::min(count, all.size());
    if (m_ordered >= count) return all;
    const auto before = [](const FileNode* a, const FileNode* b) { return a->standsBefore(*b); };
    if (all.size() <= wholeLevel) count = all.size();
    // Those in order already are bigger than the rest, so that a list which grows as it is scrolled
    // sorts what is new in it. Whoever comes back for more will do so again: choosing from all that
    // is left costs more than sorting some of it ahead.
    if (m_ordered > 0) count = std::min(count + sortedAhead, all.size());
    const std::lock_guard lock(FileNodeTree::of(*this).m_lists);
    const auto first = all.begin() + m_ordered;
    const auto end = all.begin() + static_cast<std::ptrdiff_t>(count);
    if (count < all.size()) std::nth_element(first, end, all.end(), before);
    std::sort(first, end, before);
    m_ordered = static_cast<std::uint32_t>(count);
    return all;
}

void FileNode::putInOrder(std::span<FileNode*> children) {
    std::sort(children.begin(), children.end(),
              [](const FileNode* a, const FileNode* b) { return a->standsBefore(*b); });
}

// In a folder of a million entries a look at each child would take longer than a frame, so that the
// list alone is compared with those that leave, up to the last of them.
void FileNode::removeChildren(std::span<FileNode* const> leaving) {
    const std::lock_guard lock(FileNodeTree::of(*this).m_lists);
    for (FileNode* const node : leaving)
        if (node->m_father == this) node->m_isTakenOut = true;
    std::size_t found = 0;
    std::size_t at = 0;
    std::size_t kept = 0;
    std::uint32_t orderedGone = 0;
    for (; at < m_childCount && found < leaving.size(); ++at) {
        if (m_children[at] != leaving[found]) {
            m_children[kept++] = m_children[at];
            continue;
        }
        ++found;
        if (at < m_ordered) ++orderedGone;
    }
    if (found > 0) std::move(m_children + at, m_children + m_childCount, m_children + kept);
    m_childCount -= static_cast<std::uint32_t>(found);
    m_ordered -= orderedGone;
    if (found < leaving.size()) removeChildrenInAnyOrder(leaving.subspan(found));
    ++FileNodeTree::of(*this).m_revision;
    ++FileNodeTree::of(*this).m_removals;
}

// Most of those that stay are known by a bit, with no search.
void FileNode::removeChildrenInAnyOrder(std::span<FileNode* const> leaving) {
    constexpr std::size_t bits = 65536;
    const auto bitOf = [](const FileNode* node) {
        return reinterpret_cast<std::uintptr_t>(node) / sizeof *node % bits;
    };
    std::vector<bool> maybe(bits);
    std::vector<FileNode*> sorted(leaving.begin(), leaving.end());
    for (const FileNode* const node : sorted) maybe[bitOf(node)] = true;
    std::sort(sorted.begin(), sorted.end(), std::less<>());
    const auto leaves = [&](FileNode* child) {
        return maybe[bitOf(child)] &&
               std::binary_search(sorted.begin(), sorted.end(), child, std::less<>());
    };
    FileNode** const ordered = m_children + m_ordered;
    FileNode** const orderedEnd = std::remove_if(m_children, ordered, leaves);
    FileNode** const end = std::remove_if(ordered, m_children + m_childCount, leaves);
    m_ordered = static_cast<std::uint32_t>(orderedEnd - m_children);
    m_childCount = m_ordered + static_cast<std::uint32_t>(end - ordered);
    if (orderedEnd != ordered) std::move(ordered, end, orderedEnd);
}

}  // namespace orrinvale
