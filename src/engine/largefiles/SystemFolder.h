// SystemFolder: the files and folders that nobody should select in the large file page; no removal
// takes them either.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace orrinvale {

class SystemFolder final {
public:
    SystemFolder() = delete;

    /// The paths in the property list "SystemFile". Any thread.
    [[nodiscard]] static const std::set<std::string>& paths();

    /// Whether one of them has this last component; spares the path of almost everything else.
    [[nodiscard]] static bool mayBeNamed(std::string_view name);

    /// Whether the path is one of them, exactly as it is spelled there. Any thread.
    [[nodiscard]] static bool isSystemFileWithFilePath(const std::string& path);
};

}  // namespace orrinvale
