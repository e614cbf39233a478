// writeAll: a whole text to an open file, however many calls that takes.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <string_view>

namespace orrinvale {

/// 0, or the errno of the write that failed; a part may stand there then.
[[nodiscard]] inline int writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(file, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return 0;
}

}  // namespace orrinvale
