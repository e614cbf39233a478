// Screens are the toolkit's to know, since X11 and Wayland tell of them in ways of their own.
#include "app/Desktop.h"

#include <QGuiApplication>
#include <QScreen>

#include "engine/settings/TCPublicUtilities.h"
#include "engine/text/UtilityFunction.h"

namespace orrinvale {

Desktop::Desktop() {
    TCPublicUtilities::setNetworkProbe(&m_networkProbe);
    UtilityFunction::getMyFunction().setWorkspace(this);
}

Desktop::~Desktop() {
    TCPublicUtilities::setNetworkProbe(nullptr);
    UtilityFunction::getMyFunction().setWorkspace(nullptr);
}

std::optional<Rect> Desktop::mainScreenFrame() const {
    const QScreen* const screen = QGuiApplication::primaryScreen();
    if (screen == nullptr) return std::nullopt;
    const QRectF frame = screen->geometry();
    return Rect{frame.x(), frame.y(), frame.width(), frame.height()};
}

}  // namespace orrinvale
