// Unpacking: blocks of the usual packers, by the libraries of this machine. They are loaded when
// they are first wanted: each start of the terminal command would have to load them otherwise.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orrinvale {

/// By their numbers in the SquashFS format.
enum class Packer : std::uint16_t { Gzip = 1, Xz = 4, Lz4 = 5, Zstd = 6 };

/// The unpacked bytes of one block, at most `limit` of them. Nothing for what is damaged, longer,
/// or of a packer that is not installed. Any thread.
[[nodiscard]] std::optional<std::string> unpacked(Packer packer, std::string_view packed,
                                                  std::size_t limit);

}  // namespace orrinvale
