// What an X server knows is asked in x11Desktop.cpp.
#include "ui/kit/chrome/desktopFrame.h"

#include <QByteArray>
#include <QGuiApplication>

namespace orrinvale {

FrameKind chooseFrame(const DesktopFacts& facts) {
    const bool refused = facts.server == DesktopFacts::Server::X11 && facts.hasWindowManager &&
                         !facts.movesOnRequest;
    if (facts.wantsSystemFrame.value_or(refused)) return FrameKind::System;
    return facts.isComposited ? FrameKind::Own : FrameKind::OwnWithoutAlpha;
}

DesktopFacts desktopFacts() {
    DesktopFacts facts;
    const QByteArray wish = qgetenv("ORRINVALE_SYSTEM_FRAME");
    if (wish == "1" || wish == "0") facts.wantsSystemFrame = wish == "1";
    if (addX11Facts(facts)) return facts;
    if (QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
        facts.server = DesktopFacts::Server::Wayland;
    return facts;
}

}  // namespace orrinvale
