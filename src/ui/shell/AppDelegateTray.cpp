// The tray of AppDelegate: what goes on while all windows are closed. The classes of ui/tray do it.
#include <QTimer>

#include "services/desktop/DesktopNotifications.h"
#include "ui/shell/AppDelegate.h"
#include "ui/tray/SpaceWarnings.h"

namespace orrinvale {

void AppDelegate::startTray() {
    if (m_parts.systemWatch == nullptr || m_parts.desktopNotifications == nullptr) return;
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

}  // namespace orrinvale
