// Paths as texts: their parts, and how two of them lie to each other. Nothing here asks the disk.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace orrinvale {

/// `folder` and `name` with one slash between them.
[[nodiscard]] std::string joinPath(std::string_view folder, std::string_view name);

/// The folder that a path without a slash at its end names an entry of: "." where the path has no
/// slash, "/" for the root.
[[nodiscard]] std::string folderOf(std::string_view path);

/// The last component of a path; the path itself where it has no slash, "/" for the root.
[[nodiscard]] std::string_view lastPathComponent(std::string_view path);

/// What stands behind the last dot of the last component; empty when there is none, or nothing
/// stands before the dot.
[[nodiscard]] std::string_view pathExtension(std::string_view path);

/// Takes the first component off `rest`, with the slashes before it; empty when there is none left.
[[nodiscard]] std::string_view nextComponent(std::string_view& rest);

/// The last component and what stands before its slash, both of a path without a slash at its end:
/// the folder is "/" directly below the root, and empty where the path has no slash.
struct SplitPath {
    std::string_view folder;
    std::string_view name;
};
[[nodiscard]] SplitPath splitPath(std::string_view path);

/// Where the last component begins, slashes at the end left aside; 0 where there is one component
/// at most.
[[nodiscard]] std::size_t startOfLastComponent(std::string_view path);

/// Without the slashes at its end; the root stays "/".
[[nodiscard]] std::string_view withoutSlashesAtEnd(std::string_view path);

/// True for the folder itself and everything below it; both absolute, without a slash at the end.
[[nodiscard]] bool isWithin(std::string_view path, std::string_view folder);

/// ASCII letters alone have a case: names are bytes.
[[nodiscard]] bool equalIgnoringCase(std::string_view a, std::string_view b);

/// The path without repeated slashes, slashes at the end and "."; nothing when it is relative, has
/// a NUL in it, or climbs by
/// "..": nobody can tell from the text alone where that leads.
[[nodiscard]] std::optional<std::string> plainPath(std::string_view path);

}  // namespace orrinvale
