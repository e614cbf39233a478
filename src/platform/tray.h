// TrayHost: whether anything on the desktop shows the pictures that programs put into its tray.
// linux/LinuxTrayHost.h implements it.
#pragma once

#include <cstdint>
#include <functional>

namespace orrinvale {

/// What takes a picture.
enum class TrayKind : std::uint8_t {
    None,
    StatusNotifier,  ///< a host on the session bus, which draws picture and menu itself
    XEmbed           ///< a tray of X11, in which the program draws
};

class TrayHost {
public:
    /// Called on a thread of the watch's own.
    using Told = std::function<void(TrayKind kind)>;

    virtual ~TrayHost() = default;

    /// Begins to watch, once, and returns at once. Tells what there is, None included, and then
    /// each change; never two of one kind in a row but where a host was replaced by another of its
    /// kind. Nothing is told when the object has ended.
    virtual void watch(Told told) = 0;

protected:
    TrayHost() = default;
    TrayHost(const TrayHost&) = default;
    TrayHost& operator=(const TrayHost&) = default;
};

}  // namespace orrinvale
