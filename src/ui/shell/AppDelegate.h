// AppDelegate: the life of the program, from its window at launch to its end, and what it does when
// volumes come and go. AppDelegateVolumes.cpp has the volumes, AppDelegateCleaning.cpp Fast Clean,
// AppDelegateFolders.cpp folders that come from outside, AppDelegateBubbles.cpp the notes,
// AppDelegatePreferences.cpp what settings change while it runs, AppDelegateUpdates.cpp newer
// versions of the program, AppDelegateDiagnostics.cpp the computer and the log.
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/base/NotificationCenter.h"
#include "engine/cleaning/CategoryScan.h"
#include "engine/removal/AsideJournal.h"
#include "engine/settings/UserDefaults.h"
#include "engine/volumes/SystemSight.h"
#include "engine/volumes/VolumesInfo.h"
#include "engine/volumes/VolumesManager.h"
#include "platform/StartRequest.h"
#include "services/volumes/Ejections.h"
#include "ui/bubbles/StandingBubble.h"
#include "ui/bubbles/delegateNotes.h"
#include "ui/diagnostics/DiagnosticParts.h"
#include "ui/page/PageServices.h"
#include "ui/shell/DuplicateMainWindowController.h"

class QDialog;
class QLabel;

namespace orrinvale {

class ApplicationMenu;
class AppPrefsWindowController;
class ArrowHotKeys;
class DesktopNotifications;
class FastClean;
class HotKeys;
class Workspace;
struct Alert;
class Memory;
class MenuItemView;
class MountChanges;
class QnCheckUpdateWindowController;
class Sheet;
class SpaceWarnings;
class SystemWatch;
class Tray;
class TrayHost;
class UpdateWatch;
class WatchMountUnmount;
class WorkspaceMounts;
struct UpdateParts;
enum class UpdateRoad : std::uint8_t;

/// What the delegate works with. Nothing of it is owned; all of it outlives the delegate.
struct AppDelegateParts {
    PageServices pages;
    CleanParts clean = {};  ///< without FolderUtilities there is no Fast Clean
    FileIcons* icons = nullptr;
    Ejections* ejections = nullptr;
    Volumes* volumesAtOnce =
        nullptr;  ///< asked on the main thread; leaves out what does not answer at once
    MountChanges* mountChanges = nullptr;
    DesktopNotifications* desktopNotifications = nullptr;  ///< null: nobody shows any
    SystemWatch* systemWatch = nullptr;    ///< over `volumes`; null: nothing runs in the background
    const Workspace* workspace = nullptr;  ///< null: there is no screen
    const Memory* memory = nullptr;        ///< null: there is no row of the memory
    HotKeys* hotKeys = nullptr;            ///< null: there are none
    TrayHost* trayHost = nullptr;          ///< null: there is never a tray
    const UpdateParts* updates = nullptr;  ///< null: nobody looks for newer versions
    DiagnosticParts diagnostics = {};
    /// In the desktop's file manager. False when it can not; where that shows later,
    /// tellThatNothingOpens() is for it.
    std::function<bool(const std::string& path)> openFolder;
    std::function<void(std::function<void()> failed)>
        openGuide;  ///< runs `failed`, maybe later, where nothing shows it
    /// How long a folder from outside may take to answer: a disk that has to begin turning takes
    /// some seconds.
    std::chrono::milliseconds folderPatience = std::chrono::seconds(8);
    std::function<void()> stopListening;          ///< to later starts, when this one leaves
    std::function<void(int status)> exitProcess;  ///< ends the process where it stands
    std::function<void(int signal)>
        endBySignal;  ///< the same, so that who sent the signal sees that it worked
};

/// applicationWillFinishLaunching() is called first and applicationDidFinishLaunching() next, the
/// others after these. Main thread only.
class AppDelegate final : public QObject, private DuplicateMainWindowControllerDelegate {
    Q_OBJECT
public:
    explicit AppDelegate(AppDelegateParts parts, QObject* parent = nullptr);
    ~AppDelegate() override;

    /// The main window is on the screen first of all, before any volume is looked at. Hidden there
    /// is none, and after ten seconds without a tray a minimised one.
    void applicationWillFinishLaunching(bool isHidden = false);
    void applicationDidFinishLaunching();

    void registNSnotification();
    void addMainFuction();

    /// What a start of the program asks for: the first one, and later ones that were handed over.
    void perform(const StartRequest& request);

