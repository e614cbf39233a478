// RecordedEntry: what can be kept of a scan for another day, as the walk leaves it. ScanFile.h
// makes a file of it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/lastingVolume.h"

namespace orrinvale {

/// Bytes. Smaller files are only a part of their folder's size: a million of them then cost
/// nothing. What a difference tells of them is their sum in each folder.
inline constexpr std::uint64_t recordedFilesFrom = 1'000'000;

/// A folder, or a file of at least recordedFilesFrom or one that nobody could look at. Sizes count
/// as those of FSNode.
struct RecordedEntry {
    const char* name = nullptr;      ///< exact bytes
    RecordedEntry* first = nullptr;  ///< in a folder, in no order
    RecordedEntry* next = nullptr;   ///< in the folder above
    std::uint64_t size = 0;
    std::uint64_t onDisk = 0;
    std::uint8_t marks = 0;  ///< FSNode::Mark
    bool isFolder = false;
};

/// What is said of a whole scan.
struct ScanFacts {
    std::string root = {};      ///< the path; exact bytes
    std::int64_t time = 0;      ///< of its start, seconds since 1970
    std::uint64_t entries = 0;  ///< that were counted
    std::uint64_t size = 0;
    std::uint64_t onDisk = 0;
    std::uint8_t marks = 0;
    bool allFileSystems = false;
    std::uint64_t filesFrom = recordedFilesFrom;  ///< smaller files are not kept
    std::uint64_t foldersFrom = 0;                ///< likewise
    std::optional<VolumeName> volume = {};  ///< volumeAtPlace() of the root; nothing: not known
};

/// A whole scan; it owns its entries.
struct ScanRecord {
    ScanFacts facts;
    RecordedEntry* first = nullptr;
    std::shared_ptr<const void> storage;
};

}  // namespace orrinvale
