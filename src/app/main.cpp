// The window program: the system gate first, then the run that only touches memory, then the window.
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "engine/base/Log.h"
#include "engine/base/NotificationCenter.h"
#include "engine/base/UtilityObject.h"
#include "engine/cleaning/QnAuthorization.h"
#include "engine/largefiles/Controller.h"
#include "engine/memory/ClearMemory.h"
#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/UserDefaults.h"
#include "engine/text/UtilityFunction.h"
#include "platform/linux/LinuxAuthorization.h"
#include "platform/linux/LinuxFiles.h"
#include "platform/linux/LinuxPermissions.h"
#include "platform/linux/LinuxSystem.h"
#include "services/foundation/QtMainQueue.h"
#include "services/settings/SettingsKeeper.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/dialogs/WindowDialogs.h"
#include "ui/kit/look/Theme.h"
#include "ui/shell/DuplicateMainWindowController.h"
#include "ui/shell/FileIcons.h"
#include "ui/shell/FileManager.h"
#include "ui/shell/MyNSApplication.h"
#include "ui/shell/StallCounter.h"

namespace orrinvale {
namespace {

// Qt ends the process by abort() where it finds no display; a person in a terminal gets a sentence instead.
bool hasDisplay() {
    for (const char* const name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        const char* const value = std::getenv(name);
        if (value != nullptr && *value != '\0') return true;
    }
    return false;
}

// There is no way yet to bring a closed window back, so the program ends with it: once nothing runs any more.
class ProgramEnd final : public QObject, public DuplicateMainWindowControllerDelegate {
public:
    explicit ProgramEnd(const DuplicateMainWindowController& window) {
        m_timer.setInterval(100);
        connect(&m_timer, &QTimer::timeout, this, [this, &window] {
            if (window.window()->isVisible()) m_timer.stop();
            else if (window.sameFileDeleteVC()->bSearchFinished() && !isRemovingLarge(window)) QCoreApplication::quit();
        });
    }
    void closeMainWindow() override { m_timer.start(); }

private:
    // The page is made when somebody wants it.
    static bool isRemovingLarge(const DuplicateMainWindowController& window) {
        return window.listFileVC() != nullptr && window.listFileVC()->isRemoving();
    }

    QTimer m_timer;
};

int runWindow(int argc, char** argv) {
    // A line for each file of a search would fill the desktop's journal; what is removed is always logged.
    Log::setEngineEnabled(qEnvironmentVariableIntValue("ORRINVALE_LOG") == 1);
    MyNSApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Orrinvale"));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.kelpford.Orrinvale"));
    Theme::shared().setScheme(Theme::desktopScheme());
    Theme::shared().install(application);
    // It looks at every event, so that it is there only where somebody asks.
    std::optional<StallCounter> stalls;
    if (qEnvironmentVariableIntValue("ORRINVALE_STALLS") == 1) stalls.emplace(true);

    // Never freed: a search or a removal that was told to stop may still be at its last file when the window is gone.
    static const auto& files = *new LinuxFileSystem;
    static const auto& permissions = *new LinuxPermissions;
    static auto& notifications = *new NotificationCenter;
    static auto& mainQueue = *new QtMainQueue;
    static auto& authorization = *new LinuxAuthorization;
    UtilityFunction::getMyFunction().setNotificationCenter(&notifications);
    QnAuthorization& right = QnAuthorization::shareQnAuthorization();
    right.setParts(
        {.authorization = &authorization, .files = &files, .permissions = &permissions, .ownFiles = programFiles()});
    Controller::getController().setParts({.files = &files,
                                          .mainQueue = &mainQueue,
                                          .ownFiles = programFiles(),
                                          .reveal = revealInFileManager,
                                          .openFolder = revealInFileManager});
    right.setRightLostHandler([&](AuthorizationRefusal /*reason*/) {
        mainQueue.async([&] {
            UtilityObject::getMyObject().setIsOpenLocked(false);
            notifications.post("changeLockState");
        });
    });

    PreferenceViewController::initialize();
    UserDefaults& defaults = UserDefaults::standardUserDefaults();
    const SettingsKeeper keeper(defaults);
    WindowDialogs dialogs;
    FileIcons icons;
    DuplicateMainWindowController window({.files = &files,
                                          .notifications = &notifications,
                                          .defaults = &defaults,
                                          .dialogs = &dialogs,
                                          .mainQueue = &mainQueue,
                                          .icons = [&](const IconRequest& request) { return icons.icon(request); },
                                          .reveal = revealInFileManager,
                                          .openAddress = openWebPage},
                                         icons);
    ProgramEnd end(window);
    window.setDelegate(&end);
    window.showWindow();
    // A folder on the command line is searched as if it had been dropped: by its full path, since what is relative is never removed.
    if (argc > 1)
        if (const auto folder = files.resolved(argv[1])) window.sameFileDeleteVC()->viewDragAction(*folder);
    const int status = QApplication::exec();
    Controller::getController().setParts({});
    right.freeAuthorization();
    return status;
}

}  // namespace
}  // namespace orrinvale

int main(int argc, char** argv) {
    static const orrinvale::LinuxSystem system;
    orrinvale::UtilityFunction::getMyFunction().setSystem(&system);
    if (orrinvale::UtilityFunction::isBelow1050SystemVer()) return 0;

    const std::int32_t memoryRun = orrinvale::ClearMemory::freeMemory(argc, argv);
    if (memoryRun != -1) return memoryRun;

    if (!orrinvale::hasDisplay()) {
        std::fputs("orrinvale: there is no display here; use orrinvale-cli\n", stderr);
        return 2;
    }
    return orrinvale::runWindow(argc, argv);
}
