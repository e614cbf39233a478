// Small texts of the kernel, of udev and of the desktop's settings, read whole.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/fileTypes.h"

namespace orrinvale {

/// The first `limit` bytes of a file. Neither a FIFO nor a terminal holds the caller up.
[[nodiscard]] SysResult<std::string> readSystemText(const std::string& path, std::size_t limit);

/// The same of an open file, from its start.
[[nodiscard]] SysResult<std::string> readSystemText(int file, std::size_t limit);

/// The names in a folder of the system's, hidden ones left out; none where it can not be listed.
[[nodiscard]] std::vector<std::string> systemNamesIn(const std::string& folder);

}  // namespace orrinvale
