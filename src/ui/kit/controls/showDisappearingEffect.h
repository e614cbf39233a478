// showDisappearingEffect: the little cloud in which what is removed goes.
#pragma once

#include <QPoint>

class QWidget;

namespace orrinvale {

/// Plays the cloud once, around a place in the coordinates of `over`, on top of all that the widget
/// holds, and takes no clicks. Nothing is shown where the desktop wants no motion. Main thread
/// only.
void showDisappearingEffect(QWidget& over, QPoint place);

}  // namespace orrinvale
