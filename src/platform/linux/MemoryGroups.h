// The control groups that limit a process's memory, of either version of cgroups(7).
#pragma once

#include <cstdint>
#include <string>

namespace orrinvale {

/// How many bytes the group of this process, and all groups above it, leave to be taken; the
/// largest number where nothing limits it. What a group holds as copies of files counts as taken. 0
/// where the process belongs to a group that no mount shows, or where a limit or what is taken of
/// it can not be read: nobody knows then what is left.
[[nodiscard]] std::uint64_t roomInMemoryGroups(const std::string& root);

}  // namespace orrinvale
