// programMemory: which programs hold the machine's memory. linux/LinuxProgramMemory.cpp implements
// it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace orrinvale {

/// All processes of one program together.
struct ProgramMemory {
    std::string name;  ///< of the program's file alone, never its arguments; any bytes
    std::uint64_t bytes = 0;
    bool isUpTo = false;  ///< some of it may be shared, and counted more than once
    std::size_t processes = 0;
};

/// The programs that hold the most, the largest first, `most` of them; the kernel's own threads are
/// none. Processes are one program by their file. Of those whose file this user may not see, which
/// are other people's, the name that the system has for them counts, and all of their memory as "up
/// to". For a thread that does not draw: it reads two small files of each process. None where
/// `procFolder` (proc(5)) can not be read.
[[nodiscard]] std::vector<ProgramMemory> largestPrograms(std::size_t most,
                                                         const std::string& procFolder = "/proc");

}  // namespace orrinvale
