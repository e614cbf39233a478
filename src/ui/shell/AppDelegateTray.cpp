// The tray of AppDelegate: what goes on while all windows are closed. The classes of ui/tray do it.
#include <QPointer>
#include <utility>

#include "engine/base/notices.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "services/desktop/DesktopNotifications.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/shell/AppDelegate.h"
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
        .quit = [this] { quit(); }};
    m_tray = std::make_unique<Tray>(
        Tray::Parts{.watch = m_parts.systemWatch,
                    .host = m_parts.trayHost,
                    .mainQueue = m_parts.pages.mainQueue,
                    .notifications = &center,
                    .menu = {.defaults = m_parts.pages.defaults,
                             .memory = m_parts.memory,
                             .actions = std::move(actions)},
                    .sawHomeDisk = [this](const ZvVolumeInfo& boot) { noteHomeDisk(boot); }});
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

// Where no tray shows the program nobody could tell that it goes on, nor find its window again.
bool AppDelegate::mayCloseMainWindow() {
    if (!m_tray || m_isLeaving || m_tray->canBeFound()) return true;
    UserDefaults& defaults = *m_parts.pages.defaults;
    if (const SettingObject answer = defaults.objectForKey(keepRunningKey)) {
        if (boolOf(*answer)) return true;
        // Nobody thought of a removal when that was answered.
        if (!isRemoving()) {
            quit();
            return false;
        }
    }
    if (std::exchange(m_isAskingToGoOn, true)) return false;
    Alert question;
    question.title = tr("Nothing on this desktop shows Orrinvale while its window is closed.");
    question.text =
        tr("It can go on without a window: it watches your disks, and starting it again brings "
           "the window back. The answer is remembered.");
    question.buttons = QStringList{tr("Keep Running"), tr("Quit Orrinvale")};
    m_parts.pages.dialogs->alert(window(), question, [this, &defaults](int button) {
        m_isAskingToGoOn = false;
        if (button != 0 && button != 1) return;  // it could not be shown
        defaults.setBool(button == 0, keepRunningKey);
        if (button == 0) m_duplicateMWC->window()->performClose();
        else quit();
    });
    return false;
}

// On the worker's thread: a slow medium may take minutes. The row may be gone by then.
void AppDelegate::ejectRow(MenuItemView& row) {
    row.setEjecting(true);
    m_volumeWorker.ejectVolume(
        row.volRefNumber, row.volRootDir, row.volumeSize.toStdString(),
        [this, view = QPointer(&row)](std::int32_t /*status*/,
                                      const std::vector<EjectFailure>& failures) {
            if (view != nullptr) view->setEjecting(false);
            if (failures.empty())
                notice::refMenuItemWhenDeleteAndAdd.post(*m_parts.pages.notifications);
            else tellOfFailures(tr("The volume could not be ejected."), failures);
        });
}

}  // namespace orrinvale
