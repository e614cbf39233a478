// The machine's memory in figures, and the same as text.
#pragma once

#include <cstdint>
#include <string>

#include "platform/memory.h"

namespace orrinvale {

/// Bytes, as of the latest reading; 0 before. Free, inactive, active and wired add up to the total.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the interface's name
struct _MEMORY_INFO {
    std::uint64_t freeMem = 0;
    std::uint64_t inactiveMem = 0;
    std::uint64_t activeMem = 0;
    std::uint64_t wiredMem = 0;
    std::uint64_t usedMem = 0;  ///< all but the free
    std::uint64_t totalMem = 0;
    std::uint64_t pageIn = 0;   ///< read from disks since the system was started
    std::uint64_t pageOut = 0;  ///< written to disks since then
    std::uint64_t vMem = 0;     ///< faults since then, each as the page that it asked for
    std::uint64_t swap = 0;     ///< nobody writes it
};

/// Reads the figures into the record; one that can not be read keeps the value that the record
/// held. -1 for a null pointer; else 0, or the errno of the last figure that the system does not
/// know. Any thread, a record a thread.
std::int32_t getMemoryInfo(_MEMORY_INFO* info, const Memory& memory);

/// The figures as people read them, "1.50 GB".
struct cleanMemoryInfo {
    std::string freeMem;
    std::string inactiveMem;
    std::string activeMem;
    std::string wiredMem;
    std::string usedMem;
    std::string totalMem;
};

[[nodiscard]] cleanMemoryInfo cleanMemoryInfoOf(const _MEMORY_INFO& info);

}  // namespace orrinvale
