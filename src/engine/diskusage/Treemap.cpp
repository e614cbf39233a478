// Rows along the shorter side of what is left, each as long as it makes its rectangles squarer.
#include "engine/diskusage/Treemap.h"

#include <algorithm>
#include <limits>
#include <span>

#include "engine/base/saturating.h"

namespace orrinvale {
namespace {

/// Lays the children of one folder out.
class Squares {
public:
    Squares(std::span<const TreemapEntry> children, std::span<TreemapRectangle> rectangles,
            const TreemapRectangle& room)
        : m_children(children), m_rectangles(rectangles), m_left(room) {
        for (const TreemapEntry& child : children) m_bytes += static_cast<double>(child.size);
    }

    void lay() {
        std::size_t from = 0;
        while (from < m_children.size()) {
            const std::size_t to = endOfRow(from);
            layRow(from, to);
            from = to;
        }
    }

private:
    // The biggest of the rest begins; a row ends before the entry that would make its worst shape
    // worse.
    [[nodiscard]] std::size_t endOfRow(std::size_t from) const {
        const double side = std::min(m_left.width(), m_left.height());
        const double scale = m_left.width() * m_left.height() / m_bytes;
        const double biggest = static_cast<double>(m_children[from].size) * scale;
        double sum = 0;
        double worst = std::numeric_limits<double>::infinity();
        for (std::size_t to = from; to < m_children.size(); ++to) {
            const double area = static_cast<double>(m_children[to].size) * scale;
            sum += area;
            const double shape =
                std::max(side * side * biggest / (sum * sum), sum * sum / (side * side * area));
            if (!(shape <= worst)) return std::max(to, from + 1);
            worst = shape;
        }
        return m_children.size();
    }

    // Each edge is made once and given to both sides of it, the last one of a row and of the whole
    // by the room itself, so that rounding leaves neither gaps nor overlaps.
    void layRow(std::size_t from, std::size_t to) {
        double row = 0;
        for (std::size_t i = from; i < to; ++i) row += static_cast<double>(m_children[i].size);
        const bool isUpright = m_left.width() >= m_left.height();  // one above the other
        const bool isLast = to == m_children.size();
        const double share = isLast ? 1 : std::min(1.0, row / m_bytes);
        const double across =
            isUpright ? m_left.left + m_left.width() * share : m_left.top + m_left.height() * share;
        const double edge = isLast ? (isUpright ? m_left.right : m_left.bottom) : across;
        const double begin = isUpright ? m_left.top : m_left.left;
        const double end = isUpright ? m_left.bottom : m_left.right;
        double at = begin;
        double sum = 0;
        for (std::size_t i = from; i < to; ++i) {
            sum += static_cast<double>(m_children[i].size);
            const double next =
                i + 1 == to ? end : std::clamp(begin + (end - begin) * (sum / row), at, end);
            m_rectangles[i] = isUpright ? TreemapRectangle{m_left.left, at, edge, next}
                                        : TreemapRectangle{at, m_left.top, next, edge};
            at = next;
        }
        (isUpright ? m_left.left : m_left.top) = edge;
        m_bytes -= row;
    }

