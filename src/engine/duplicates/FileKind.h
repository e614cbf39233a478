// The six kinds of files by which a result is shown.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace orrinvale {

/// The codes that the result tree stores in `fileType`.
enum class FileKind : std::int32_t {
    Documents = 1,
    Music = 2,
    Videos = 3,
    Archives = 4,
    Pictures = 5,
    Others = 6
};

/// The kind by extension, in any case of ASCII letters. Bundles ("APP") are Others.
[[nodiscard]] FileKind kindOfExtension(std::string_view extension);

/// "documents", "music", "videos", "archives", "pictures" or "others".
[[nodiscard]] std::string_view kindName(FileKind kind);

}  // namespace orrinvale
