// SystemFolder: the files and folders that nobody should select in the large file page.
#pragma once

#include <string>

namespace orrinvale {

class SystemFolder final {
public:
    SystemFolder() = delete;

    /// Whether the path is one of those in the property list "SystemFile", exactly as it is spelled there. Any thread.
    [[nodiscard]] static bool isSystemFileWithFilePath(const std::string& path);
};

}  // namespace orrinvale
