// levelNow: the level of free space below which a person wants to be warned.
#pragma once

#include <string>

namespace orrinvale {

/// As rows and cards are made with it (errorValueOf): whole per cent, "10". All pages compare with
/// it, so that none calls a disk full that another calls roomy.
[[nodiscard]] std::string levelNow();

}  // namespace orrinvale
