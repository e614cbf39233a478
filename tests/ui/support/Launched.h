// Launched: the application's delegate with everything that it works with, for tests of the whole
// program.
#pragma once

#include <QAction>
#include <QMenu>
#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "engine/cleaning/QnAuthorization.h"
#include "engine/cleaning/makeFolderUtilities.h"
#include "engine/text/UtilityFunction.h"
#include "platform/fake/FakeMountChanges.h"
#include "platform/fake/FakeVolumes.h"
#include "platform/linux/LinuxFolders.h"
#include "platform/tray.h"
#include "services/volumes/SystemWatch.h"
#include "support/MadeUpSystem.h"
#include "support/SteadyVolumes.h"
#include "ui/shell/AppDelegate.h"
#include "ui/shell/ApplicationMenu.h"
#include "ui/support/PageWindow.h"

namespace orrinvale::testing {

/// Tells how many pieces of work have run on the main thread.
class CountingQueue final : public MainQueue {
public:
    void async(std::function<void()> work) override {
        m_queue.async([this, work = std::move(work)] {
            work();
            ++answers;
        });
    }
    bool sync(std::function<void()> work) override { return m_queue.sync(std::move(work)); }

    int answers = 0;

private:
    QtMainQueue m_queue;
};

inline std::vector<FakeVolumes::Volume> systemAndStick() {
    return {FakeVolumes::volume(1, "System", "/", false),
            FakeVolumes::volume(7, "Stick", "/media/stick", true)};
}

/// What a thread asks for aside, which may end behind the test.
class LogNow {
public:
    [[nodiscard]] LogState get() const {
        const std::lock_guard lock(m_lock);
        return m_state;
    }
    void set(LogState state) {
        const std::lock_guard lock(m_lock);
        m_state = std::move(state);
    }

private:
    mutable std::mutex m_lock;
    LogState m_state;
};

/// The window is open. With a `tray`, which may be null, something runs in the background.
/// Everything else is the test's: settings, volumes, answers; and lists of what
/// was set off. The shared parts of the process are its own while it lives.
struct Launched {
    explicit Launched(std::vector<FakeVolumes::Volume> standing = systemAndStick(),
                      std::optional<TrayHost*> tray = std::nullopt,
                      const UpdateParts* updates = nullptr)
        : volumes(std::move(standing)) {
        QnAuthorization::shareQnAuthorization().setParts(
            {&authorization, &files, &permissions, {}});
        UserDefaults::setStandardUserDefaults(&defaults);
        UtilityFunction::getMyFunction().setNotificationCenter(&notifications);
        for (const char* name :
             {"refMenuItemWhenDeleteAndAdd", "updateSizeView", "shouldSelectRow"})
            observations.push_back(notifications.addObserver(
                name, [this](const Notification& each) { posted.push_back(each.name); }));
        delegate = std::make_unique<AppDelegate>(AppDelegateParts{
            .pages = pages(),
            .clean = {.files = &files,
                      .folders = &folders,
                      .utilities = utilities.get(),
                      .settingsFolder = tree.at("settings")},
            .icons = &icons,
            .ejections = &ejections,
            .volumesAtOnce = &volumes,
            .mountChanges = &mounts,
            .systemWatch = tray ? &watch : nullptr,
            .trayHost = tray.value_or(nullptr),
            .updates = updates,
            .diagnostics = {.system = &system,
                            .volumes = &volumes,
                            .names = {"/home/anna", "anna", "annas-desk.example"},
                            .logState = [log = logNow] { return log->get(); },
                            .keepLogFile =
                                [kept = keptLog](bool isWanted) { kept->store(isWanted ? 1 : 0); }},
            .openFolder =
                [this](const std::string& path) { return opened.push_back(path), canOpen; },
            .openGuide =
                [this](const std::function<void()>& failed) {
                    ++guides;
                    if (!canOpen) failed();
                },
            .folderPatience = std::chrono::milliseconds(1500),
            .stopListening = [this] { isListening = false; },
            .exitProcess = [this](int status) { ends.push_back(status); },
            .endBySignal = [this](int signal) { ends.push_back(-signal); }});
        delegate->applicationWillFinishLaunching();
    }
    ~Launched() {
        delegate.reset();
        QnAuthorization::shareQnAuthorization().setParts({});
        UtilityFunction::getMyFunction().setNotificationCenter(nullptr);
        UserDefaults::setStandardUserDefaults(nullptr);
    }
    Launched(const Launched&) = delete;
    Launched& operator=(const Launched&) = delete;

    PageServices pages() {
        return {.files = &files,
                .notifications = &notifications,
                .defaults = &defaults,
                .dialogs = &dialogs,
                .mainQueue = &mainQueue,
                .stateFolder = tree.at("state"),
                .icons = {},
                .reveal = [this](const std::string& path) { revealed.push_back(path); },
                .openAddress = {}};
    }
    void setLog(LogState log) { logNow->set(std::move(log)); }
    QAction* entry(const char* name) const {
        return delegate->menu().menu()->findChild<QAction*>(QLatin1String(name));
    }
    bool isVisible() const { return delegate->duplicateMWC()->window()->isVisible(); }
    void closeWindow() const { delegate->duplicateMWC()->window()->performClose(); }

    std::shared_ptr<LogNow> logNow = std::make_shared<LogNow>();
    TestTree tree;
    UserDefaults defaults{tree.at("settings.ini")};
    LinuxPermissions permissions;
    FakeAuthorization authorization;
    WatchedFiles files;
    LinuxFolders folders{FolderVariables{.home = tree.path()}};
    NotificationCenter notifications;
    std::vector<NotificationCenter::Observation> observations;
    RecordedDialogs dialogs;
    CountingQueue mainQueue;
    FileIcons icons;
    LockedVolumes volumes;
    std::shared_ptr<const FolderUtilities> utilities = makeFolderUtilities(files, folders, volumes);
    FakeMountChanges mounts;
    CountedMemory memory;
    MadeUpSystem system;
    std::shared_ptr<std::atomic<int>> keptLog = std::make_shared<std::atomic<int>>(-1);
    SystemWatch watch{volumes, memory, mainQueue, std::chrono::hours(1)};
    Ejections ejections{volumes, mainQueue};
    std::vector<std::string> posted, opened, revealed;
    std::vector<int> ends;
    int guides = 0;  // asked for
    bool canOpen = true;
    bool isListening = true;
    std::unique_ptr<AppDelegate> delegate;
};

/// The launch is over too.
struct Started : Launched {
    Started() { delegate->applicationDidFinishLaunching(); }
};

}  // namespace orrinvale::testing
