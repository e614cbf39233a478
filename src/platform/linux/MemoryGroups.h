// The control groups that limit a process's memory, of either version of cgroups(7).
#pragma once

#include <cstdint>
#include <string>

namespace orrinvale {

/// How many bytes the groups of this process, and all groups above them, leave to be taken; the
/// largest number where nothing limits it. What a group holds as copies of files counts as taken. A
/// limit that can not be read limits nothing.
[[nodiscard]] std::uint64_t roomInMemoryGroups(const std::string& root);

}  // namespace orrinvale