    const std::span<const TreemapEntry> m_children;
    const std::span<TreemapRectangle> m_rectangles;
    TreemapRectangle m_left;  // room that has no row yet
    double m_bytes = 0;       // of what is to be laid in it
};

TreemapRectangle insideOf(const TreemapRectangle& folder, const TreemapSpacing& spacing) {
    TreemapRectangle room{folder.left + spacing.inset, folder.top + spacing.inset,
                          folder.right - spacing.inset, folder.bottom - spacing.inset};
    if (room.height() > 2 * spacing.header) room.top += spacing.header;
    return room;
}

bool isDrawn(const TreemapRectangle& folder, const TreemapRectangle& room,
             const TreemapSpacing& spacing) {
    return room.width() > 0 && room.height() > 0 &&
           std::min(folder.width(), folder.height()) >= spacing.least;
}

/// What of a folder comes into the map, and what stands for the rest of it.
struct Share {
    std::span<FSNode* const> shown;
    LeftOut rest;
    bool hasLarge = false;
};

Share shareOf(const FSNode& folder, std::size_t most) {
    Share share{folder.children(), folder.leftOut()};
    if (share.shown.size() <= most) return share;
    share.rest.entries += share.shown.size() - most;
    share.shown = share.shown.first(most);
    share.hasLarge = true;
    std::uint64_t size = 0;
    for (const FSNode* const child : share.shown) addSaturating(size, child->size());
    share.rest.size = folder.size() - std::min(size, folder.size());
    return share;
}

void addChildren(std::vector<TreemapEntry>& entries, std::uint32_t index, std::size_t most) {
    const FSNode& folder = *entries[index].node;
    const auto [shown, leftOut, hasLarge] = shareOf(folder, most);
    const auto first = static_cast<std::uint32_t>(entries.size());
    const auto depth = static_cast<std::uint16_t>(std::min(entries[index].depth + 1, 65535));
    bool isLeftOutIn = leftOut.size == 0;
    const auto addLeftOut = [&, leftOut = leftOut, hasLarge = hasLarge] {
        isLeftOutIn = true;
        entries.push_back({.node = &folder,
                           .size = leftOut.size,
                           .parent = index,
                           .depth = depth,
                           .leftOut = static_cast<std::uint32_t>(leftOut.entries),
                           .hasLarge = hasLarge});
    };
    for (const FSNode* const child : shown) {
        if (child->size() == 0) continue;
        if (!isLeftOutIn && leftOut.size > child->size()) addLeftOut();
        entries.push_back({.node = child, .size = child->size(), .parent = index, .depth = depth});
    }
    if (!isLeftOutIn) addLeftOut();
    entries[index].firstChild = first;
    entries[index].childCount = static_cast<std::uint32_t>(entries.size()) - first;
}

}  // namespace

std::vector<TreemapEntry> treemapEntries(const FSNode& folder, std::size_t most) {
    std::vector<TreemapEntry> entries{{.node = &folder, .size = folder.size()}};
    for (std::uint32_t i = 0; i < entries.size(); ++i) {
        const TreemapEntry& entry = entries[i];
        if (entry.isLeftOut() || !entry.node->isDirectory()) continue;
        const std::size_t more = entry.node->children().size() + 1;
        if (i != 0 && entries.size() + more > most) continue;
        addChildren(entries, i, most);
    }
    return entries;
}

std::vector<TreemapRectangle> layOutTreemap(const std::vector<TreemapEntry>& entries,
                                            const TreemapRectangle& whole,
                                            const TreemapSpacing& spacing) {
    std::vector<TreemapRectangle> rectangles(entries.size());
    if (entries.empty()) return rectangles;
    rectangles.front() = whole;
    // A folder stands before its contents.
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const TreemapEntry& entry = entries[i];
        if (entry.childCount == 0) continue;
        const std::span<TreemapRectangle> children(rectangles.data() + entry.firstChild,
                                                   entry.childCount);
        const TreemapRectangle& folder = rectangles[i];
        const TreemapRectangle room = insideOf(folder, spacing);
        if (isDrawn(folder, room, spacing))
            Squares({entries.data() + entry.firstChild, entry.childCount}, children, room).lay();
        else
            std::ranges::fill(children,
                              TreemapRectangle{folder.left, folder.top, folder.left, folder.top});
    }
    return rectangles;
}

std::size_t treemapEntryAt(const std::vector<TreemapEntry>& entries,
                           const std::vector<TreemapRectangle>& rectangles, double x, double y) {
    const auto contains = [&](std::size_t index) {
        const TreemapRectangle& at = rectangles[index];
        return x >= at.left && x < at.right && y >= at.top && y < at.bottom;
    };
    if (rectangles.empty() || !contains(0)) return entries.size();
    std::size_t deepest = 0;
    for (bool goesOn = true; goesOn;) {
        const TreemapEntry& entry = entries[deepest];
        goesOn = false;
        for (std::size_t i = entry.firstChild; i < entry.firstChild + entry.childCount; ++i) {
            if (!contains(i)) continue;
            deepest = i;
            goesOn = true;
            break;
        }
    }
    return deepest;
}

}  // namespace orrinvale
