// motion: whether things may move on the screen. Many people get sick of it, and switch it off for
// their whole desktop.
#pragma once

class QWidget;

namespace orrinvale {

/// False when the desktop's settings, read anew with each call, or the widget's style ask for no
/// animations.
[[nodiscard]] bool mayAnimate(const QWidget& widget);

}  // namespace orrinvale
