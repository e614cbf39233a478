// countedEntries: folders and files that a plan takes, in words.
#pragma once

#include <fmt/format.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace orrinvale::cli {

/// "1 folder and 2 files"; of one kind alone where there is none of the other. Folders go as
/// wholes, and what is in them is not counted.
[[nodiscard]] inline std::string countedEntries(std::size_t files, std::size_t folders) {
    const auto counted = [](std::size_t count, std::string_view of) {
        return fmt::format("{} {}{}", count, of, count == 1 ? "" : "s");
    };
    if (folders == 0) return counted(files, "file");
    const std::string whole = counted(folders, "folder");
    return files == 0 ? whole : whole + " and " + counted(files, "file");
}

}  // namespace orrinvale::cli
