// leave() is the one way out: a removal under way gets the time to finish its entry.
#include "ui/shell/AppDelegate.h"

#include <fmt/format.h>

#include <QApplication>
#include <QDeadlineTimer>
#include <QLocale>
#include <algorithm>
#include <utility>

#include "engine/base/Log.h"
#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "engine/text/UtilityFunction.h"
#include "platform/error.h"
#include "platform/files.h"
#include "services/foundation/runAside.h"
#include "services/updates/UpdateWatch.h"
#include "services/volumes/WatchMountUnmount.h"
#include "services/volumes/WorkspaceMounts.h"
#include "ui/fastclean/FastClean.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/chrome/WindowButton.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/preferences/AppPrefsWindowController.h"
#include "ui/shell/ApplicationMenu.h"
#include "ui/shell/FileManager.h"
#include "ui/tray/ArrowHotKeys.h"
#include "ui/tray/SpaceWarnings.h"
#include "ui/tray/Tray.h"
#include "ui/updates/QnCheckUpdateWindowController.h"

namespace orrinvale {
namespace {

// Milliseconds that a removal has to finish the entry that it is at. Less than the second for which
// a later start waits.
constexpr int endPatience = 700;
constexpr int endPause = 10;

}  // namespace

AppDelegate::AppDelegate(AppDelegateParts parts, QObject* parent)
    : QObject(parent),
      m_parts(std::move(parts)),
      m_menu(std::make_unique<ApplicationMenu>(ApplicationMenu::Actions{
          .openAboutWindow = [this] { openAboutWindow(); },
          .openComputerWindow = m_parts.diagnostics.system == nullptr
                                    ? std::function<void()>()
                                    : [this] { openComputerWindow(); },
          .Reference = [this] { Reference(); },
          .CheckupdateMenuItemAction = m_parts.updates == nullptr
                                           ? std::function<void()>()
                                           : [this] { CheckupdateMenuItemAction(); },
          .showPages = [this] { showPages(); },
          .onClickScan = [this] { onClickScan(); },
          .onClickFree = [this] { onClickFree(); },
          .onClickUninstall = [this] { onClickUninstall(); },
          .showMemory = [this] { showMemory(); },
          .showLoginItems = [this] { showLoginItems(); },
          .onClickDiskUsage = [this] { onClickDiskUsage(); },
          .cleaningFile = [this] { cleaningFile(); },
          .rejestAllDisk = [this] { rejestAllDisk(); },
          .help = [this] { help(); },
          .showLog =
              !m_parts.diagnostics.logState ? std::function<void()>() : [this] { showLog(); },
          .copyReport = m_parts.diagnostics.volumes == nullptr ? std::function<void()>()
                                                               : [this] { copyReport(); },
          .quit = [this] { quit(); }})),
      m_fastClean(makeFastClean()) {
    connect(m_menu.get(), &ApplicationMenu::opened, this, &AppDelegate::refApplicationMenu);
    connect(m_parts.ejections, &Ejections::failed, this,
            [this](const std::vector<EjectFailure>& failures) {
                tellOfFailures(tr("The volume could not be ejected."), failures);
            });
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationWillFinishLaunching(bool isHidden) {
    if (isHidden) {
        constexpr int trayPatience = 10'000;  // milliseconds; a desktop that starts is slow
        QTimer::singleShot(trayPatience, this, &AppDelegate::openMinimisedWithoutTray);
        return;
    }
    m_isOpenWindow = true;
    showMainWindow();
}

void AppDelegate::applicationDidFinishLaunching() {
    registNSnotification();
    addMainFuction();
}

void AppDelegate::registNSnotification() {
    NotificationCenter& center = *m_parts.pages.notifications;
    const auto observe = [&](const auto& kind, void (AppDelegate::*handler)(const Notification&)) {
        m_observations.push_back(kind.observe(
            center,
            [this, handler](const Notification& notification) { (this->*handler)(notification); }));
    };
    observe(notice::ZvVolumeMount, &AppDelegate::ZvVolumeMountNotificationCall);
    observe(notice::ZvVolumeUnmount, &AppDelegate::ZvVolumeUnmountNotificationCall);
    observe(notice::openFinderWhenClickItems, &AppDelegate::openFinderWhenClickItems);
    m_observations.push_back(
        ZvShouldCloseWindow.observe(center, [this] { handleCloseCleanWindow(); }));
    m_observations.push_back(notice::refMenuItemWhenDeleteAndAdd.observe(
        center, [this] { refMenuItemWhenDeleteAndAdd(); }));
}

void AppDelegate::addMainFuction() {
    PreferenceViewController::setLastClickRow(0);
    UtilityFunction::callSelectNotificationForMainWindowLeft(
        PreferenceViewController::getLastClickRow());
    m_workspace = std::make_unique<WorkspaceMounts>(*m_parts.mountChanges);
    m_watchMu = std::make_unique<WatchMountUnmount>(m_workspace->notificationCenter(),
                                                    *m_parts.pages.notifications);
    m_voluInfo = std::make_unique<VolumesInfo>(*m_parts.volumesAtOnce);
    m_voluManager = std::make_unique<VolumesManager>(*m_parts.volumesAtOnce, m_parts.openFolder);
    refApplicationMenu();
    if (!m_parts.pages.defaults->boolForKey(ZvLoginCheckKey))
        UtilityFunction::callSelectNotificationForMainWindowLeft(0);
    startTray();
    followSettings();
    startUpdates();
    bringBackWhatIsAside();
}

// Of removals that were killed. Their folders may lie on a disk that is slow to answer.
void AppDelegate::bringBackWhatIsAside() {
    runAside(
        this, "bringBackAside",
        [files = m_parts.pages.files, folder = asideJournalFolder(m_parts.pages.stateFolder)] {
            return bringBackAside(*files, folder);
        },
        [this](const AsideRecovery& recovery) { tellOfRecovery(recovery); });
}

void AppDelegate::tellOfRecovery(const AsideRecovery& recovery) {
    if (recovery.broughtBack.empty() && recovery.stayed.empty()) return;
    Alert alert;
    alert.title =
        tr("A removal was ended in the middle. Everything that it had set aside has been looked "
           "after.");
    QStringList lines;
    if (!recovery.broughtBack.empty())
        lines.push_back(tr("Back under their own names: %1")
                            .arg(QLocale().toString(qulonglong(recovery.broughtBack.size()))));
    for (const StayedEntry& each : recovery.stayed)
        lines.push_back(QStringLiteral("%1: %2").arg(onOneLine(QString::fromStdString(each.path)),
                                                     inWords(each.reason)));
    alert.text = lines.join(QLatin1Char('\n'));
    tell(alert);
}

void AppDelegate::perform(const StartRequest& request) {
    // Read by the window system when the window asks for the keyboard.
    if (!request.activationToken.empty())
        qputenv("XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(request.activationToken));
    if (request.isAction(startAction::quit)) {
        // Who asked gets the answer first.
        QTimer::singleShot(0, this, &AppDelegate::quit);
        return;
    }
    if (m_isLeaving || request.isAction(startAction::atLogin)) return;
    if (request.isAction(startAction::fastClean)) {
        if (m_fastClean) m_fastClean->open();
        return;
    }
    if (request.isAction(startAction::uninstall)) {
        onClickUninstall();
        return;
    }
    if (request.isAction(startAction::memory)) return showMemory();
    if (request.isAction(startAction::loginItems)) return showLoginItems();
    if (const auto folder = request.folderOfAction(startAction::diskUsage)) {
        lookInto(*folder);
        return;
    }
    if (request.isAction(startAction::diskUsage)) {
        onClickDiskUsage();
        return;
    }
    if (request.isAction(startAction::clean)) return onClickScan();
    if (request.isAction(startAction::freeSpace)) return onClickFree();
    if (request.isAction(startAction::preferences)) return Reference();
    handleReopenAppEvent();
    if (request.kind == StartRequest::Kind::Open) {
        searchFolder(request.text);
    } else if (request.isAction(startAction::ejectAll)) {
        askToEjectAll();
    } else if (request.kind == StartRequest::Kind::Action &&
               !m_duplicateMWC->selectPage(request.text)) {
        Log::line(fmt::format("There is no action \"{}\".", request.text));
    }
}

void AppDelegate::openMainWindow() {
    if (!m_isOpenWindow || m_isLeaving) return;
    makeMainWindow();
    m_duplicateMWC->showWindow();
}

void AppDelegate::makeMainWindow() {
    if (m_duplicateMWC) return;
    m_duplicateMWC = std::make_unique<DuplicateMainWindowController>(m_parts.pages, *m_parts.icons);
    m_duplicateMWC->setDelegate(this);
    m_duplicateMWC->setApplicationMenu(*m_menu);
}

void AppDelegate::showMainWindowWhenClickMenuItem() { handleReopenAppEvent(); }

void AppDelegate::handleReopenAppEvent() {
    m_isOpenWindow = true;
    showMainWindow();
}

void AppDelegate::closeMainWindow() { m_isOpenWindow = false; }

QWidget* AppDelegate::window() const { return m_duplicateMWC ? m_duplicateMWC->window() : nullptr; }

void AppDelegate::quit() {
    using Reply = QnCheckUpdateWindowController::TerminateReply;
    if (m_checkUpdateWC && m_checkUpdateWC->applicationShouldTerminate() == Reply::Cancel) return;
    leave([this] { m_parts.exitProcess(1); });
}

void AppDelegate::endBySignal(int signal) {
    leave([this, signal] { m_parts.endBySignal(signal); });
}

std::vector<Page*> AppDelegate::pages() const {
    std::vector<Page*> all;
    if (m_duplicateMWC) all = m_duplicateMWC->pages();
    for (const auto& each : AppPrefsWindowController::sharedPrefsWindowController().pages())
        all.push_back(each.get());
    return all;
}

bool AppDelegate::isRemoving() const {
    return std::ranges::any_of(pages(), &Page::isRemoving) ||
           (m_fastClean && m_fastClean->isRemoving());
}

// Nothing is unwound: threads may still be at work. What they remove goes entry by entry, and each
// stands as a whole or is gone; so only an entry under way is worth a moment.
void AppDelegate::leave(std::function<void()> last) {
    if (std::exchange(m_isLeaving, true)) return;
    m_parts.stopListening();
    const auto end = [this, last = std::move(last)] {
        m_leaveTimer.stop();
        if (m_duplicateMWC) m_duplicateMWC->keepFrame();
        // A failure is logged there; there is nobody left to be asked.
        static_cast<void>(m_parts.pages.defaults->synchronize());
        last();
    };
    if (!isRemoving()) {
        end();
        return;
    }
    for (Page* const each : pages()) each->giveUp();
    if (m_fastClean) m_fastClean->giveUp();
    // Nothing more is begun in either window.
    if (window() != nullptr) window()->hide();
    AppPrefsWindowController::sharedPrefsWindowController().window()->hide();
    connect(&m_leaveTimer, &QTimer::timeout, this,
            [this, end, patience = QDeadlineTimer(endPatience)] {
                if (!isRemoving() || patience.hasExpired()) end();
            });
    m_leaveTimer.start(endPause);
}

QWidget* AppDelegate::windowForWords() {
    TCImageWindow* const pages = AppPrefsWindowController::sharedPrefsWindowController().window();
    if (pages != nullptr && pages->isActiveWindow()) return pages;
    handleReopenAppEvent();
    return window();
}

void AppDelegate::tell(const Alert& alert) {
    m_parts.pages.dialogs->alert(windowForWords(), alert, [](int) {});
}

void AppDelegate::openAboutWindow() {
    Alert about;
    about.title = QStringLiteral("Orrinvale ") + QCoreApplication::applicationVersion();
    about.text =
        tr("Finds duplicates, shows what is large, and removes what you tick: that and nothing "
           "else.\n\n"
           "Free software under the Apache License 2.0.");
    about.picture = QStringLiteral("appicon");
    tell(about);
}

AppPrefsWindowController& AppDelegate::pagesWindow() {
    auto& pages = AppPrefsWindowController::sharedPrefsWindowController();
    if (!std::exchange(m_hasPagesKeys, true)) {
        m_menu->addKeysTo(*pages.window());
        pages.window()->standardWindowButton(0)->setAction([self = QPointer(this), &pages] {
            pages.closeWindow();
            if (self != nullptr) self->mayGoOnUnseen(nullptr);
        });
    }
    return pages;
}

void AppDelegate::showPages() { pagesWindow().showWindow(); }

void AppDelegate::showPageOfRow(std::int32_t row, const QString& identifier) {
    handleReopenAppEvent();
    UtilityFunction::callSelectNotificationForMainWindowLeft(row);
    showPageAlone(identifier);
}

void AppDelegate::onClickFree() { showPageOfRow(9, freeSpaceIdentifier); }

void AppDelegate::onClickScan() { showPageOfRow(0, scanIdentifier); }

void AppDelegate::onClickUninstall() { showPageOfRow(8, uninstallIdentifier); }

void AppDelegate::Reference() { pagesWindow().showWindowWith(preferencesIdentifier); }

void AppDelegate::showPageAlone(const QString& identifier) {
    auto& pages = pagesWindow();
    if (pages.hasPage(identifier)) pages.showWindowWith(identifier);
}

void AppDelegate::showMemory() { showPageAlone(memoryIdentifier); }

void AppDelegate::showLoginItems() { showPageAlone(loginItemsIdentifier); }

void AppDelegate::help() {
    m_parts.openGuide([self = QPointer(this)] {
        if (self != nullptr) self->tellOfGuide();
    });
}

void AppDelegate::tellOfGuide() {
    const QString guide = userGuidePath();
    Alert missing;
    missing.title = tr("The user guide could not be opened.");
    missing.text =
        guide.isEmpty()
            ? tr("It is installed together with the program, and shown by your web browser.")
            : tr("Any web browser shows it. It lies at:\n%1").arg(guide);
    tell(missing);
}

}  // namespace orrinvale
