// The rows, with their parents and where each ends.
#include "engine/duplicates/folders/FolderTable.h"

namespace orrinvale {

FolderTable::FolderTable(const std::vector<SeenFolder>& folders) {
    m_rows.resize(folders.size());
    m_places.reserve(folders.size());
    for (std::uint32_t at = 0; at < size(); ++at) {
        FolderRow& row = m_rows[at];
        row.seen = folders[at];
        row.end = at + 1;
        const FolderNode& node = *row.seen.node;
        m_places.emplace(&node, at);
        if (node.parent == nullptr) continue;
        row.parent = rowOf(node.parent);
        if (row.parent == FolderRow::none) continue;
        FolderRow& parent = m_rows[row.parent];
        row.isBehindLink = node.throughLink || parent.isBehindLink;
        // A link is an entry that the walk left out, whatever it leads to.
        if (!node.throughLink) ++parent.subfolders;
    }
    for (std::uint32_t at = size(); at-- > 0;)
        if (const std::uint32_t parent = m_rows[at].parent; parent != FolderRow::none)
            m_rows[parent].end = std::max(m_rows[parent].end, m_rows[at].end);
}

std::uint32_t FolderTable::rowOf(const FolderNode* folder) const {
    if (folder == m_last) return m_lastRow;
    const auto found = m_places.find(folder);
    m_last = folder;
    m_lastRow = found == m_places.end() ? FolderRow::none : found->second;
    return m_lastRow;
}

}  // namespace orrinvale
