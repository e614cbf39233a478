// WatchMountUnmount: turns the desktop's mount notices into the program's own.
#pragma once

#include "engine/base/notices.h"

namespace orrinvale {

inline constexpr const char* ZvVolumeMountNotification = notice::ZvVolumeMount.name;
inline constexpr const char* ZvVolumeUnmountNotification = notice::ZvVolumeUnmount.name;

/// Each notice is posted again at once, on the thread that it comes on, with a `WatchMountUnmount*`
/// as its object and the user info as it came. For as long as the watcher lives.
class WatchMountUnmount final {
public:
    /// Hears the notices of `workspace` (see WorkspaceMounts.h) and posts on `standard`; both
    /// outlive the watcher.
    WatchMountUnmount(NotificationCenter& workspace, const NotificationCenter& standard);
    WatchMountUnmount(const WatchMountUnmount&) = delete;
    WatchMountUnmount& operator=(const WatchMountUnmount&) = delete;

    void mountedVolume(const Notification& notification);
    void unmountedVolume(const Notification& notification);

private:
    void registerNotifications();

    NotificationCenter* const m_wsnc;  // the workspace's, not owned
    const NotificationCenter& m_standard;
    NotificationCenter::Observation m_mounted;
    NotificationCenter::Observation m_unmounted;
};

}  // namespace orrinvale
