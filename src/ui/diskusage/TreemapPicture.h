// TreemapPicture: the map of a folder as a picture, laid out and drawn on a thread of its own.
// TreemapView.h shows it.
#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QSize>
#include <cstdint>
#include <memory>
#include <vector>

#include "engine/diskusage/Treemap.h"
#include "ui/diskusage/FSNodeColumn.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {

/// What a drawing thread needs, copied from the tree on the thread that owns it. The tree is held:
/// names and fathers never change.
struct TreemapOrder {
    std::shared_ptr<const ShownScan> scan;
    const FSNode* folder = nullptr;
    std::vector<TreemapEntry> entries;
    std::vector<std::uint8_t> ticks;  ///< FSNode::State, of what is ticked with a folder above too
    QSize size;                       ///< in points
    qreal scale = 1;
    Theme::Scheme scheme = Theme::Scheme::Light;
    QFont font;
    std::shared_ptr<const ScanDifference> compared;  ///< null: nothing is marked
};

/// The order of this moment. Main thread.
[[nodiscard]] TreemapOrder treemapOrder(std::shared_ptr<const ShownScan> scan, const FSNode& folder,
                                        QSize size, qreal scale);

struct TreemapPicture {
    std::shared_ptr<const ShownScan> scan;
    const FSNode* folder = nullptr;
    std::vector<TreemapEntry> entries;
    std::vector<TreemapRectangle> places;  ///< in points
    QImage image;

    /// Null where there is none. Of what is left out `isLeftOut` is set, and the folder answered.
    [[nodiscard]] const TreemapEntry* entryAt(QPointF place) const;
    /// Null for a node that is not in it.
    [[nodiscard]] const TreemapRectangle* placeOf(const FSNode& node) const;
};

/// Any thread.
[[nodiscard]] TreemapPicture drawTreemap(TreemapOrder order);

/// "3,000 items under 1.00 MB" for an entry that stands for these, in a scan with that limit. Any
/// thread.
[[nodiscard]] QString restWords(const TreemapEntry& entry, std::uint64_t limit);

/// What an entry of the map has for its colour.
[[nodiscard]] Theme::Color treemapColor(const TreemapEntry& entry);

}  // namespace orrinvale
