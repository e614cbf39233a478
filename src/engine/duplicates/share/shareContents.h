// shareContents: one file gets the extents of another, piece by piece.
#pragma once

#include <atomic>
#include <cstdint>

#include "platform/fileTypes.h"

namespace orrinvale {

enum class ShareEnd : std::uint8_t { Shared, Different, Stopped };

/// Lets two open files of this size have all extents in common, those of the source. What is a hole
/// in both is passed over. A stop, a difference and an error leave each byte as it was, and a part
/// in common. Any thread.
[[nodiscard]] SysResult<ShareEnd> shareContents(const FileSystem& files, int source, int target,
                                                std::uint64_t size, const std::atomic<bool>& stop);

}  // namespace orrinvale
