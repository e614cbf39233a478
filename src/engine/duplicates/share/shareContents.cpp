// platform/sharing.h shares one piece.
#include "engine/duplicates/share/shareContents.h"

#include <algorithm>
#include <cerrno>

#include "platform/files.h"
#include "platform/sharing.h"

namespace orrinvale {
namespace {

// As much as a disk reads of two files between two looks at the stop; larger pieces were no faster.
constexpr std::uint64_t mostSharedAtOnce = std::uint64_t{16} << 20U;
// Of which the blocks of all file systems are parts.
constexpr std::uint64_t sharingGrain = std::uint64_t{64} << 10U;

// Where either has data, from the offset on; `size` where both have only holes.
SysResult<std::uint64_t> nextDataOfBoth(const FileSystem& files, int source, int target,
                                        std::uint64_t offset, std::uint64_t size) {
    std::uint64_t begin = size;
    for (const int file : {source, target}) {
        const auto data = files.nextData(file, offset);
        if (!data && data.error() != ENXIO) return tl::unexpected(data.error());
        if (data) begin = std::min(begin, data->begin);
    }
    return begin == size ? size : std::max(offset, begin / sharingGrain * sharingGrain);
}

}  // namespace

SysResult<ShareEnd> shareContents(const FileSystem& files, int source, int target,
                                  std::uint64_t size, const std::atomic<bool>& stop) {
    for (std::uint64_t offset = 0;;) {
        const auto begin = nextDataOfBoth(files, source, target, offset, size);
        if (!begin) return tl::unexpected(begin.error());
        offset = *begin;
        if (offset >= size) return ShareEnd::Shared;
        if (stop) return ShareEnd::Stopped;
        const auto done =
            shareStretch(source, target, offset, std::min(mostSharedAtOnce, size - offset));
        if (!done) return tl::unexpected(done.error());
        if (!done->isSame) return ShareEnd::Different;
        if (done->bytes == 0) return tl::unexpected(EIO);
        offset += done->bytes;
    }
}

}  // namespace orrinvale
