// UserFolders: where the program keeps what belongs to one user (XDG Base Directory).
#pragma once

#include <string>

namespace orrinvale {

/// The program's folder below $XDG_CONFIG_HOME (~/.config), without a slash at the end. It need not
/// be there yet. A value that is no absolute path is ignored; without $HOME the account's home
/// counts. Asked of the environment at every call.
[[nodiscard]] std::string userConfigFolder();

/// As userConfigFolder(), below $XDG_DATA_HOME (~/.local/share).
[[nodiscard]] std::string userDataFolder();

/// As userConfigFolder(), below $XDG_STATE_HOME (~/.local/state): what outlives a start and is
/// neither setting nor data, such as journals.
[[nodiscard]] std::string userStateFolder();

/// As userConfigFolder(), below $XDG_CACHE_HOME (~/.cache): what can be made again at any time.
[[nodiscard]] std::string userCacheFolder();

}  // namespace orrinvale
