// entriesOutside: how much of a plan a person who chose its folders may not expect.
#pragma once

#include <cstddef>

#include "engine/duplicates/plan/DuplicatePlan.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// How many of the copies that go lie, with all links followed, in none of the folders that were
/// searched. Asks the disk for each folder once.
[[nodiscard]] std::size_t entriesOutside(const FileSystem& files, const DuplicatePlan& plan);

}  // namespace orrinvale
