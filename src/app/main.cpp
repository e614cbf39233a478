// The window program: the system gate first, then the run that only touches memory, then a word to
// the program that runs already, and only then the window.
#include <QDBusConnection>
#include <QDir>
#include <QFile>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "app/Desktop.h"
#include "app/ProgramArguments.h"
#include "app/ProgramLog.h"
#include "engine/base/Log.h"
#include "engine/base/NotificationCenter.h"
#include "engine/base/UtilityObject.h"
#include "engine/base/notices.h"
#include "engine/cleaning/QnAuthorization.h"
#include "engine/cleaning/makeFolderUtilities.h"
#include "engine/diagnostics/MacLog.h"
#include "engine/largefiles/Controller.h"
#include "engine/loginitems/AutostartItems.h"
#include "engine/loginitems/LoginItemRegistry.h"
#include "engine/loginitems/removeLoginItem.h"
#include "engine/memory/ClearMemory.h"
#include "engine/settings/BundleResources.h"
#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "engine/settings/UserFolders.h"
#include "engine/text/UtilityFunction.h"
#include "engine/updates/UpdateCheck.h"
#include "engine/updates/releaseKeys.h"
#include "platform/FolderVariables.h"
#include "platform/instance.h"
#include "platform/linux/LinuxApplications.h"
#include "platform/linux/LinuxAuthorization.h"
#include "platform/linux/LinuxFiles.h"
#include "platform/linux/LinuxFolders.h"
#include "platform/linux/LinuxHotKeys.h"
#include "platform/linux/LinuxLoginItemSources.h"
#include "platform/linux/LinuxLoginItems.h"
#include "platform/linux/LinuxMemory.h"
#include "platform/linux/LinuxMountChanges.h"
#include "platform/linux/LinuxPermissions.h"
#include "platform/linux/LinuxSystem.h"
#include "platform/linux/LinuxSystemValues.h"
#include "platform/linux/LinuxTrayHost.h"
#include "platform/linux/LinuxVolumes.h"
#include "platform/linux/OwnPackage.h"
#include "platform/linux/ProgramFiles.h"
#include "platform/programMemory.h"
#include "platform/standardStreams.h"
#include "services/desktop/DesktopNotifications.h"
#include "services/foundation/QtMainQueue.h"
#include "services/lifecycle/EndSignals.h"
#include "services/lifecycle/StartService.h"
#include "services/settings/SettingsKeeper.h"
#include "services/updates/HttpsTransport.h"
#include "services/volumes/SystemWatch.h"
#include "ui/cleaning/MainViewController.h"
#include "ui/cleaning/cleanPage.h"
#include "ui/diskusage/DiskUsageAppController.h"
#include "ui/diskusage/diskUsagePage.h"
#include "ui/duplicates/duplicatePage.h"
#include "ui/fastclean/FastClean.h"
#include "ui/kit/dialogs/WindowDialogs.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/Translations.h"
#include "ui/loginitems/LoginItemController.h"
#include "ui/memory/CleanMemoryController.h"
#include "ui/preferences/AppPrefsWindowController.h"
#include "ui/preferences/PreferencePage.h"
#include "ui/preferences/chosenLook.h"
#include "ui/shell/AppDelegate.h"
#include "ui/shell/FileIcons.h"
#include "ui/shell/FileManager.h"
#include "ui/shell/MyNSApplication.h"
#include "ui/shell/StallCounter.h"
#include "ui/tray/Tray.h"
#include "ui/uninstall/uninstallParts.h"
#include "ui/volumes/FreeSpacePage.h"

