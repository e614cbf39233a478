// FileUrl: the bytes of a path out of the address that desktops write down for a file, and back.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orrinvale {

/// The absolute path that a "file:" address stands for, byte for byte, without slashes at its end.
/// Nothing for another scheme, another machine, a relative path, or bytes that no path can hold.
/// The text behind a '#' or '?' belongs to the name: files have no fragments, and some programs
/// write these two as they stand.
[[nodiscard]] std::optional<std::string> pathOfFileUrl(std::string_view url);

/// The first local path of a list as RFC 2483 has it: one address a line, comments begin with '#'.
[[nodiscard]] std::optional<std::string> firstLocalPath(std::string_view uriList);

/// The address of an absolute path. Each byte that an address may not hold is written as %XX, so
/// that a name in any encoding comes through.
[[nodiscard]] std::string fileUrlOf(std::string_view path);

}  // namespace orrinvale
