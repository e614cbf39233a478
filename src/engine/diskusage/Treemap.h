// Treemap: the map of a folder: each entry a rectangle as large as its share, nested, as near to
// squares as they come (Bruls, Huizing, van Wijk: Squarified Treemaps, 2000).
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "engine/diskusage/FSNode.h"

namespace orrinvale {

/// One entry of a map, copied from the tree, so that another thread can lay it out.
struct TreemapEntry {
    const FSNode* node = nullptr;  ///< of what is left out the folder that it lies in
    std::uint64_t size = 0;
    std::uint32_t parent = 0;  ///< index; the first entry is the folder itself, and its own parent
    std::uint32_t firstChild = 0;
    std::uint32_t childCount = 0;
    std::uint16_t depth = 0;    ///< 0 is the folder itself
    std::uint32_t leftOut = 0;  ///< stands for so many entries of its parent that are not in the
                                ///< map one by one
    bool hasLarge = false;      ///< some of these are in the tree
    [[nodiscard]] bool isLeftOut() const { return leftOut != 0; }
};

/// Edges, in the units of the whole; neighbours have the very same number for the edge between
/// them.
struct TreemapRectangle {
    double left = 0, top = 0, right = 0, bottom = 0;
    [[nodiscard]] double width() const { return right - left; }
    [[nodiscard]] double height() const { return bottom - top; }
};

struct TreemapSpacing {
    double inset = 0;   ///< between the edge of a folder and its children, on each side
    double header = 0;  ///< more of it at the top, for the name, where there is room
    double least = 0;   ///< folders with a shorter side than that have no children drawn
};

/// The folder and what is in it, level by level, the biggest of each folder first, about `most`
/// entries: a level of a folder comes whole or not at all, but for the first, of which the biggest
/// come. Entries without bytes are not in it. On the thread that owns the tree.
[[nodiscard]] std::vector<TreemapEntry> treemapEntries(const FSNode& folder,
                                                       std::size_t most = 100'000);

/// A rectangle for each entry. The children of a folder fill the room inside of it without gap or
/// overlap. Those that are not drawn are empty rectangles in their parent's corner. Any thread.
[[nodiscard]] std::vector<TreemapRectangle> layOutTreemap(const std::vector<TreemapEntry>& entries,
                                                          const TreemapRectangle& whole,
                                                          const TreemapSpacing& spacing = {});

/// The deepest drawn entry at a point; entries.size() where there is none. Any thread.
[[nodiscard]] std::size_t treemapEntryAt(const std::vector<TreemapEntry>& entries,
                                         const std::vector<TreemapRectangle>& rectangles, double x,
                                         double y);

}  // namespace orrinvale
