// makeFolderUtilities: the folders of cleaning over the volumes of this machine. Apart from
// FolderUtilities.h, whose status numbers are those of the volumes as well.
#pragma once

#include <memory>

#include "platform/fileTypes.h"

namespace orrinvale {

class FolderUtilities;
class Folders;
class Volumes;

/// The trash of each fixed disk is found by a walk of the volumes, which waits for the platform.
/// What is handed over outlives it.
[[nodiscard]] std::shared_ptr<const FolderUtilities> makeFolderUtilities(const FileSystem& files,
                                                                         const Folders& folders,
                                                                         Volumes& volumes);

}  // namespace orrinvale
