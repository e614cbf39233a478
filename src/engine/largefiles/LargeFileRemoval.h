// LargeFileRemoval: how a removal in the large file page ended, for the person who asked for it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orrinvale {

struct LargeFileRemoval {
    struct Failure {
        std::string path;    ///< exact bytes
        std::string reason;  ///< for people
    };
    std::uint64_t chosen = 0;   ///< nodes that were to go
    std::uint64_t gone = 0;     ///< nodes that went, also by somebody else
    std::uint64_t removed = 0;  ///< nodes that went by us
    std::uint64_t bytes =
        0;  ///< lengths of all files that went by us; one with several names counts once
    std::uint64_t failed = 0;         ///< nodes that are still there, wholly or in part
    std::uint64_t failedEntries = 0;  ///< all that could not go of these nodes
    std::vector<Failure> failures;    ///< the first ones, entry by entry
    bool stopped = false;             ///< the person ended it
};

}  // namespace orrinvale
