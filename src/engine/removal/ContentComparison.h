// ContentComparison: whether two files hold the same bytes, read at this moment.
#pragma once

#include <atomic>
#include <cstdint>

#include "platform/fileTypes.h"

namespace orrinvale {

enum class Comparison : std::uint8_t { Same, Different, Stopped };

/// An open regular file, as it was just seen.
struct ComparedFile {
    int file;
    std::uint64_t device;
    std::uint64_t size;  ///< bytes
};

/// Compares two files to their ends, byte by byte, and leaves the page cache as it was. One that is
/// shorter than it was seen differs, as does one that has bytes though it was seen empty. An errno
/// when one can not be read. Asks `stop` between pieces. Any thread.
[[nodiscard]] SysResult<Comparison> compareContents(const FileSystem& files, const ComparedFile& a,
                                                    const ComparedFile& b,
                                                    const std::atomic<bool>& stop);

}  // namespace orrinvale
