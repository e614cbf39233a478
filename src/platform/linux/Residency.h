// Whether a stretch of a file is in memory, asked without touching it.
#pragma once

#include <cstdint>

namespace orrinvale {

/// True when every page of the stretch is in the page cache. False also where the kernel has no
/// cachestat(2) (before Linux 6.5) or does not tell this user. Asking by RWF_NOWAIT would not do: a
/// miss starts to read ahead, and what comes in stays.
[[nodiscard]] bool isResident(int file, std::uint64_t offset, std::uint64_t length);

}  // namespace orrinvale
