// Leftovers: what programs left in a person's home, each with a grade and the reason for it.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/files/EntryIdentity.h"
#include "engine/uninstall/LeftoverRules.h"
#include "platform/FolderVariables.h"
#include "platform/fileTypes.h"

namespace orrinvale {

class Folders;

struct Leftover : LeftoverVerdict {
    std::string path;  ///< exact bytes; absolute
    EntryIdentity identity;
    std::uint64_t bytes = 0;
    std::uint64_t preciousCount = 0;    ///< documents, mail and databases found in it
    std::vector<std::string> precious;  ///< the first ten of them, below the path
    bool isWhole = true;  ///< all of it was looked through; else size and documents are a part
};

struct LeftoverPlaces {
    std::vector<std::string> homes;  ///< of settings, data, caches and states
    std::string flatpakData;
    std::string snapData;
    std::vector<std::string> never;  ///< that the person has for something else

    [[nodiscard]] static LeftoverPlaces of(const FolderVariables& variables,
                                           const Folders& folders);
};

/// What is there, in the order of the places and of names. Folders alone count, and of ~/.var/app
/// and ~/snap what is in them; a link never does, nor a mount, nor what holds a folder that the
/// person has for something else. With `of` only what programs of this package or id left. A stop
/// ends it early with what was looked through whole. Any thread.
[[nodiscard]] std::vector<Leftover> findLeftovers(const FileSystem& files,
                                                  const LeftoverPlaces& places,
                                                  const LeftoverRules& rules, const std::string& of,
                                                  const std::atomic<bool>& stop);

/// The same of these very applications, one answer each, and of none that bears their names. The
/// places are looked through once for all of them.
[[nodiscard]] std::vector<std::vector<Leftover>> findLeftoversOf(
    const FileSystem& files, const LeftoverPlaces& places, const LeftoverRules& rules,
    const std::vector<const ApplicationRecord*>& records, const std::atomic<bool>& stop);

/// Whether a file of this name is worth a second look before it goes: a document, mail, a database.
[[nodiscard]] bool isPreciousName(std::string_view name);

}  // namespace orrinvale
