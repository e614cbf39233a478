// ArrowHotKeys: the program's five hot keys, which the first press switches off.
#pragma once

#include <array>
#include <cstdint>

#include "platform/hotKeys.h"

namespace orrinvale {

/// Main thread only.
class ArrowHotKeys final {
public:
    /// `keys` outlives the object, and calls nothing behind its end.
    explicit ArrowHotKeys(HotKeys& keys) : m_keys(keys) {}

    /// Installs the handler and registers the keys.
    void Runloop();

    /// All five, or none; what is so already is left alone.
    void RegisterHotKeys(bool registers);

    /// Always eventNotHandledErr, so that the event goes on to the system.
    std::int32_t HotKeyEventHandlerProc(const HotKeyEvent& event);

private:
    static constexpr std::size_t count = 5;

    HotKeys& m_keys;
    bool m_isRegistered = false;
    std::array<std::uint32_t, count> m_references{};
};

}  // namespace orrinvale
