// volumeNotices: what those who look at the volumes tell those who show them.
#pragma once

#include <string>
#include <vector>

#include "engine/base/notices.h"

namespace orrinvale::notice {

/// The volumes were looked at anew: what lists them shows the new figures. Main thread.
inline constexpr Notice<> updateNewDiskSizeView{"updateNewDiskSizeView"};

/// The boot volume's total and free space as texts, in this order. Main thread.
inline constexpr Notice<std::vector<std::string>> FreeTotleArr{"FreeTotleArr"};

}  // namespace orrinvale::notice
