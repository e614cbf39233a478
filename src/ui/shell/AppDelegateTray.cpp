// The tray of AppDelegate: what goes on while all windows are closed. The classes of ui/tray do it.
#include <algorithm>
#include <array>
#include <utility>

#include "engine/base/notices.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "engine/settings/keepRunning.h"
#include "services/desktop/DesktopNotifications.h"
#include "ui/fastclean/CleanSysController.h"
#include "ui/fastclean/FastClean.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/preferences/AppPrefsWindowController.h"
#include "ui/shell/AppDelegate.h"
#include "ui/shell/ApplicationMenu.h"
#include "ui/tray/ArrowHotKeys.h"
#include "ui/tray/SpaceWarnings.h"
#include "ui/tray/Tray.h"
#include "ui/tray/trayNotices.h"

namespace orrinvale {
void AppDelegate::startTray() {
    if (m_parts.systemWatch == nullptr) return;
    NotificationCenter& center = *m_parts.pages.notifications;
    m_observations.push_back(notice::setStatusBarHidden.observe(
        center, [this](bool isHidden) { m_tray->setStatusBarHidden(isHidden); }));
    m_observations.push_back(notice::cleanMemoryClickAction.observe(
        center, [this] { m_tray->menu().cleanMemoryClickAction(); }));
    StatusMenu::Actions actions{
        .eject = [this](MenuItemView& row) { ejectRow(row); },
        .openVolume =
            [&center](const std::string& root) {
                notice::openFinderWhenClickItems.post(center, root);
            },
        .rejestAllDisk = [this] { rejestAllDisk(); },
        .openMainWindow = [this] { openMainWindow(); },
        .showMainWindowWhenClickMenuItem = [this] { showMainWindowWhenClickMenuItem(); },
        .quit = [this] { quit(); },
        .isEjecting =
            [this](const VolumePlace& place) { return m_parts.ejections->isEjecting(place); }};
    m_tray = std::make_unique<Tray>(Tray::Parts{.watch = m_parts.systemWatch,
                                                .host = m_parts.trayHost,
                                                .mainQueue = m_parts.pages.mainQueue,
                                                .notifications = &center,
                                                .menu = {.defaults = m_parts.pages.defaults,
                                                         .memory = m_parts.memory,
                                                         .actions = std::move(actions)},
                                                .sawHomeDisk = [this](const ZvVolumeInfo& boot) {
                                                    noteHomeDisk(boot);
                                                    setStatusIamge(boot);
                                                }});
    connect(m_parts.ejections, &Ejections::changed, &m_tray->menu(), &StatusMenu::showEjecting);
    connect(m_parts.ejections, &Ejections::changed, this, &AppDelegate::refEjectAll);
    connect(m_tray.get(), &Tray::menuForWindowChanged, this, [this] {
        m_menu->setVolumes(m_tray->menuForWindow());
        refEjectAll();
    });
    if (m_parts.hotKeys != nullptr) {
        m_arrowKeys = std::make_unique<ArrowHotKeys>(*m_parts.hotKeys);
        m_arrowKeys->Runloop();
    }
    if (m_parts.desktopNotifications == nullptr) return;
    DesktopNotifications& notes = *m_parts.desktopNotifications;
    m_spaceWarnings = std::make_unique<SpaceWarnings>(SpaceWarnings::Parts{
        m_parts.systemWatch, m_parts.pages.defaults,
        [&notes](const DesktopNote& note, std::function<void()> failed) {
            return notes.show(note, std::move(failed));
        },
        // The window, and nothing that removes: what goes is for the person to choose there.
        [this](const QString& token) {
            perform({StartRequest::Kind::Activate, {}, token.toStdString()});
        }});
    connect(&notes, &DesktopNotifications::actionInvoked, m_spaceWarnings.get(),
            &SpaceWarnings::takeAction);
}

bool AppDelegate::mayCloseMainWindow() { return mayGoOnUnseen(window()); }

bool AppDelegate::hasWindowBeside(const QWidget* closing) const {
    const CleanSysController* const clean = m_fastClean ? m_fastClean->clrSysController() : nullptr;
    const std::array<const QWidget*, 3> windows{
        window(), AppPrefsWindowController::sharedPrefsWindowController().window(),
        clean != nullptr ? clean->window() : nullptr};
    return std::ranges::any_of(windows, [closing](const QWidget* each) {
        return each != nullptr && each != closing && each->isVisible();
    });
}

// Where neither a tray nor another window shows the program nobody could tell that it goes on, nor
// find its window again. One that closes other windows than the main one is asked over that.
bool AppDelegate::mayGoOnUnseen(const QWidget* closing) {
    if (!m_tray || m_isLeaving || m_tray->canBeFound() || hasWindowBeside(closing)) return true;
    if (const auto answer = keepRunningAnswer(*m_parts.pages.defaults)) {
        if (*answer) return true;
        // Nobody thought of a removal when that was answered.
        if (!isRemoving()) {
            quit();
            return false;
        }
    }
    askToGoOn();
    return false;
}

void AppDelegate::askToGoOn() {
    if (std::exchange(m_isAskingToGoOn, true)) return;
    handleReopenAppEvent();
    Alert question;
    question.title = tr("Nothing on this desktop shows Orrinvale while its window is closed.");
    question.text =
        tr("It can go on without a window: it watches your disks, and starting it again brings "
           "the window back. The answer is remembered.");
    question.buttons = QStringList{tr("Keep Running"), tr("Quit Orrinvale")};
    m_parts.pages.dialogs->alert(window(), question, [this](int button) {
        m_isAskingToGoOn = false;
        if (button != 0 && button != 1) return;  // it could not be shown
        m_parts.pages.defaults->setBool(button == 0, keepRunningKey);
        if (button == 0) m_duplicateMWC->window()->performClose();
        else quit();
    });
}

void AppDelegate::ejectRow(const MenuItemView& row) {
    m_parts.ejections->eject(
        {row.volRefNumber, row.volRootDir}, row.volumeSize.toStdString(), this,
        [this](bool isGone) {
            if (isGone) notice::refMenuItemWhenDeleteAndAdd.post(*m_parts.pages.notifications);
        });
}

}  // namespace orrinvale
