// linkText: where a symbolic link points, as it is written in the link.
#pragma once

#include <string>

#include "platform/fileTypes.h"

namespace orrinvale {

/// The text of a link in an open folder, exact bytes, at most a page (4 KiB). EINVAL for what is no
/// link.
[[nodiscard]] SysResult<std::string> linkText(int folder, const char* name);

}  // namespace orrinvale
