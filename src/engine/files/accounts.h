// Accounts: which user numbers are people's.
#pragma once

#include <cstdint>

namespace orrinvale {

/// False for root and the services of the system: 60514 to 65535 are given out to services and to
/// nobody, and above them begin the ranges of directories (systemd's UIDS-GIDS).
[[nodiscard]] constexpr bool isPerson(std::uint32_t user) {
    return user >= 1000 && (user < 60514 || user > 65535);
}

}  // namespace orrinvale
