#include "services/volumes/WatchMountUnmount.h"

namespace orrinvale {

WatchMountUnmount::WatchMountUnmount(NotificationCenter& workspace,
                                     const NotificationCenter& standard)
    : m_wsnc(&workspace), m_standard(standard) {
    registerNotifications();
}

void WatchMountUnmount::registerNotifications() {
    m_mounted = notice::NSWorkspaceDidMount.observe(
        *m_wsnc, [this](const Notification& notification) { mountedVolume(notification); });
    m_unmounted = notice::NSWorkspaceDidUnmount.observe(
        *m_wsnc, [this](const Notification& notification) { unmountedVolume(notification); });
}

void WatchMountUnmount::mountedVolume(const Notification& notification) {
    m_standard.post(ZvVolumeMountNotification, this, notification.userInfo);
}

void WatchMountUnmount::unmountedVolume(const Notification& notification) {
    m_standard.post(ZvVolumeUnmountNotification, this, notification.userInfo);
}

}  // namespace orrinvale
