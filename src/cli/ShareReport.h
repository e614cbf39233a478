// What became of copies that were to share their space, in the three forms in which commands print.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "cli/Output.h"
#include "platform/error.h"

namespace orrinvale::cli {

struct ShareAccount {
    struct Shared {
        std::string path;
        std::string with;
        bool isLink = false;
    };
    struct Kept {
        std::string path;
        std::string reason;
    };
    std::vector<Shared> shared;
    std::vector<std::string> already;   ///< had it in common before, or take none
    std::vector<std::string> byOthers;  ///< were gone when their turn came
    std::vector<Kept> kept;
    std::vector<Error> skipped;          ///< by the search
    std::uint64_t promised = 0;          ///< bytes that come free at the most
    std::optional<std::int64_t> gained;  ///< by which the free space grew, where that can be told
    bool isDryRun = false;
    bool stopped = false;
};

void printShareJson(Output& out, const ShareAccount& account);
void printSharePaths(Output& out, const ShareAccount& account);
void printShareListing(Output& out, const ShareAccount& account);

}  // namespace orrinvale::cli
