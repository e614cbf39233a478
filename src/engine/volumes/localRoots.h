// localRoots: where the disks that are fixed in this machine are mounted, for whoever looks for the
// trash on them. Apart from VolumesInfo.h, whose status numbers are those of the catalog as well.
#pragma once

#include <string>
#include <vector>

namespace orrinvale {

class Volumes;

/// Walks the volumes, and waits for the platform as VolumesInfo does.
[[nodiscard]] std::vector<std::string> localRoots(Volumes& volumes);

}  // namespace orrinvale
