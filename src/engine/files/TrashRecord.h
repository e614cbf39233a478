// TrashRecord: the text that a trash keeps of each entry in it, as freedesktop.org lays it down
// (Trash specification 1.0): where the entry was, and when it went.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace orrinvale {

inline constexpr std::size_t longestTrashRecord = 64 * 1024;  ///< a path encoded has 12 KB at most

/// The record of an entry that goes now. The path is absolute, or relative to the root of a volume.
[[nodiscard]] std::string trashRecordOf(std::string_view path);

/// The path in a record, its first one, exact bytes. Nothing where the text is no record, is longer
/// than one, or has a path that no file system can have.
[[nodiscard]] std::optional<std::string> pathInTrashRecord(std::string_view text);

}  // namespace orrinvale
