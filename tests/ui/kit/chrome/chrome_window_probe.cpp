// Shows one TCImageWindow, does what it is told on standard input, and writes each change of the
// window on standard output:
//   frame X Y WIDTH HEIGHT zoomed|normal own|bare|system         closing
#include <fmt/format.h>

#include <QApplication>
#include <QSocketNotifier>
#include <QTimer>

#include <cstdio>
#include <iostream>
#include <string>

#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/chrome/WindowButton.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

void say(const std::string& line) {
    static std::string last;
    if (line == last) return;
    last = line;
    std::cout << line << std::endl;
}

std::string describe(const TCImageWindow& window) {
    constexpr const char* kinds[] = {"own", "bare", "system"};
    const QRect frame = window.frame();
    return fmt::format("frame {} {} {} {} {} {}", frame.x(), frame.y(), frame.width(),
                       frame.height(), window.isZoomed() ? "zoomed" : "normal",
                       kinds[static_cast<int>(window.frameKind())]);
}

void obey(TCImageWindow& window, const std::string& order) {
    if (order == "zoom") window.zoom();
    else if (order == "close") window.performClose();
    else if (order == "dark") Theme::shared().setScheme(Theme::Scheme::Dark);
    else if (order.starts_with("frame ")) window.setFrameFromString(order.substr(6));
}

int run(int argc, char** argv) {
    std::ios::sync_with_stdio(false);  // in_avail() knows nothing otherwise
    QApplication application(argc, argv);
    Theme::shared().install(application);
    TCImageWindow window;
    window.setWindowTitle(QStringLiteral("Orrinvale probe"));
    window.setTitleBarHeight(62);
    window.setTopButtonShift(15);
    window.setHeaderImage(QStringLiteral("wheader"));
    window.setMinSize({400, 300});
    // "small" windows may not fill a screen, others may.
    window.setMaxSize(argc > 1 ? QSize(600, 500) : QSize(4000, 4000));
    window.setContentView(new QWidget);
    window.setFrame({100, 80, 500, 400});
    window.standardWindowButton(0)->setAction([&] {
        say("closing");
        window.close();
    });
    window.show();
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &window, [&] {
        if (window.isVisible()) say(describe(window));
    });
    watch.start(20);
    QSocketNotifier orders(0, QSocketNotifier::Read);
    QObject::connect(&orders, &QSocketNotifier::activated, &window, [&] {
        // The stream may have read several lines at once, and the notifier knows only what it has
        // not read.
        do {
            std::string order;
            if (!std::getline(std::cin, order)) return QCoreApplication::quit();
            obey(window, order);
        } while (std::cin.rdbuf()->in_avail() > 0);
    });
    return QApplication::exec();
}

}  // namespace
}  // namespace orrinvale

int main(int argc, char** argv) { return orrinvale::run(argc, argv); }