    /// Does nothing unless the window may be opened. The window is made at the first call and lives
    /// on when it is closed.
    void openMainWindow();
    void showMainWindow() { openMainWindow(); }
    void showMainWindowWhenClickMenuItem();
    void handleReopenAppEvent();

    [[nodiscard]] DuplicateMainWindowController* duplicateMWC() const {
        return m_duplicateMWC.get();
    }  ///< null before
    [[nodiscard]] ApplicationMenu& menu() const { return *m_menu; }

    /// Ends the process with status 1, once an open window of the update check is gone. A removal
    /// under way stops before the next entry; nobody waits for it longer than a second.
    void quit();
    /// The same, as that signal ends a process.
    void endBySignal(int signal);

    // The application menu.
    void openAboutWindow();
    /// A sheet with what the machine is.
    void openComputerWindow();
    void Reference();
    /// Opens the window that looks for a newer version, or brings it to the front.
    void CheckupdateMenuItemAction();
    [[nodiscard]] QnCheckUpdateWindowController* checkUpdateWC() const {
        return m_checkUpdateWC.get();
    }  ///< null while it is closed
    /// Where newer versions come from; nothing until that is known.
    [[nodiscard]] std::optional<UpdateRoad> updateRoad() const;
    void showPages();
    void showMemory();
    void showLoginItems();
    /// Each shows the main window, posts "shouldSelectRow" with the row of its page, and shows that
    /// page where there is one.
    void onClickFree();
    void onClickScan();
    void onClickUninstall();
    /// Shows the page, and no more.
    void onClickDiskUsage();
    void help();
    /// Says where the lines of the log go, and leads there.
    void showLog();
    /// Why the log file can not be written, in words, as it was last looked at; empty where it can.
    [[nodiscard]] const QString& logFault() const { return m_logFault; }
    /// Shows the report about the computer, without names, in a window that copies it, or brings
    /// that to the front.
    void copyReport();
    /// That this could be opened by nothing here.
    void tellThatNothingOpens(const std::string& path);

    // Whether the program starts at login.
    /// Of a sender with this state, 1 for on.
    void launchAppWhenLogin(int state);
    void writeFileOfLaunchAppWhenLogin(const std::string& state);
    [[nodiscard]] std::string readeFileOfLaunchAppWhenLogin() const;

    // Fast Clean.
    void cleaningFile();
    void handleCloseCleanWindow();
    /// Allows the next one.
    void runAsMain();
    [[nodiscard]] FastClean* fastClean() const { return m_fastClean.get(); }  ///< null without

    // Volumes.
    void ZvVolumeMountNotificationCall(const Notification& notification);
    void ZvVolumeUnmountNotificationCall(const Notification& notification);
    void ZvCommVolumeNottification(const Notification& notification, const std::string& withInfo);
    /// "Eject All". Returns at once; what stayed is told over the main window.
    void rejestAllDisk();
    /// The object of the notice is the path, a std::string. The menu of the status item is closed
    /// first.
    void openFinderWhenClickItems(const Notification& notification);
    /// The status item; null where nothing runs in the background.
    [[nodiscard]] Tray* tray() const { return m_tray.get(); }
    /// The boot volume of a new walk; null when there is none.
    [[nodiscard]] std::shared_ptr<ZvVolumeInfo> getBootVolume();

    /// The refresh of the status item has seen the boot volume.
    void noteHomeDisk(const ZvVolumeInfo& boot);
    /// Whether the boot volume is short of space, as that saw it last.
    [[nodiscard]] bool getWarningValue() const;
    /// The disc of the status item, of a new walk; null where there is nothing to show.
    [[nodiscard]] QIcon getStatusImage();
    /// Puts the disc of that record into the status item.
    void setStatusIamge(const ZvVolumeInfo& boot);
    /// The upper right of the main screen where notes hang, measured from its lower left corner.
    [[nodiscard]] QPointF getStatusFrame() const;
    /// The note that warns of a volume. Put together and not shown.
    void errorValuebiggrtFreeBubble(const std::string& name);
    /// The note of a clean that has ended; likewise.
    void cleaningFileFinishNotification(const Notification& notification);
    /// Where bubbles stand on this desktop, or else in the open window.
    [[nodiscard]] BubbleGround bubbleGround() const;

