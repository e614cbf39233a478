// WorkspaceMounts: the desktop's notices of volumes that come and go. WatchMountUnmount.h makes
// them the program's own.
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <memory>

#include "engine/base/notices.h"
#include "platform/mounts.h"

namespace orrinvale {

/// Posts notice::NSWorkspaceDidMount or its counterpart for each volume, as soon as this thread's
/// event loop runs; several at once are several notices. Where changes can not be seen, that is
/// logged and nothing is ever posted. Main thread only.
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
