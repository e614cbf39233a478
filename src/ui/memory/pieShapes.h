// pieShapes: the outlines that a pie lying down is drawn from. PieChartView.h and CLMiew.h draw.
#pragma once

#include <QPainterPath>
#include <QPointF>

namespace orrinvale {

/// A circle before its y axis is pressed together. Angles are in radians from the right, and grow
/// clockwise as one sees it: what lies between 0 and pi is the near half.
struct PieCircle {
    QPointF centre;
    double radius = 0;
    double height = 0;  ///< of the rim
};

/// The slice from one angle to another: centre, arc, and back.
[[nodiscard]] QPainterPath pieSlice(const PieCircle& circle, double from, double to);

/// The rim below the part of the slice that lies in the near half; empty where none does. `pi` is
/// where the near half ends.
[[nodiscard]] QPainterPath pieRim(const PieCircle& circle, double from, double to, double pi);

}  // namespace orrinvale
