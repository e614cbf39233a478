// The places that nothing of the large file page removes or moves.
#pragma once

#include <string>
#include <vector>

#include "engine/files/ProtectedPlaces.h"
#include "platform/files.h"

namespace orrinvale {

/// What may not go of the machine, and what the list of system files names, together with every
/// folder above one of these.
[[nodiscard]] ProtectedPlaces protectedFromLargeFiles(const FileSystem& files,
                                                      const std::vector<std::string>& ownFiles);

}  // namespace orrinvale
