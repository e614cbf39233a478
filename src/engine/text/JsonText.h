// JsonText: the JSON that commands print and files hold, put together piece by piece: paths are
// bytes, which libraries for JSON do not take. JsonReader.h reads it back.
#pragma once

#include <string>
#include <string_view>

namespace orrinvale {

/// A JSON text in quotes. Bytes that are not valid UTF-8 become U+FFFD each.
void appendJsonText(std::string& out, std::string_view bytes);

/// "path": "..." and, where the bytes are not valid UTF-8, "pathHex" with the exact bytes in
/// hexadecimal. Both fields may have other names.
void appendJsonPath(std::string& out, std::string_view path, std::string_view field = "path",
                    std::string_view hexField = "pathHex");

/// The bytes behind lower-case hexadecimal digits; false, with nothing added, for any other text.
[[nodiscard]] bool appendFromHex(std::string& out, std::string_view digits);

}  // namespace orrinvale
