// The person's own limit for the disk usage page.
#pragma once

#include <cstdint>

namespace orrinvale {

class UserDefaults;

/// ZvDiskUsageLimit in units of ZvDiskUsageUnit, in bytes. With TB it is beyond the size of any
/// file, see sizeUnitFactor(). Any thread.
[[nodiscard]] std::uint64_t getLimitSize(const UserDefaults& defaults);

}  // namespace orrinvale
