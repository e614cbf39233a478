#include "engine/volumes/localRoots.h"

#include "engine/volumes/VolumesInfo.h"

namespace orrinvale {

std::vector<std::string> localRoots(Volumes& volumes) {
    std::vector<std::string> roots;
    VolumesInfo info(volumes);
    for (const auto& volume : info.volsArray())
        if (volume->volType == LocalVolume) roots.push_back(volume->volRootDir);
    return roots;
}

}  // namespace orrinvale
