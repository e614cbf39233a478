// Newer versions of the program: the window that a person asks for, and the look from time to time.
#include <fmt/format.h>

#include <QByteArray>

#include "engine/base/Log.h"
#include "engine/settings/settingNotices.h"
#include "services/desktop/DesktopNotifications.h"
#include "services/updates/UpdateWatch.h"
#include "ui/kit/controls/pathText.h"
#include "ui/shell/AppDelegate.h"
#include "ui/shell/ApplicationMenu.h"
#include "ui/updates/QnCheckUpdateWindowController.h"

namespace orrinvale {

void AppDelegate::startUpdates() {
    if (m_parts.updates == nullptr) return;
    m_updateWatch = std::make_unique<UpdateWatch>(*m_parts.updates, *m_parts.pages.defaults);
    connect(m_updateWatch.get(), &UpdateWatch::found, this, &AppDelegate::tellOfVersion);
    connect(m_updateWatch.get(), &UpdateWatch::roadFound, this,
            [this] { notice::updateRoadFound.post(*m_parts.pages.notifications); });
    if (m_parts.desktopNotifications == nullptr) return;
    connect(
        m_parts.desktopNotifications, &DesktopNotifications::actionInvoked, this,
        [this](DesktopNotifications::Number number, const QString& /*key*/, const QString& token) {
            if (number != m_versionNote) return;  // the note of another
            m_versionNote = 0;
            if (!token.isEmpty()) qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
            CheckupdateMenuItemAction();
        });
}

std::optional<UpdateRoad> AppDelegate::updateRoad() const {
    return m_updateWatch ? m_updateWatch->road() : std::nullopt;
}

void AppDelegate::CheckupdateMenuItemAction() {
    if (m_parts.updates == nullptr || m_isLeaving) return;
    if (!m_checkUpdateWC) {
        m_checkUpdateWC = std::make_unique<QnCheckUpdateWindowController>(
            QnCheckUpdateWindowController::Parts{.updates = *m_parts.updates,
                                                 .openAddress = m_parts.pages.openAddress,
                                                 .terminate = [this] { quit(); }});
        // It is still at work when it says so.
        connect(m_checkUpdateWC.get(), &QnCheckUpdateWindowController::closed, this,
                [this] { m_checkUpdateWC.release()->deleteLater(); });
    }
    m_checkUpdateWC->showWindow();
}

// The menu keeps what a note tells in passing, or nobody shows.
void AppDelegate::tellOfVersion(const QString& version) {
    const QString name = onOneLine(version);
    m_menu->setNewVersion(name);
    if (m_parts.desktopNotifications == nullptr) return;
    DesktopNote note;
    note.title = tr("Orrinvale %1 has been released.").arg(name);
    note.body = tr("See what is new in it.");
    note.actions = {{QStringLiteral("default"), {}}, {QStringLiteral("show"), tr("Show")}};
    m_versionNote = m_parts.desktopNotifications->show(
        note, [line = fmt::format("Orrinvale {} has been released, and nobody shows it.",
                                  name.toStdString())] { Log::line(line); });
}

}  // namespace orrinvale
