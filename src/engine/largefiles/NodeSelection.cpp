// Lists stand in for the call stack, since a tree may be deeper than that.
#include "engine/largefiles/NodeSelection.h"

#include <algorithm>

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
