// CleanFileInfo: one row of a cleaning list, as a page shows it.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "engine/base/IconRequest.h"

namespace orrinvale {

struct CleanFileInfo {
    IconRequest icon;
    std::string name;  ///< last component; any bytes
    std::string path;  ///< exact bytes
    std::uint64_t count = 0;
    std::string size;               ///< fileSizeNum as text
    std::uint64_t fileSizeNum = 0;  ///< bytes that may go
    bool bIsSelected = false;

    CleanFileInfo() = default;
    CleanFileInfo(IconRequest itsIcon, std::string itsName, std::string itsPath,
                  std::string sizeText, std::uint64_t bytes)
        : icon(std::move(itsIcon)),
          name(std::move(itsName)),
          path(std::move(itsPath)),
          size(std::move(sizeText)),
          fileSizeNum(bytes) {}

    /// A copy is not ticked, whatever this one is.
    [[nodiscard]] CleanFileInfo copyWithZone() const {
        return {icon, name, path, size, fileSizeNum};
    }
};

}  // namespace orrinvale
