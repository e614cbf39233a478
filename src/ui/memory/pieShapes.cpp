// The toolkit counts angles in degrees against the clock.
#include "ui/memory/pieShapes.h"

#include <QtMath>
#include <algorithm>

namespace orrinvale {
namespace {

QRectF around(const PieCircle& circle, double below) {
    const double side = 2 * circle.radius;
    return {circle.centre.x() - circle.radius, circle.centre.y() - circle.radius + below, side,
            side};
}

}  // namespace

QPainterPath pieSlice(const PieCircle& circle, double from, double to) {
    QPainterPath path(circle.centre);
    path.arcTo(around(circle, 0), -qRadiansToDegrees(from), -qRadiansToDegrees(to - from));
    path.closeSubpath();
    return path;
}

QPainterPath pieRim(const PieCircle& circle, double from, double to, double pi) {
    const double end = std::min(to, pi);
    if (from >= end) return {};
    const double start = -qRadiansToDegrees(from);
    const double sweep = -qRadiansToDegrees(end - from);
    QPainterPath path;
    path.arcMoveTo(around(circle, 0), start);
    path.arcTo(around(circle, 0), start, sweep);
    path.arcTo(around(circle, circle.height), start + sweep, -sweep);  // with the line down to it
    path.closeSubpath();
    return path;
}

}  // namespace orrinvale
