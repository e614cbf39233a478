// What became of a plan, in the three forms in which commands print.
#pragma once

#include <string>
#include <vector>

#include "cli/Output.h"

namespace orrinvale::cli {

struct RemoveAccount {
    struct Stayed {
        std::string path;
        std::string reason;
    };
    std::vector<std::string> removed;   ///< by this run, or moved to the trash
    std::size_t folders = 0;            ///< of these
    std::vector<std::string> byOthers;  ///< were gone when their turn came
    std::vector<Stayed> kept;
    std::uint64_t bytes = 0;  ///< of what went, a file with several names once
    bool isToTrash = false;
    std::string undoId;  ///< of what was moved; empty where nothing was
    bool stopped = false;
};

void printRemoveJson(Output& out, const RemoveAccount& account);
void printRemovePaths(Output& out, const RemoveAccount& account);
void printRemoveListing(Output& out, const RemoveAccount& account);

}  // namespace orrinvale::cli
