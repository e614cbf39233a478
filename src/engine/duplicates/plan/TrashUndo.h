// TrashUndo: brings back what a plan moved to the trash, by the trash's own records.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "engine/duplicates/plan/DuplicatePlan.h"
#include "platform/FolderVariables.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// A folder as it was before something left it.
struct UndoFolder {
    std::string path;
    std::string place;  ///< the path without links, which the trash's records have
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
};

/// The folders that the plan takes something from, as they are now, each once.
[[nodiscard]] std::vector<UndoFolder> foldersOf(const FileSystem& files, const DuplicatePlan& plan);

struct UndoOutcome {
    struct Left {
        std::string path;
        std::string place;  ///< in the trash; empty where it is not there
        std::string reason;
    };
    std::vector<std::string> restored;
    std::size_t restoredFolders = 0;  ///< of these
    std::size_t inPlace = 0;          ///< never left, or were back already
    std::vector<Left> left;
    bool stopped = false;
};

/// Each entry that the plan let go and that is in a trash gets its own name back in the folder that
/// it was in, never over anything. Folder and entry are known by their numbers, whatever number
/// their volume has by now, and the entry by its record in the trash besides; where numbers do not
/// last the record, size and time tell. A rename: times, modes and links are what they were. On the
/// calling thread; `stop` is looked at before each entry.
[[nodiscard]] UndoOutcome undoPlan(const FileSystem& files, const FolderVariables& variables,
                                   const DuplicatePlan& plan,
                                   const std::vector<UndoFolder>& folders,
                                   const std::atomic<bool>& stop);

/// How many of them undoPlan() would find in a trash now; those so far where it is stopped.
[[nodiscard]] std::size_t countInTrash(const FileSystem& files, const FolderVariables& variables,
                                       const DuplicatePlan& plan,
                                       const std::vector<UndoFolder>& folders,
                                       const std::atomic<bool>& stop);

}  // namespace orrinvale
