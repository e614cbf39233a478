// Whether somebody has a file that is about to go open for writing. SafeRemoval and TreeRemoval ask
// where they are told to.
#pragma once

#include <cstdint>

#include "platform/fileTypes.h"

namespace orrinvale {

/// Which regular files are asked about. Asking opens the file, which takes 2 us, half as long as
/// its removal.
enum class AskWriters : std::uint8_t { OfNone, OfLargeFiles, OfAllFiles };

inline constexpr const char* openForWriting = "a program has it open for writing";

/// True where a lease tells so: of files of one's own, on file systems that know leases. It tells
/// of every writer, other users' and those in containers, which look at it by another path.
[[nodiscard]] bool hasWriter(const FileSystem& files, int folder, const char* name,
                             const FileAttributes& entry, AskWriters ask);

}  // namespace orrinvale
