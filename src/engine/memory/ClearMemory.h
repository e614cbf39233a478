// ClearMemory: the program's own command-line run that takes memory and gives it back, so that the
// system lets go of caches.
#pragma once

#include <cstdint>

namespace orrinvale {

class ClearMemory final {
public:
    /// Looks in a process's arguments for "fr" followed by a size in bytes, and touches that much
    /// memory. The size is cut to its low 32 bits and rounded down to a multiple of 1024, so it
    /// lies below 4 GiB; a text without digits is 0. Returns -1 when the arguments hold no such
    /// pair (this is no command-line run), 0 when the memory was touched and freed, 1 when there
    /// was none to be had. The vector has `count` elements; the first, the program's name, is not
    /// looked at.
    [[nodiscard]] static std::int32_t freeMemory(int count, const char* const* param);

    ClearMemory() = delete;
};

}  // namespace orrinvale
