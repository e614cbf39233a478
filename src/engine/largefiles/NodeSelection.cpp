// Lists stand in for the call stack, since a tree may be deeper than that.
#include "engine/largefiles/NodeSelection.h"

#include <algorithm>

#include "engine/base/saturating.h"
#include "engine/files/bundleName.h"

namespace orrinvale {
namespace {

// All are ticked or mixed, none is a folder; at least one is; none is.
FileNode::State stateFromChildren(const FileNode& folder) {
    std::size_t touched = 0;
    bool holdsFolder = false;
    for (const FileNode* const child : folder.childrenInAnyOrder()) {
        if (child->state() != FileNode::NotSelected) ++touched;
        holdsFolder = holdsFolder || child->isDirectory();
    }
    if (!holdsFolder && touched == folder.childCount()) return FileNode::Selected;
    return touched != 0 ? FileNode::Mixed : FileNode::NotSelected;
}

// As stateFromChildren(), of a folder that nobody ticked itself.
FileNode::State mixedFromChildren(const FileNode& folder) {
    const bool isTouched = std::ranges::any_of(
        folder.childrenInAnyOrder(),
        [](const FileNode* child) { return child->state() != FileNode::NotSelected; });
    return isTouched ? FileNode::Mixed : FileNode::NotSelected;
}

// A folder that is not mixed speaks for what is in it, which may have states of another time while
// its row is closed. They get its state, as if it were opened, and so does what is open in them,
// which would not hear of it later.
void handDown(FileNode& folder) {
    if (folder.state() == FileNode::Mixed) return;
    std::vector<FileNode*> folders{&folder};
    while (!folders.empty()) {
        FileNode* const next = folders.back();
        folders.pop_back();
        for (FileNode* const child : next->childrenInAnyOrder()) {
            child->setState(next->state());
            if (child->isExpand()) folders.push_back(child);
        }
    }
}

// A bundle is one row, and all that is in it stands as it does, whatever was ticked in it before.
void setWhole(FileNode& node, FileNode::State state) {
    std::vector<FileNode*> nodes{&node};
    while (!nodes.empty()) {
        FileNode* const next = nodes.back();
        nodes.pop_back();
        next->setState(state);
        const auto children = next->childrenInAnyOrder();
        nodes.insert(nodes.end(), children.begin(), children.end());
    }
}

// Those of some siblings that are not clear. Only these are put into order: of a million entries
// few are ticked one by one.
std::vector<FileNode*> lastToFirst(std::span<FileNode* const> siblings) {
    std::vector<FileNode*> touched;
    for (FileNode* const node : siblings)
        if (node->state() != FileNode::NotSelected) touched.push_back(node);
    FileNode::putInOrder(touched);
    std::reverse(touched.begin(), touched.end());
    return touched;
}

}  // namespace

void TickSpread::tick(FileNode& node) {
    node.setState(m_state != FileNode::NotSelected ? FileNode::Selected : FileNode::NotSelected);
    if (!node.isDirectory() || node.childCount() == 0) return;
    if (m_folders.empty()) m_next = 0;
    // In front of the one in hand, which keeps its place as the last.
    m_folders.insert(m_folders.empty() ? m_folders.end() : m_folders.end() - 1, &node);
}

bool TickSpread::step(std::size_t nodes) {
    while (!m_folders.empty() && nodes > 0) {
        FileNode& folder = *m_folders.back();
        const auto children = folder.childrenInAnyOrder();
        if (m_next >= children.size()) {
            m_folders.pop_back();
            m_next = 0;
            continue;
        }
        --nodes;
        FileNode& child = *children[m_next++];
        child.setState(m_state);
        if (!child.isDirectory() || !folder.isExpand()) continue;
        m_wentFurther = true;
        tick(child);
    }
    return m_folders.empty();
}

void followUpwards(FileNode& node) {
    for (FileNode* folder = node.father(); folder != nullptr; folder = folder->father())
        folder->setState(stateFromChildren(*folder));
}

FileNode::State standingState(const FileNode& node) {
    FileNode::State state = node.state();
    for (const FileNode* folder = node.father(); folder != nullptr; folder = folder->father())
        if (folder->state() != FileNode::Mixed) state = folder->state();
    return state;
}

void tickOne(FileNode& node, FileNode::State state) {
    std::vector<FileNode*> above;
    for (FileNode* folder = node.father(); folder != nullptr; folder = folder->father())
        above.push_back(folder);
    for (auto folder = above.rbegin(); folder != above.rend(); ++folder) handDown(**folder);
    setWhole(node, state);
    for (FileNode* const folder : above) folder->setState(mixedFromChildren(*folder));
}

void tickMany(FileNode& root, std::span<FileNode* const> nodes, FileNode::State state) {
    std::vector<FileNode*> folders{&root};  // each before those in it
    for (std::size_t next = 0; next < folders.size(); ++next) {
        FileNode& folder = *folders[next];
        for (FileNode* const child : folder.childrenInAnyOrder()) {
            if (&folder != &root && folder.state() != FileNode::Mixed)
                child->setState(folder.state());
            if (child->childCount() > 0) folders.push_back(child);
        }
    }
    for (FileNode* const node : nodes) setWhole(*node, state);
    for (std::size_t last = folders.size(); last-- > 1;) {
        FileNode& folder = *folders[last];
        const auto children = folder.childrenInAnyOrder();
        const bool isSame = std::ranges::all_of(
            children, [&](const FileNode* child) { return child->state() == folder.state(); });
        if (!isSame) folder.setState(mixedFromChildren(folder));
    }
}

TickedTotals totalsOf(std::span<FileNode* const> nodes) {
    TickedTotals totals;
    std::vector<FileNode*> mixed;
    const auto count = [&](std::span<FileNode* const> siblings) {
        for (FileNode* const node : siblings) {
            if (node->state() == FileNode::Mixed) mixed.push_back(node);
            if (node->state() != FileNode::Selected) continue;
            ++totals.nodes;
            addSaturating(totals.bytes, node->size());
            if (!node->isDirectory()) totals.linked += node->links() > 1 ? 1U : 0U;
            else if (!isClosedAmongLargeFiles(node->name())) ++totals.folders;
        }
    };
    count(nodes);
    while (!mixed.empty()) {
        FileNode* const folder = mixed.back();
        mixed.pop_back();
        count(folder->childrenInAnyOrder());
    }
    return totals;
}

bool mayHoldLinked(std::span<FileNode* const> nodes, std::size_t looks) {
    std::vector<FileNode*> mixed;
    std::vector<FileNode*> going;
    const auto take = [&](std::span<FileNode* const> siblings) {
        for (FileNode* const node : siblings)
            if (node->state() == FileNode::Mixed) mixed.push_back(node);
            else if (node->state() == FileNode::Selected && node->isDirectory())
                going.push_back(node);
    };
    take(nodes);
    while (!mixed.empty()) {
        FileNode* const folder = mixed.back();
        mixed.pop_back();
        take(folder->childrenInAnyOrder());
    }
    while (!going.empty()) {
        FileNode* const folder = going.back();
        going.pop_back();
        for (FileNode* const node : folder->childrenInAnyOrder()) {
            if (looks-- == 0) return true;
            if (node->isDirectory()) going.push_back(node);
            else if (node->links() > 1) return true;
        }
    }
    return false;
}

std::int32_t summaryOf(std::span<FileNode* const> nodes) {
    std::size_t ticked = 0;
    bool isMixed = false;
    for (const FileNode* const node : nodes) {
        if (node->state() == FileNode::Selected) ++ticked;
        isMixed = isMixed || node->state() == FileNode::Mixed;
    }
    if (nodes.empty()) return 0;
    if (ticked == nodes.size()) return 1;
    return isMixed || ticked > 0 ? 2 : 0;
}

std::vector<FileNode*> tickedOf(std::span<FileNode* const> nodes) {
    std::vector<FileNode*> ticked;
    std::vector<FileNode*> next = lastToFirst(nodes);
    while (!next.empty()) {
        FileNode* const node = next.back();
        next.pop_back();
        if (node->state() == FileNode::Selected) {
            ticked.push_back(node);
            continue;
        }
        const std::vector<FileNode*> inside = lastToFirst(node->childrenInAnyOrder());
        next.insert(next.end(), inside.begin(), inside.end());
    }
    return ticked;
}

}  // namespace orrinvale
