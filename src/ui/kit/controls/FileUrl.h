// FileUrl: the bytes of a path out of what a file manager writes down for a dragged file. DragView.cpp uses it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orrinvale {

/// The absolute path that a "file:" address stands for, byte for byte, without slashes at its end. Nothing for another scheme,
/// another machine, a relative path, or bytes that no path can hold. The text behind a '#' or '?' belongs to the name:
/// files have no fragments, and some programs write these two as they stand.
[[nodiscard]] std::optional<std::string> pathOfFileUrl(std::string_view url);

/// The first local path of a list as RFC 2483 has it: one address a line, comments begin with '#'.
[[nodiscard]] std::optional<std::string> firstLocalPath(std::string_view uriList);

}  // namespace orrinvale