    /// Of pages in the toolbar window, which entries of the menu lead to.
    static inline const QString freeSpaceIdentifier = QStringLiteral("free_space");
    static inline const QString diskUsageIdentifier = QStringLiteral("disk_usage");
    static inline const QString scanIdentifier = QStringLiteral("Scan");
    static inline const QString uninstallIdentifier = QStringLiteral("uninstall");
    static inline const QString preferencesIdentifier = QStringLiteral("preferences");
    static inline const QString memoryIdentifier = QStringLiteral("memory");
    static inline const QString loginItemsIdentifier = QStringLiteral("login_items");

    /// The sentence about a volume that was "mounted" or "unmounted".
    [[nodiscard]] static std::string volumeSentence(const Notification& notification,
                                                    const std::string& word);

private:
    bool mayCloseMainWindow() override;
    bool mayGoOnUnseen(const QWidget* closing);
    [[nodiscard]] bool hasWindowBeside(const QWidget* closing) const;
    void askToGoOn();
    void closeMainWindow() override;
    [[nodiscard]] std::unique_ptr<FastClean> makeFastClean();
    void refFastCleanItem();
    void refMenuItemWhenDeleteAndAdd();
    void startTray();
    void followSettings();
    void startUpdates();
    void tellOfVersion(const QString& version);
    void openMinimisedWithoutTray();
    void takeSettings();
    void followLogFile();
    void lookAtLogFile(std::function<void(const LogState& state)> then = {});
    void takeLogState(const LogState& state);
    void showPageOfRow(std::int32_t row, const QString& identifier);
    void makeMainWindow();
    void showPageAlone(const QString& identifier);
    [[nodiscard]] AppPrefsWindowController& pagesWindow();
    void refApplicationMenu();
    void refEjectAll();
    void askToEjectAll();
    void ejectRow(const MenuItemView& row);
    void tellOfGuide();
    void ejectionEnded(std::int32_t status, const std::vector<EjectFailure>& failures);
    void tellOfFailures(const QString& title, const std::vector<EjectFailure>& failures);
    void bubbleViewWith(std::unique_ptr<QLabel> view, std::unique_ptr<QLabel> withBView = nullptr);
    void tell(const Alert& alert);
    void lookUpFolder(const std::string& path, std::function<void(const std::string& folder)> then);
    void tellOfFolder(const std::string& path, const QString& reason);
    void tellToWait(const std::string& path);
    void searchFolder(const std::string& path);
    void beginSearch(const std::string& path, const std::string& folder);
    void lookInto(const std::string& path);
    void leave(std::function<void()> last);
    /// Of both windows, those that have been shown.
    [[nodiscard]] std::vector<Page*> pages() const;
    [[nodiscard]] bool isRemoving() const;
    void bringBackWhatIsAside();
    void tellOfRecovery(const AsideRecovery& recovery);
    [[nodiscard]] QWidget* window() const;
    /// Where something is said to the person; the main window is opened for it if need be.
    [[nodiscard]] QWidget* windowForWords();

    AppDelegateParts m_parts;
    std::vector<NotificationCenter::Observation> m_observations;
    std::vector<UserDefaults::Observation> m_settings;
    std::unique_ptr<ApplicationMenu> m_menu;
    std::unique_ptr<DuplicateMainWindowController> m_duplicateMWC;
    std::unique_ptr<FastClean> m_fastClean;
    std::unique_ptr<WorkspaceMounts> m_workspace;
    std::unique_ptr<WatchMountUnmount> m_watchMu;
    std::unique_ptr<VolumesInfo> m_voluInfo;
    std::unique_ptr<VolumesManager> m_voluManager;
    std::vector<std::shared_ptr<ZvVolumeInfo>> m_volsInfo;
    std::unique_ptr<Tray> m_tray;
    std::unique_ptr<ArrowHotKeys> m_arrowKeys;
    std::unique_ptr<SpaceWarnings> m_spaceWarnings;
    std::unique_ptr<QnCheckUpdateWindowController> m_checkUpdateWC;
    std::unique_ptr<UpdateWatch> m_updateWatch;
    std::uint64_t m_versionNote = 0;  // of the desktop; 0 is none
    HomeDisk m_homeDisk;
    QPointer<Sheet> m_computerSheet;
    QPointer<QDialog> m_report;
    QString m_logFault;
    std::uint64_t m_folderLook = 0, m_logLook = 0;  // the numbers of the looks that are wanted
    std::optional<bool> m_wantsLogFile;             // as it was last followed
    bool m_isKeepingLogFile = false;
    bool m_isOpenWindow = false;
    bool m_isAskingToGoOn = false;
    bool m_isLeaving = false;
    bool m_hasPagesKeys = false;
    QTimer m_leaveTimer;
};

}  // namespace orrinvale