namespace orrinvale {
namespace {

constexpr auto mainThreadPatience = std::chrono::milliseconds(50);

// Qt ends the process by abort() where it finds no display; a person in a terminal gets a sentence
// instead.
bool hasDisplay() {
    for (const char* const name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        const char* const value = std::getenv(name);
        if (value != nullptr && *value != '\0') return true;
    }
    return false;
}

// Asked before anything else of the program is there.
const LinuxSystemValues& systemValues() {
    static const LinuxSystemValues values;
    return values;
}

DiagnosticParts diagnosticParts(Volumes& volumes) {
    return {
        .system = &systemValues(),
        .volumes = &volumes,
        .names = {.home = QFile::encodeName(QDir::homePath()).toStdString(),
                  .user = qEnvironmentVariable("USER", QDir::home().dirName()).toStdString(),
                  .host = systemValues().sysctlbyname("kern.hostname").value_or("")},
        .logState =
            [] {
                MacLog::lookAfterFile();
                return LogState{MacLog::openLogFile(), MacLog::failure(), standardErrorGoesTo()};
            },
        .keepLogFile = keepLogFile};
}

// What the whole program shares. Never freed: a search or a removal may still be at its last file
// when the process ends.
struct Shared {
    Desktop desktop;
    LinuxFileSystem files;
    LinuxPermissions permissions;
    LinuxVolumes volumes;
    LinuxVolumes volumesAtOnce{{}, mainThreadPatience};
    LinuxMountChanges mountChanges;
    LinuxFolders folders;
    std::shared_ptr<const FolderUtilities> utilities = makeFolderUtilities(files, folders, volumes);
    LinuxAuthorization authorization;
    NotificationCenter notifications;
    QtMainQueue mainQueue;
    const LinuxMemory memory;
    SystemWatch systemWatch{volumes, memory, mainQueue};
    Ejections ejections{volumes, mainQueue};
    LinuxHotKeys hotKeys;
    const LinuxApplications applications;
    const AutostartItems::TakeAway takeLoginItem = [this](const LoginItemRecord& item) {
        return removeLoginItem(files, item, programFiles(), userStateFolder());
    };
    AutostartItems loginItems{linuxLoginItemFolders(), takeLoginItem};
    WindowDialogs dialogs;
    FileIcons icons;
    const HttpsTransport transport;
    const UpdateParts updates{
        .transport = &transport,
        .address = vendorAddress("UPDATE_DESCRIPTION"),
        .keys = {releaseKeys.begin(), releaseKeys.end()},
        // What a package brought stays its own while it runs, and its lists are long.
        .isOwnedByPackage = [] {
            static const bool isOwned = isOwnedByPackage();
            return isOwned;
        }};
};

void connectEngine(Shared& shared) {
    UtilityFunction::getMyFunction().setNotificationCenter(&shared.notifications);
    QnAuthorization& right = QnAuthorization::shareQnAuthorization();
    right.setParts({.authorization = &shared.authorization,
                    .files = &shared.files,
                    .permissions = &shared.permissions,
                    .ownFiles = programFiles()});
    right.setRightLostHandler([&shared](AuthorizationRefusal /*reason*/) {
        shared.mainQueue.async([&shared] {
            UtilityObject::getMyObject().setIsOpenLocked(false);
            notice::changeLockState.post(shared.notifications);
        });
    });
    LoginItemRegistry::setParts(
        {.items = &shared.loginItems, .remove = shared.takeLoginItem, .waitOneSecond = [] {
             std::this_thread::sleep_for(std::chrono::seconds(1));
         }});
    Controller::getController().setParts({.files = &shared.files,
                                          .mainQueue = &shared.mainQueue,
                                          .ownFiles = programFiles(),
                                          .reveal = revealInFileManager,
                                          .openFolder = revealInFileManager});
}

AppDelegateParts delegateParts(Shared& shared, DesktopNotifications& desktopNotifications,
                               TrayHost& trayHost, std::unique_ptr<ProgramInstance>& instance,
                               std::optional<StartService>& service) {
    return {
        .pages = {.files = &shared.files,
                  .notifications = &shared.notifications,
                  .defaults = &UserDefaults::standardUserDefaults(),
                  .dialogs = &shared.dialogs,
                  .mainQueue = &shared.mainQueue,
                  .stateFolder = userStateFolder(),
                  .icons =
                      [&shared](const IconRequest& request) { return shared.icons.icon(request); },
                  .reveal = revealInFileManager,
                  .openAddress = openWebPage},
        .clean = {.files = &shared.files,
                  .folders = &shared.folders,
                  .utilities = shared.utilities.get(),
                  .settingsFolder = userConfigFolder()},
        .icons = &shared.icons,
        .ejections = &shared.ejections,
        .volumesAtOnce = &shared.volumesAtOnce,
        .mountChanges = &shared.mountChanges,
        .desktopNotifications = &desktopNotifications,
        .systemWatch = &shared.systemWatch,
        .workspace = &shared.desktop,
        .memory = &shared.memory,
        .hotKeys = &shared.hotKeys,
        .trayHost = &trayHost,
        .updates = &shared.updates,
        .diagnostics = diagnosticParts(shared.volumes),
        .openFolder = openInFileManager,
        .openGuide = openUserGuide,
        .stopListening =
            [&service] {
                if (service) service->stop();
            },
        .exitProcess =
            [&instance](int status) {
                instance.reset();
                std::_Exit(status);
            },
        .endBySignal =
            [&instance](int signal) {
                instance.reset();
                EndSignals::endBy(signal);
            }};
}

// The pages of the toolbar window; each is made when somebody looks at it.
void preparePages(const Shared& shared, const AppDelegateParts& parts, AppDelegate& delegate) {
    auto& pages = AppPrefsWindowController::sharedPrefsWindowController();
    pages.setOpenAddress(parts.pages.openAddress);
    pages.setOpenHelp([&delegate] { delegate.help(); });
    pages.registerPage(duplicatePage(parts.pages));
    pages.registerPage(diskUsagePage(
        parts.pages, {.watch = parts.systemWatch,
                      .home = QFile::encodeName(QDir::homePath()).toStdString(),
                      .userName = qEnvironmentVariable("USER", QDir::home().dirName()),
                      .open = openInFileManager}));
    pages.registerPage(cleanPage(
        {.pages = parts.pages,
         .clean = parts.clean,
         .watch = parts.systemWatch,
         .ejections = parts.ejections,
         .makeDoor = fastCleanDoor,
         .openFolder = [open = parts.openFolder](
                           const std::string& folder) { static_cast<void>(open(folder)); },
         .hasUninstall = [&pages] { return pages.hasPage(AppDelegate::uninstallIdentifier); },
         .openUninstall = [&delegate] { delegate.onClickUninstall(); }}));
    pages.registerPage(uninstallPage(
        parts.pages, uninstallPartsOf({.files = &shared.files,
                                       .applications = &shared.applications,
                                       .folders = &shared.folders,
                                       .utilities = shared.utilities.get(),
                                       .ownFiles = programFiles(),
                                       .variables = FolderVariables::ofThisProcess()})));
    pages.registerPage(
        freeSpacePage(parts.pages, {.watch = parts.systemWatch, .ejections = parts.ejections}));
    pages.registerPage(memoryPage(
        parts.pages, {.memory = parts.memory,
                      .watch = parts.systemWatch,
                      .purge = purgePrograms(),
                      .programs = [](std::size_t most) { return largestPrograms(most); }}));
    pages.registerPage(loginItemsPage(
        parts.pages,
        {.packages = [](const std::vector<std::string>& paths) { return packagesOf(paths); },
         .services = [] { return backgroundServices(); },
         .start = startCommand}));
    pages.registerPage(preferencePage(
        parts.pages,
        {.hasTray =
             [&delegate] { return delegate.tray() != nullptr && delegate.tray()->hasHost(); },
         .hasDesktopNotes = parts.desktopNotifications != nullptr,
         .hasDiskUsage = pages.hasPage(QStringLiteral("disk_usage")),
         .updateRoad = [&delegate] { return delegate.updateRoad(); },
         .logFault = [&delegate] { return delegate.logFault(); }}));
}

int runWindow(int argc, char** argv, const StartRequest& request,
              std::unique_ptr<ProgramInstance> instance) {
    // What does not answer at once is no part of the report: the window waits behind it.
    beginProgramLog(systemValues(), *new LinuxVolumes({}, mainThreadPatience));
    keepLogFile(wantsLogFile());
    // A line for each file of a search would fill the desktop's journal; what is removed is always
    // logged.
    Log::setEngineEnabled(wantsEngineLog());
    // The toolkit would hang with a bus that hangs, and start one where there is none.
    const bool hasBus = instance->hasSessionBus();
    if (!hasBus) qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    MyNSApplication application(argc, argv);
    const Translations translations(chosenLanguages());
    QCoreApplication::setApplicationName(QStringLiteral("Orrinvale"));
    QCoreApplication::setApplicationVersion(QStringLiteral(ORRINVALE_VERSION));
    QGuiApplication::setDesktopFileName(QString::fromLatin1(programBusName));
    QGuiApplication::setQuitOnLastWindowClosed(false);  // a closed window waits to be opened again
    Theme::shared().setChosenScheme(chosenScheme());
    Theme::shared().install(application);
    // It looks at every event, so that it is there only where somebody asks.
    std::optional<StallCounter> stalls;
    if (qEnvironmentVariableIntValue("ORRINVALE_STALLS") == 1) stalls.emplace(true);

    auto& shared = *new Shared;
    connectEngine(shared);
    PreferenceViewController::initialize();
    UserDefaults& defaults = UserDefaults::standardUserDefaults();
    const SettingsKeeper keeper(defaults);
    std::optional<StartService> service;
    DesktopNotifications desktopNotifications(QDBusConnection::sessionBus());
    LinuxTrayHost trayHost(
        {.hasBus = hasBus, .hasX11 = QGuiApplication::platformName() == QLatin1String("xcb")});
    const AppDelegateParts parts =
        delegateParts(shared, desktopNotifications, trayHost, instance, service);
    AppDelegate delegate(parts);
    tellOfFailedOpening(
        [&delegate](const std::string& path) { delegate.tellThatNothingOpens(path); });
    preparePages(shared, parts, delegate);
    const EndSignals signals([&delegate](int signal) { delegate.endBySignal(signal); });
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &delegate,
                     [&defaults] { static_cast<void>(defaults.synchronize()); });
    delegate.applicationWillFinishLaunching(request.isAction(startAction::atLogin) &&
                                            defaults.boolForKey(ZvLoginItemIsHide));
    delegate.applicationDidFinishLaunching();
    service.emplace(*instance, [&delegate](const StartRequest& each) { delegate.perform(each); });
    if (request.kind != StartRequest::Kind::Activate) delegate.perform(request);
    return QApplication::exec();
}

int start(int argc, char** argv) {
    const ProgramArguments arguments = programArguments(argc, argv, LinuxFileSystem());
    if (!arguments.fault.empty()) {
        std::fprintf(stderr, "orrinvale: %s\n", arguments.fault.c_str());
        return 2;
    }
    if (!arguments.toPrint.empty())
        return std::fputs(arguments.toPrint.c_str(), stdout) < 0 ? 1 : 0;

    auto instance = std::make_unique<ProgramInstance>();
    switch (instance->begin(arguments.request)) {
        case ProgramInstance::Start::First: break;
        case ProgramInstance::Start::HandedOver: return 0;
        case ProgramInstance::Start::Unanswered:
            std::fputs("orrinvale: the running program has been told, and has not answered\n",
                       stderr);
            return 0;
        case ProgramInstance::Start::NoWay:
            std::fprintf(stderr,
                         "orrinvale: it runs already (process %d), and can not be reached\n",
                         instance->holder());
            return 1;
    }
    if (arguments.request.isAction(startAction::quit)) return 0;  // nothing runs
    if (!hasDisplay()) {
        std::fputs("orrinvale: there is no display here; use orrinvale-cli\n", stderr);
        return 2;
    }
    return runWindow(argc, argv, arguments.request, std::move(instance));
}

}  // namespace
}  // namespace orrinvale

int main(int argc, char** argv) {
    orrinvale::fillStandardStreams();
    // Where a parent left it ignored, no child's end would be told.
    std::signal(SIGCHLD, SIG_DFL);
    static const orrinvale::LinuxSystem system;
    orrinvale::UtilityFunction::getMyFunction().setSystem(&system);
    if (orrinvale::UtilityFunction::isBelow1050SystemVer()) return 0;

    const std::int32_t memoryRun =
        orrinvale::ClearMemory::freeMemory(argc, argv, orrinvale::LinuxMemory());
    if (memoryRun != -1) return memoryRun;
    return orrinvale::start(argc, argv);
}
