// paintTickBox: the three states of a selection and their one drawing, shared by TickBox and
// RowDelegate.
#pragma once

#include <QRect>
#include <Qt>

class QPainter;
class QVariant;

namespace orrinvale {

/// What of something is selected; the numbers are those that trees and settings hold.
enum class TickState { Nothing = 0, All = 1, Some = 2 };

/// Any other number, as well as what is no number, is Nothing.
[[nodiscard]] TickState tickState(const QVariant& value);

/// What a click makes of it: All from Nothing and from Some, Nothing from All.
[[nodiscard]] TickState stateAfterClick(TickState state);

/// For Qt::CheckStateRole, through which screen readers learn of the state.
[[nodiscard]] Qt::CheckState checkState(TickState state);

struct TickLook {
    bool isEnabled = true;
    bool isHovered = false;
    bool isPressed = false;
    bool isFocused = false;
    bool isOnAccent = false;  ///< what lies behind has the accent's own colour
};

/// Width and height of the box in points, and how far its halo and its ring of focus reach beyond
/// it.
inline constexpr int tickBoxSize = 18, tickBoxHalo = 3;

/// Draws "option_no", "option_yes" or "option_a" into the square, with the halo of hovering and the
/// ring of focus around it.
void paintTickBox(QPainter& painter, const QRect& box, TickState state, const TickLook& look);

}  // namespace orrinvale
