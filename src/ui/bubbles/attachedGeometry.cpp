// Along the axis of its side a window is moved away from the point; across it it is centred, or set
// off so that the arrow stands near a corner.
#include "ui/bubbles/attachedGeometry.h"

namespace orrinvale {
namespace {

using Side = AttachedSide;

bool isBeside(Side plain) { return plain == Side::Left || plain == Side::Right; }

struct Extent {
    double width, height;
};

// The view with its margins, without the arrow.
Extent bodyOf(const AttachedTo& to, const AttachedLook& look) {
    const double margins = 2 * look.viewMargin * look.scale;
    return {to.width + margins, to.height + margins};
}

// The plain side that has room, and the preference where none has.
Side roomySide(const AttachedTo& to, const AttachedLook& look, const AttachedRect& visible) {
    const Extent body = bodyOf(to, look);
    const double away = to.distance + look.arrowHeight * look.scale;
    if (to.point.y - body.height - away >= visible.y) return Side::Bottom;
    if (to.point.x + body.width + away <= visible.x + visible.width) return Side::Right;
    if (to.point.x - body.width - away >= visible.x) return Side::Left;
    if (to.point.y + body.height + away <= visible.y + visible.height) return Side::Top;
    return Side::Bottom;
}

// Where the window begins on the axis across its side: `forward` lets it grow from the point on,
// `backward` up to it.
double across(double point, double length, double inset, bool isForward, bool isBackward) {
    if (isForward) return point - inset;
    if (isBackward) return point - length + inset;
    return point - length / 2;
}

}  // namespace

double attachedArrowInset(const AttachedLook& look) {
    const double round = look.drawsRoundCornerBesideArrow ? look.cornerRadius : 0;
    return (look.arrowBaseWidth / 2 + round) * look.scale;
}

AttachedSide plainSide(AttachedSide side) {
    switch (side) {
        case Side::Left:
        case Side::LeftTop:
        case Side::LeftBottom: return Side::Left;
        case Side::Right:
        case Side::RightTop:
        case Side::RightBottom: return Side::Right;
        case Side::Top:
        case Side::TopLeft:
        case Side::TopRight: return Side::Top;
        default: return Side::Bottom;
    }
}

AttachedSide bestAttachedSide(const AttachedTo& to, const AttachedLook& look,
                              const AttachedRect& visible) {
    const Side side = roomySide(to, look, visible);
    const Extent body = bodyOf(to, look);
    if (isBeside(side)) {
        const bool isLeft = side == Side::Left;
        if (to.point.y - body.height / 2 < visible.y)
            return isLeft ? Side::LeftTop : Side::RightTop;
        if (to.point.y + body.height / 2 > visible.y + visible.height)
            return isLeft ? Side::LeftBottom : Side::RightBottom;
        return side;
    }
    const bool isTop = side == Side::Top;
    if (to.point.x - body.width / 2 < visible.x) return isTop ? Side::TopRight : Side::BottomRight;
    if (to.point.x + body.width / 2 > visible.x + visible.width)
        return isTop ? Side::TopLeft : Side::BottomLeft;
    return side;
}

AttachedGeometry attachedGeometry(const AttachedTo& to, const AttachedLook& look,
                                  AttachedSide side) {
    const Side plain = plainSide(side);
    const double arrow = look.arrowHeight * look.scale;
    const double margin = look.viewMargin * look.scale;
    const double inset = attachedArrowInset(look);
    const Extent body = bodyOf(to, look);
    AttachedGeometry made;
    made.view = {margin, margin, to.width, to.height};
    AttachedRect& window = made.window;
    if (isBeside(plain)) {
        window.width = body.width + arrow;
        window.height = body.height;
        window.x = plain == Side::Left ? to.point.x - window.width - to.distance
                                       : to.point.x + to.distance;
        window.y = across(to.point.y, window.height, inset,
                          side == Side::LeftTop || side == Side::RightTop,
                          side == Side::LeftBottom || side == Side::RightBottom);
    } else {
        window.width = body.width;
        window.height = body.height + arrow;
        window.y = plain == Side::Top ? to.point.y + to.distance
                                      : to.point.y - window.height - to.distance;
        window.x = across(to.point.x, window.width, inset,
                          side == Side::TopRight || side == Side::BottomRight,
                          side == Side::TopLeft || side == Side::BottomLeft);
    }
    // The arrow points at the point, so that it lies on the side of the window that looks there.
    if (plain == Side::Right) made.view.x += arrow;
    if (plain == Side::Top) made.view.y += arrow;
    return made;
}

}  // namespace orrinvale
