// entryKeys: the keys of autostart entries that not every desktop knows, and reading of entries.
#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

#include "platform/error.h"

namespace orrinvale {

namespace entryKey {
inline constexpr std::string_view path = "X-Orrinvale-Path";  ///< what it was made for, an address
inline constexpr std::string_view startHidden = "X-Orrinvale-StartHidden";
inline constexpr std::string_view switchedOff = "X-Orrinvale-SwitchedOff";
inline constexpr std::string_view gnomeEnabled = "X-GNOME-Autostart-enabled";
}  // namespace entryKey

struct EntryText {
    std::string text;
    mode_t mode;
};

/// Of a regular file, through links; EBADMSG for anything else, EFBIG where it is too large.
/// Neither a pipe nor a device can hold the caller up.
[[nodiscard]] Result<EntryText> readEntry(const std::string& path);

/// Whether a session looks at a file of this name.
[[nodiscard]] bool isEntryName(std::string_view name);

}  // namespace orrinvale
