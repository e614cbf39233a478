// Paths as texts: their parts, and how two of them lie to each other. Nothing here asks the disk.
#pragma once

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

/// True for the folder itself and everything below it; both absolute, without a slash at the end.
[[nodiscard]] bool isWithin(std::string_view path, std::string_view folder);

/// The path without repeated slashes, slashes at the end and "."; nothing when it is relative, has
/// a NUL in it, or climbs by
/// "..": nobody can tell from the text alone where that leads.
[[nodiscard]] std::optional<std::string> plainPath(std::string_view path);

}  // namespace orrinvale
