// The tray of a Linux desktop: a StatusNotifier host on the session bus (the interface is KDE's
// org.kde.StatusNotifierWatcher, which all desktops took over), else the owner of the selection
// _NET_SYSTEM_TRAY_S0 on X11.
#pragma once

#include <memory>

#include "platform/tray.h"

namespace orrinvale {

/// One thread waits for both and sleeps while nothing changes. It asks the bus and the X server
/// over connections of its own, so that one that hangs holds up this thread alone, which nobody
/// waits for.
class LinuxTrayHost final : public TrayHost {
public:
    struct Where {
        bool hasBus = true;   ///< there is a session bus that answers
        bool hasX11 = false;  ///< the windows of this process are on X11
    };

    explicit LinuxTrayHost(Where where);
    ~LinuxTrayHost() override;
    LinuxTrayHost(const LinuxTrayHost&) = delete;
    LinuxTrayHost& operator=(const LinuxTrayHost&) = delete;

    void watch(Told told) override;

private:
    struct Shared;
    const Where m_where;
    const std::shared_ptr<Shared> m_shared;
};

}  // namespace orrinvale
