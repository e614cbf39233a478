// ContentComparison: whether two files hold the same bytes, read at this moment.
#pragma once

#include <atomic>
#include <cstdint>

#include "platform/fileTypes.h"

namespace orrinvale {

enum class Comparison : std::uint8_t { Same, Different, Stopped };

/// Compares two open regular files to their ends, byte by byte, and leaves the page cache as it
/// was. An errno when one can not be read. Asks `stop` between pieces. Any thread.
[[nodiscard]] SysResult<Comparison> compareContents(const FileSystem& files, int a, int b,
                                                    const std::atomic<bool>& stop);

}  // namespace orrinvale
