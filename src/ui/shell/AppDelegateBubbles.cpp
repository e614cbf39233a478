// The notes of AppDelegate about space and cleaning, and where bubbles stand. See AppDelegate.h;
// ui/bubbles does the work.
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "ui/bubbles/delegateNotes.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/shell/AppDelegate.h"
#include "ui/tray/Tray.h"

namespace orrinvale {

void AppDelegate::noteHomeDisk(const ZvVolumeInfo& boot) {
    m_homeDisk = HomeDisk::of(boot, m_parts.pages.defaults->floatForKey(ZvSpaceAlarmKey));
}

bool AppDelegate::getWarningValue() const { return m_homeDisk.getWarningValue(); }

QIcon AppDelegate::getStatusImage() {
    return statusImage(getBootVolume().get(), m_parts.pages.defaults->floatForKey(ZvSpaceAlarmKey));
}

// By the record at hand: getStatusImage() is a walk of its own.
void AppDelegate::setStatusIamge(const ZvVolumeInfo& boot) {
    if (m_tray)
        m_tray->setImage(statusImage(&boot, m_parts.pages.defaults->floatForKey(ZvSpaceAlarmKey)));
}

QPointF AppDelegate::getStatusFrame() const {
    return statusFrame(m_parts.workspace != nullptr ? m_parts.workspace->mainScreenFrame()
                                                    : std::nullopt);
}

void AppDelegate::errorValuebiggrtFreeBubble(const std::string& name) {
    bubbleViewWith(warningField(QString::fromStdString(name)));
}

void AppDelegate::cleaningFileFinishNotification(const Notification& notification) {
    CleanedFields fields = cleanedFields(notification);
    bubbleViewWith(std::move(fields.count), std::move(fields.size));
}

// Put together and let go: the delegate's notes are never shown. A volume that comes or goes is
// seen where volumes are.
void AppDelegate::bubbleViewWith(std::unique_ptr<QLabel> view, std::unique_ptr<QLabel> withBView) {
    static_cast<void>(noteOf(std::move(view), std::move(withBView)));
}

BubbleGround AppDelegate::bubbleGround() const {
    BubbleGround ground;
    ground.notifications = m_parts.desktopNotifications;
    ground.openWindow = [this]() -> QWidget* {
        QWidget* const open = window();
        return open != nullptr && open->isVisible() && !open->isMinimized() ? open : nullptr;
    };
    return ground;
}

}  // namespace orrinvale
