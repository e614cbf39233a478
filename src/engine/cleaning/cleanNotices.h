// cleanNotices.h: what the pieces of the cleaning page tell each other. ScanViewController.h has
// the notices of a list.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/base/notices.h"
#include "engine/settings/settingNotices.h"

namespace orrinvale::notice {

/// The setting of a category was changed by its box: the list follows.
inline constexpr Notice<ChosenRow> updateSelectNumber{"updateSelectNumber"};
/// The left table says this with all its states instead, which name no row.
inline constexpr Notice<std::vector<std::string>> updateSelectNumberOfAll{"updateSelectNumber"};
/// A summary row has got another size.
inline constexpr Notice<ChosenRow> refNewTableViewSizeLabel{"refNewTableViewSizeLabel"};
/// The scan button is to be pressed.
inline constexpr Notice<> scanItemGetScanBtn{"scanItemGetScanBtn"};

}  // namespace orrinvale::notice
