// Walks keep their own stack of nodes, as a tree may be deeper than the thread's stack.
#include "engine/duplicates/tree/TreeNode.h"

#include <algorithm>
#include <cassert>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <unordered_set>
#include <utility>

namespace orrinvale {
namespace {

constexpr auto kSame = std::weak_ordering::equivalent;

std::weak_ordering compareData(const TreeNode& left, const TreeNode& right, TreeNode::Order order) {
    const TreeNodeData* const first = left.nodeData().get();
    const TreeNodeData* const second = right.nodeData().get();
    return first && second ? (first->*order)(*second) : kSame;
}

}  // namespace

std::weak_ordering TreeNodeData::compareName(const TreeNodeData&) const { return kSame; }
std::weak_ordering TreeNodeData::compareSize(const TreeNodeData&) const { return kSame; }
std::weak_ordering TreeNodeData::compareDate(const TreeNodeData&) const { return kSame; }
std::weak_ordering TreeNodeData::compareNameR(const TreeNodeData&) const { return kSame; }
std::weak_ordering TreeNodeData::compareSizeR(const TreeNodeData&) const { return kSame; }
std::weak_ordering TreeNodeData::compareDateR(const TreeNodeData&) const { return kSame; }
std::optional<SortValue> TreeNodeData::sortValue(SortKey) const { return std::nullopt; }

TreeNode::Pointer TreeNode::treeNodeWithData(std::shared_ptr<TreeNodeData> data) {
    return std::make_shared<TreeNode>(std::move(data), nullptr, std::vector<Pointer>{});
}

TreeNode::TreeNode(std::shared_ptr<TreeNodeData> data, TreeNode* parent,
                   std::vector<Pointer> children)
    : m_nodeParent(parent), m_nodeData(std::move(data)), m_nodeChildren(std::move(children)) {}

TreeNode::~TreeNode() {
    std::vector<Pointer> pending;
    releaseChildren(pending);
    while (!pending.empty()) {
        const Pointer node = std::move(pending.back());
        pending.pop_back();
        // The last holder takes the children over first, so that the node's own end finds none and
        // does not nest.
        if (node && node.use_count() == 1) node->releaseChildren(pending);
    }
}

void TreeNode::releaseChildren(std::vector<Pointer>& into) {
    for (const Pointer& child : m_nodeChildren)
        if (child && child->m_nodeParent == this) child->m_nodeParent = nullptr;
    into.insert(into.end(), std::make_move_iterator(m_nodeChildren.begin()),
                std::make_move_iterator(m_nodeChildren.end()));
    m_nodeChildren.clear();
}

void TreeNode::setNodeData(std::shared_ptr<TreeNodeData> data) { m_nodeData = std::move(data); }

void TreeNode::insertChild(Pointer child, std::size_t index) {
    assert(child != nullptr);
    if (index > m_nodeChildren.size())
        throw std::out_of_range("the place lies behind the last child");
    child->m_nodeParent = this;
    m_nodeChildren.insert(m_nodeChildren.begin() + static_cast<std::ptrdiff_t>(index),
                          std::move(child));
}

void TreeNode::removeChild(const TreeNode* child) {
    const auto index = indexOfChild(child);
    if (!index) throw std::out_of_range("the node is no child of this one");
    const Pointer removed =
        m_nodeChildren[*index];  // keeps the child alive until the array is in order again
    std::erase(m_nodeChildren, removed);
    removed->m_nodeParent = nullptr;
}

void TreeNode::_removeChildrenIdenticalTo(std::span<const Pointer> nodes) {
    std::unordered_set<const TreeNode*> removed;
    removed.reserve(nodes.size());
    for (const Pointer& node : nodes) {
        node->m_nodeParent = nullptr;
        removed.insert(node.get());
    }
    // Out of the array first and ended last, as the end of a node may lead anywhere. Nothing
    // touches the children that stay.
    std::vector<Pointer> gone;
    auto kept = m_nodeChildren.begin();
    for (Pointer& child : m_nodeChildren) {
        if (removed.contains(child.get())) {
            gone.push_back(std::move(child));
            continue;
        }
        if (&*kept != &child) *kept = std::move(child);
        ++kept;
    }
    m_nodeChildren.erase(kept, m_nodeChildren.end());
}

void TreeNode::removeFromParent() {
    if (m_nodeParent) m_nodeParent->removeChild(this);
}

std::optional<std::size_t> TreeNode::indexOfChild(const TreeNode* child) const {
    const auto found = std::find_if(m_nodeChildren.begin(), m_nodeChildren.end(),
                                    [child](const Pointer& each) { return each.get() == child; });
    if (found == m_nodeChildren.end()) return std::nullopt;
    return static_cast<std::size_t>(found - m_nodeChildren.begin());
}

std::optional<std::size_t> TreeNode::indexOfChildIdenticalTo(const TreeNode* child) const {
    return indexOfChild(child);
}

TreeNode::Pointer TreeNode::lastChild() const {
    return m_nodeChildren.empty() ? nullptr : m_nodeChildren.back();
}

bool TreeNode::isDescendantOfNode(const TreeNode* node) const {
    const TreeNode* each = this;
    while (each != nullptr && each != node) each = each->m_nodeParent;
    return each != nullptr;
}

bool TreeNode::isDescendantOfNodeInArray(std::span<TreeNode* const> nodes) const {
    return std::any_of(nodes.begin(), nodes.end(),
                       [this](const TreeNode* node) { return isDescendantOfNode(node); });
}

void TreeNode::acendingSortName() { sortAllLevels(SortKey::Name, false); }
void TreeNode::acendingSortSize() { sortAllLevels(SortKey::Size, false); }
void TreeNode::acendingSortDate() { sortAllLevels(SortKey::Date, false); }
void TreeNode::decendingSortName() { sortAllLevels(SortKey::Name, true); }
void TreeNode::decendingSortSize() { sortAllLevels(SortKey::Size, true); }
void TreeNode::decendingSortDate() { sortAllLevels(SortKey::Date, true); }

std::weak_ordering TreeNode::compareName(const TreeNode& other) const {
    return compareData(*this, other, &TreeNodeData::compareName);
}
std::weak_ordering TreeNode::compareSize(const TreeNode& other) const {
    return compareData(*this, other, &TreeNodeData::compareSize);
}
std::weak_ordering TreeNode::compareDate(const TreeNode& other) const {
    return compareData(*this, other, &TreeNodeData::compareDate);
}
std::weak_ordering TreeNode::compareNameR(const TreeNode& other) const {
    return compareData(*this, other, &TreeNodeData::compareNameR);
}
std::weak_ordering TreeNode::compareSizeR(const TreeNode& other) const {
    return compareData(*this, other, &TreeNodeData::compareSizeR);
}
std::weak_ordering TreeNode::compareDateR(const TreeNode& other) const {
    return compareData(*this, other, &TreeNodeData::compareDateR);
}

// What the levels of one sort share, so that a tree of many small groups does not ask for memory at
// each.
struct TreeNode::SortRoom {
    struct Entry {
        SortValue value;
        std::size_t place;
    };
    std::vector<Entry> entries;
    std::vector<std::size_t> places;
    std::vector<Pointer> sorted;
};

void TreeNode::sortAllLevels(SortKey key, bool descending) {
    SortRoom room;
    std::vector<TreeNode*> level{this};
    std::vector<TreeNode*> below;
    for (; !level.empty(); level.swap(below)) {
        // In the order in which they lie in memory: once a tree is sorted, its own order leads all
        // over it. The levels do not depend on each other.
        std::sort(level.begin(), level.end(), std::less<>());
        below.clear();
        for (TreeNode* const node : level) {
            for (const Pointer& child : node->m_nodeChildren)
                if (child->numberOfChildren() > 0) below.push_back(child.get());
            node->sortChildren(key, descending, room);
        }
    }
}

void TreeNode::sortLevel(std::span<TreeNode* const> nodes, SortKey key, bool descending) {
    SortRoom room;
    for (TreeNode* const node : nodes) node->sortChildren(key, descending, room);
}

void TreeNode::sortChildren(SortKey key, bool descending, SortRoom& room) {
    // A node without the key is equal to every other, which is no order that a sort could follow;
    // so such nodes keep their places, and only the rest is sorted, into the places that it had.
    room.entries.clear();
    room.places.clear();
    // A sorted tree lies all over the memory; what is read next is asked for in advance.
    constexpr std::size_t nodeAhead = 16;
    constexpr std::size_t dataAhead = 8;
    const std::size_t count = m_nodeChildren.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (i + nodeAhead < count) __builtin_prefetch(m_nodeChildren[i + nodeAhead].get());
        if (i + dataAhead < count)
            __builtin_prefetch(m_nodeChildren[i + dataAhead]->m_nodeData.get());
        const TreeNodeData* const data = m_nodeChildren[i]->m_nodeData.get();
        const auto value = data != nullptr ? data->sortValue(key) : std::nullopt;
        if (!value) continue;
        room.entries.push_back({*value, i});
        room.places.push_back(i);
    }
    // The place decides between equals both ways, which is what a stable sort would do.
    const auto before = [descending](const SortRoom::Entry& left, const SortRoom::Entry& right) {
        const auto order = descending ? right.value <=> left.value : left.value <=> right.value;
        return order != 0 ? order < 0 : left.place < right.place;
    };
    if (std::is_sorted(room.entries.begin(), room.entries.end(), before)) return;
    std::sort(room.entries.begin(), room.entries.end(), before);
    room.sorted.clear();
    for (const SortRoom::Entry& entry : room.entries)
        room.sorted.push_back(std::move(m_nodeChildren[entry.place]));
    for (std::size_t i = 0; i < room.places.size(); ++i)
        m_nodeChildren[room.places[i]] = std::move(room.sorted[i]);
}

std::vector<TreeNode*> TreeNode::minimumNodeCoverFromNodesInArray(
    std::span<TreeNode* const> nodes) {
    // The way up from a node always ends at its root, so the cover is the set of roots. Each node
    // on a way is climbed from once; a later way stops where it meets an earlier one.
    std::vector<TreeNode*> cover;
    std::unordered_set<const TreeNode*> climbed;
    for (TreeNode* node : nodes) {
        while (climbed.insert(node).second) {
            if (node->m_nodeParent == nullptr) {
                cover.push_back(node);
                break;
            }
            node = node->m_nodeParent;
        }
    }
    return cover;
}

}  // namespace orrinvale
