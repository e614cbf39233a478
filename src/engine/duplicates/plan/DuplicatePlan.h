// DuplicatePlan: which copies are to go and which stay, as a value and as a text. PlanFile.h keeps
// it on the disk, PlanRemoval.h does what it says.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tl/expected.hpp>
#include <vector>

#include "engine/files/EntryIdentity.h"

namespace orrinvale {

/// A copy, as the search saw it.
struct PlanMember {
    std::string path;  ///< absolute, exact bytes
    bool goes = false;
    bool isProtected = false;     ///< it lies in a protected folder, or holds one
    std::uint64_t size = 0;       ///< bytes; of a bundle those of all that is in it
    EntryIdentity identity = {};  ///< regular file, folder (a bundle too) or symbolic link
    std::optional<std::uint64_t> contents =
        std::nullopt;  ///< hash of a file's bytes (engine/duplicates/crc.h), where there is one
    std::optional<std::uint64_t> listing = std::nullopt;  ///< BundleListing::digest of a folder
};

/// Copies of each other.
struct PlanGroup {
    std::vector<PlanMember> members;
};

/// What a person has decided, to be done at another time. All paths are absolute.
struct DuplicatePlan {
    std::uint32_t owner = 0;  ///< the user whom it belongs to
    std::string made;         ///< when, as iso8601() writes it
    std::vector<std::string> roots;
    std::vector<std::string> protectedFolders;
    std::vector<std::string> rules;  ///< as keepRuleOf() reads them
    std::vector<PlanGroup> groups;
};

/// How many copies a plan takes, and their bytes; those of a file with several names once.
struct PlanSums {
    std::size_t files = 0;
    std::size_t bundles = 0;
    std::uint64_t bytes = 0;
    [[nodiscard]] std::size_t entries() const { return files + bundles; }
};
[[nodiscard]] PlanSums sumsOf(const DuplicatePlan& plan);

/// What is done with a plan.
enum class PlanUse : std::uint8_t {
    Removal,
    Undo  ///< of what has gone already: all copies of a group, and links, where a person said so
};

/// What a plan may not say, in words; nothing for a sound one. Paths are plain and absolute, and
/// none stands twice. For a removal something stays of each group; only files that are not empty
/// and folders that were listed go, and nothing that is protected.
[[nodiscard]] std::optional<std::string> faultOf(const DuplicatePlan& plan,
                                                 PlanUse use = PlanUse::Removal);

/// Its JSON, with the version and a digest of all that follows it. Equal plans have equal texts.
[[nodiscard]] std::string writePlan(const DuplicatePlan& plan);

/// Reads it back, however it is spaced. Why not, in words: another version, no plan at all, a
/// digest that is not that of its contents, or faultOf().
[[nodiscard]] tl::expected<DuplicatePlan, std::string> parsePlan(std::string_view text,
                                                                 PlanUse use = PlanUse::Removal);

/// Whether the text begins as those of writePlan() do.
[[nodiscard]] bool beginsAsPlan(std::string_view text);

}  // namespace orrinvale
