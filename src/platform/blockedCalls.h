// blockedCalls: which files the threads of this process wait for. linux/BlockedCalls.cpp asks the
// kernel.
#pragma once

#include <string>
#include <vector>

namespace orrinvale {

/// A thread of this process that waits inside of a system call on a file.
struct BlockedCall {
    std::string path;  ///< what the call is about, exact bytes
    std::string
        state;  ///< the same text at another time means that the thread has not run in between

    friend bool operator==(const BlockedCall&, const BlockedCall&) = default;
};

/// The threads that wait at this moment. No file system is asked, so that none can hold the caller
/// up. None where the kernel does not tell. Any thread.
[[nodiscard]] std::vector<BlockedCall> blockedCalls();

}  // namespace orrinvale
