// FolderTies: what ties a row of the results to folders that are equal as wholes.
// folders/FolderRows.h makes them.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

namespace orrinvale {

class SimpleNodeData;

/// What a search saw of a folder that has an equal.
struct FolderFacts {
    std::uint64_t entries = 0;  ///< at any depth, folders too
    std::uint64_t files = 0;    ///< regular files among these, empty ones too
    std::uint64_t bytes = 0;    ///< of these
    std::uint64_t gain = 0;     ///< bytes that go with this folder when an equal one stays
    std::int64_t searched = 0;  ///< when the search began, nanoseconds since 1970
};

struct FolderTies {
    std::optional<FolderFacts> facts;        ///< of a folder, and of a group of folders
    std::shared_ptr<SimpleNodeData> group;   ///< of a folder that of its group
    std::shared_ptr<SimpleNodeData> within;  ///< the innermost such folder that the leaf lies in
};

/// What the ticks of folders mean for a leaf that lies in one.
enum class FolderHold : std::uint8_t {
    Free,   ///< nothing
    Goes,   ///< a folder that it lies in is ticked: it goes with that, and is no copy that stays
    Stays,  ///< an equal of its folder is ticked: what is taken out of it here would be missed
            ///< there
};
[[nodiscard]] FolderHold holdOf(const SimpleNodeData& leaf);

/// The ticked folder that the leaf goes with; null where there is none.
[[nodiscard]] const SimpleNodeData* goingFolderOf(const SimpleNodeData& leaf);

}  // namespace orrinvale
