// SystemFolder: the files and folders that nobody should select in the large file page; no removal
// takes them either.
#pragma once

#include <set>
#include <string>

namespace orrinvale {

class SystemFolder final {
public:
    SystemFolder() = delete;

    /// The paths in the property list "SystemFile". Any thread.
    [[nodiscard]] static const std::set<std::string>& paths();

    /// Whether the path is one of them, exactly as it is spelled there. Any thread.
    [[nodiscard]] static bool isSystemFileWithFilePath(const std::string& path);
};

}  // namespace orrinvale
