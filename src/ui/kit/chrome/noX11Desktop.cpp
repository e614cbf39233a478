// For systems without X11: nothing to ask, nobody to tell. x11Desktop.cpp is the other version.
#include "ui/kit/chrome/desktopFrame.h"

namespace orrinvale {

bool addX11Facts(DesktopFacts&) { return false; }

void announceShadow(const QWindow&, const QMargins&) {}

}  // namespace orrinvale
