// WorkspaceMounts: the desktop's notices of volumes that come and go. WatchMountUnmount.h makes
// them the program's own.
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <memory>

#include "engine/base/NotificationCenter.h"
#include "platform/mounts.h"

namespace orrinvale {

inline constexpr const char* NSWorkspaceDidMountNotification = "NSWorkspaceDidMountNotification";
inline constexpr const char* NSWorkspaceDidUnmountNotification =
    "NSWorkspaceDidUnmountNotification";

/// Keys of the notices' user info, both std::string: the name as people read it, and the path in
/// exact bytes.
inline constexpr const char* NSWorkspaceVolumeLocalizedNameKey =
    "NSWorkspaceVolumeLocalizedNameKey";
inline constexpr const char* NSDevicePath = "NSDevicePath";

/// Posts one notice for each volume, as soon as this thread's event loop runs; several at once are
/// several notices. Where changes can not be seen, that is logged and nothing is ever posted. Main
/// thread only.
class WorkspaceMounts final : public QObject {
    Q_OBJECT
public:
    /// `changes` outlives the object.
    explicit WorkspaceMounts(MountChanges& changes, QObject* parent = nullptr);

    [[nodiscard]] NotificationCenter& notificationCenter() { return m_center; }

private:
    void post();

    MountChanges& m_changes;
    NotificationCenter m_center;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

}  // namespace orrinvale
