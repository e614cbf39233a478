// Rectangles of windows: resizing within bounds, zooming, and bringing back into view. Plain
// functions without a window.
#pragma once

#include <QList>
#include <QRect>
#include <QSize>
#include <Qt>

#include <optional>
#include <string>
#include <string_view>

namespace orrinvale {

/// The size brought between both bounds; the lower one wins where they contradict each other.
[[nodiscard]] QSize boundedSize(QSize size, QSize least, QSize most);

/// The rectangle after the pointer has pulled these edges by `delta`. The opposite edges stay where
/// they are, even at the bounds.
[[nodiscard]] QRect pulledRect(const QRect& start, Qt::Edges edges, QPoint delta, QSize least,
                               QSize most);

/// Where a window goes that takes as much of the screen as it may: bounded by `most`, in the middle
/// of `available`.
[[nodiscard]] QRect zoomedRect(const QRect& available, QSize least, QSize most);

/// The frame moved, and made smaller down to `least` where it has to be, so that it lies within the
/// one of the screens that shows most of it, or within the first where none shows any. Without
/// screens the frame as it is.
[[nodiscard]] QRect rectInView(const QRect& frame, const QList<QRect>& screens, QSize least);

/// A frame as it is kept between two runs: "x y width height zoomed", in whole points.
struct SavedFrame {
    QRect frame;
    bool isZoomed = false;

    [[nodiscard]] std::string text() const;
    /// Nothing for a text that is not of that form, or that has no area.
    [[nodiscard]] static std::optional<SavedFrame> fromText(std::string_view text);

    bool operator==(const SavedFrame&) const = default;
};

}  // namespace orrinvale
