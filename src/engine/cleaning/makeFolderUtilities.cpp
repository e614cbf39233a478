// See makeFolderUtilities.h.
#include "engine/cleaning/makeFolderUtilities.h"

#include "engine/cleaning/FolderUtilities.h"
#include "engine/volumes/localRoots.h"

namespace orrinvale {

std::shared_ptr<const FolderUtilities> makeFolderUtilities(const FileSystem& files,
                                                           const Folders& folders,
                                                           Volumes& volumes) {
    return std::make_shared<const FolderUtilities>(files, folders,
                                                   [&volumes] { return localRoots(volumes); });
}

}  // namespace orrinvale
