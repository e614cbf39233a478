// confinement: what a process gives up before it looks into bytes that anybody may have made.
// linux/Confinement.cpp has the kernel's means.
#pragma once

#include <cstdint>

namespace orrinvale {

struct ConfinementLimits {
    std::uint64_t memory = 0;  ///< bytes of address space
    unsigned seconds = 0;      ///< of processor time, after which the kernel ends the process
};

/// Bounds memory and time. No file grows, no core is written, no privilege is gained, no other
/// process looks in, and this one ends with the thread that started it. For good.
/// For the beginning of a main program, before it has threads.
void limitThisProcess(const ConfinementLimits& limits);

/// From here on the process can compute, ask for memory, read and write what it holds open, and
/// end: every other system call is refused with EPERM, in all of its threads, for good. False where
/// this kernel or processor has no such filter. What is loaded later can not be loaded: call it
/// once all libraries are in.
[[nodiscard]] bool allowReadingAndWritingOnly();

}  // namespace orrinvale
