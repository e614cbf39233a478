// Shows a window, two bubbles that live as long as the argument says, and a window that is attached
// to a point at the edge; says how many bubbles live, and when the keyboard goes elsewhere.
#include <QApplication>
#include <QLineEdit>
#include <QTimer>
#include <QWindow>
#include <cstdio>
#include <cstdlib>

#include "engine/base/UtilityObject.h"
#include "services/desktop/DesktopNotifications.h"
#include "ui/bubbles/BubbleContent.h"
#include "ui/bubbles/BubbleView.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

std::unique_ptr<BubbleContent> words(const char* text) {
    return std::make_unique<BubbleContent>(QStringList{QLatin1String(text)});
}

void say(const char* words) {
    std::puts(words);
    std::fflush(stdout);
}

int run(int argc, char** argv) {
    QApplication application(argc, argv);
    Theme::shared().install(application);
    QLineEdit field;
    field.setGeometry(20, 700, 300, 40);
    field.show();
    DesktopNotifications notifications(QDBusConnection::sessionBus());
    BubbleGround ground;
    ground.notifications = &notifications;
    ground.lifetime = std::chrono::milliseconds(argc > 1 ? std::atoi(argv[1]) : 5000);
    std::vector<std::unique_ptr<BubbleView>> bubbles;
    std::unique_ptr<MAAttachedWindow> attached;
    const auto show = [&] {
        for (const char* text : {"Files removed: 12", "Nothing to clean"})
            bubbles.push_back(std::make_unique<BubbleView>(words(text), ground));
        attached = MAAttachedWindow::initWithView(words("Here"), {30, 400});
        attached->show();
    };
    QObject::connect(&application, &QGuiApplication::focusWindowChanged, &field,
                     [&](const QWindow* now) {
                         if (now != nullptr && bubbles.empty()) show();
                         else say(now != nullptr ? "focus on a window" : "focus on none");
                     });
    // A server without a seat gives no window the keyboard.
    QTimer::singleShot(2000, &field, [&] {
        if (bubbles.empty()) show();
    });
    QTimer tell;
    QObject::connect(&tell, &QTimer::timeout, &field, [] {
        std::printf("living %d\n", UtilityObject::getMyObject().liveBubbleCount.load());
        std::fflush(stdout);
    });
    tell.start(50);
    return QApplication::exec();
}

}  // namespace
}  // namespace orrinvale

int main(int argc, char** argv) { return orrinvale::run(argc, argv); }
