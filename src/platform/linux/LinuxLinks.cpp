// The text of a symbolic link, of whatever length (platform/linkText.h).
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>

#include "platform/linkText.h"

namespace orrinvale {

SysResult<std::string> linkText(int folder, const char* name) {
    std::array<char, PATH_MAX> text;
    const ssize_t length = ::readlinkat(folder, name, text.data(), text.size());
    if (length < 0) return tl::unexpected(errno);
    return std::string(text.data(), static_cast<std::size_t>(length));
}

}  // namespace orrinvale
