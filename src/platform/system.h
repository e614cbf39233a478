// System: figures about the running system, asked for by a short selector. linux/LinuxSystem.h
// implements it.
#pragma once

#include <cstdint>
#include <string_view>

namespace orrinvale {

class System {
public:
    virtual ~System() = default;

    /// The figure that the selector names; 0 for a selector that this system does not know. "sysv"
    /// is the version of the system as hexadecimal digits, major version in the upper byte: 0x1060
    /// is 10.6.0. Any thread.
    [[nodiscard]] virtual std::uint32_t gestalt(std::string_view selector) const = 0;

protected:
    System() = default;
    System(const System&) = default;
    System& operator=(const System&) = default;
};

}  // namespace orrinvale
