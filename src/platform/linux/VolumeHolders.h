// Who holds a volume: the programs with a file, a folder or a mapping open on it, or with the
// device itself.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "platform/linux/MountTable.h"
#include "platform/volumes.h"

namespace orrinvale {

/// What is asked for.
struct HeldVolume {
    std::vector<MountEntry> mounts;    ///< in this process's name space
    std::vector<std::string> devices;  ///< device nodes ("/dev/sdb1")
};

/// One entry a program, in the order of their numbers; what this process may not look into is left
/// out. Nothing on the volume is touched, only the kernel's account of the programs is read. Even
/// that can wait on a dead volume, where a program is stuck in its memory: so it is read on a
/// thread that nobody waits for longer than `patience`, and what was found until then is the
/// answer. Nothing else may be mounted on the volume: what is held there would count as held here.
[[nodiscard]] std::vector<VolumeHolder> findVolumeHolders(HeldVolume volume,
                                                          std::chrono::milliseconds patience);

}  // namespace orrinvale
