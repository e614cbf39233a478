// attachedGeometry: where a window stands that is attached to a point, and on which side of it.
// Plain functions without a window; MAAttachedWindow.h uses them.
#pragma once

namespace orrinvale {

/// On which side of its point a window stands. Of a corner side the first word says the side, the
/// second where most of the window is: RightTop stands to the right and goes upwards.
enum class AttachedSide : int {
    Left = 0,
    Bottom = 1,
    Right = 2,
    Top = 3,
    LeftTop = 4,
    LeftBottom = 5,
    RightTop = 6,
    RightBottom = 7,
    TopLeft = 8,
    TopRight = 9,
    BottomLeft = 10,
    BottomRight = 11,
    Automatic = 12  ///< what bestAttachedSide() says
};

/// All in points, with y growing upwards, as screens are measured from their lower left corner.
struct AttachedPoint {
    double x = 0, y = 0;
    friend bool operator==(const AttachedPoint&, const AttachedPoint&) = default;
};
struct AttachedRect {
    double x = 0, y = 0, width = 0, height = 0;
    friend bool operator==(const AttachedRect&, const AttachedRect&) = default;
};

/// The measures of an attached window's look.
struct AttachedLook {
    double viewMargin = 2;  ///< around the view, on each side
    double arrowBaseWidth = 20;
    double arrowHeight = 16;  ///< kept free whether the arrow shows or not
    double cornerRadius = 8;
    bool drawsRoundCornerBesideArrow = true;
    double scale = 1;  ///< that all of these are multiplied by
};

/// What is to be placed.
struct AttachedTo {
    double width = 0, height = 0;  ///< of the view
    AttachedPoint point;
    double distance = 0;  ///< between the point and the window
};

struct AttachedGeometry {
    AttachedRect window;
    AttachedRect view;  ///< within the window
    friend bool operator==(const AttachedGeometry&, const AttachedGeometry&) = default;
};

/// How far the arrow stands from a corner of the window, at a corner side.
[[nodiscard]] double attachedArrowInset(const AttachedLook& look);

/// Below where that fits, else to the right, else to the left, else above where there is room, else
/// below all the same. A side on which the window would leave `visible` across becomes the corner
/// form that keeps it inside.
[[nodiscard]] AttachedSide bestAttachedSide(const AttachedTo& to, const AttachedLook& look,
                                            const AttachedRect& visible);

/// For any side but Automatic, which counts as Bottom.
[[nodiscard]] AttachedGeometry attachedGeometry(const AttachedTo& to, const AttachedLook& look,
                                                AttachedSide side);

/// The plain side that a corner side belongs to.
[[nodiscard]] AttachedSide plainSide(AttachedSide side);

}  // namespace orrinvale
