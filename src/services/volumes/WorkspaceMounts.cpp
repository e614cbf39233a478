#include "services/volumes/WorkspaceMounts.h"

#include "engine/base/Log.h"

namespace orrinvale {

WorkspaceMounts::WorkspaceMounts(MountChanges& changes, QObject* parent)
    : QObject(parent), m_changes(changes) {
    if (changes.descriptor() < 0) {
        Log::line("The table of mounts can not be watched.");
        return;
    }
    m_notifier =
        std::make_unique<QSocketNotifier>(changes.descriptor(), QSocketNotifier::Exception);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &WorkspaceMounts::post);
}

void WorkspaceMounts::post() {
    for (const MountChange& each : m_changes.look())
        (each.came ? notice::NSWorkspaceDidMount : notice::NSWorkspaceDidUnmount)
            .post(m_center, {each.name, each.path});
}

}  // namespace orrinvale
