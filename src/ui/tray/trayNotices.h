// trayNotices: what the tray is told by pages.
#pragma once

#include "engine/base/notices.h"

namespace orrinvale::notice {

/// True takes the status item out of the tray, false brings it back.
inline constexpr Notice<bool> setStatusBarHidden{"setStatusBarHidden"};
/// Memory is to be freed.
inline constexpr Notice<> cleanMemoryClickAction{"cleanMemoryClickAction"};

}  // namespace orrinvale::notice
