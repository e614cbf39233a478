// WatchMountUnmount: see WatchMountUnmount.h.
#include "services/volumes/WatchMountUnmount.h"

#include "services/volumes/WorkspaceMounts.h"

namespace orrinvale {

WatchMountUnmount::WatchMountUnmount(NotificationCenter& workspace,
                                     const NotificationCenter& standard)
    : m_wsnc(&workspace), m_standard(standard) {
    registerNotifications();
}

void WatchMountUnmount::registerNotifications() {
    m_mounted = m_wsnc->addObserver(
        NSWorkspaceDidMountNotification,
        [this](const Notification& notification) { mountedVolume(notification); });
    m_unmounted = m_wsnc->addObserver(
        NSWorkspaceDidUnmountNotification,
        [this](const Notification& notification) { unmountedVolume(notification); });
}

void WatchMountUnmount::mountedVolume(const Notification& notification) {
    m_standard.post(ZvVolumeMountNotification, this, notification.userInfo);
}

void WatchMountUnmount::unmountedVolume(const Notification& notification) {
    m_standard.post(ZvVolumeUnmountNotification, this, notification.userInfo);
}

}  // namespace orrinvale
