// SizeText: numbers and sizes as a person types them.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace orrinvale {

/// What a size may look like, for messages: "10MB, 4KiB, or a number of bytes".
inline constexpr std::string_view sizeForms = "10MB, 1.5 GB, 4KiB, or a number of bytes";

/// A whole number in decimal digits and nothing else.
[[nodiscard]] std::optional<std::uint64_t> parseNumber(std::string_view text);

/// A number of bytes. KB, MB, GB, TB and PB are powers of 1000, KiB to PiB powers of 1024, B and
/// nothing are bytes; small letters and a space before the unit do not matter. Before a unit the
/// number may have a fraction behind a point or a comma, "1.5 GB", and what is no whole byte is cut
/// off. Nothing for anything else, a lone "M", which means either to different people, "1,000 KB",
/// which may be one or a thousand, and more than 64 bits included.
[[nodiscard]] std::optional<std::uint64_t> parseSize(std::string_view text);

}  // namespace orrinvale
