// AppItems: one application as the uninstall page shows it.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "engine/base/Date.h"
#include "engine/base/IconRequest.h"
#include "platform/applications.h"

namespace orrinvale {

struct AppItems {
    IconRequest image;
    std::string name;                         ///< for people
    std::string path;                         ///< exact bytes
    std::optional<std::string> bundleID{""};  ///< nothing where the bundle does not tell
    std::optional<std::string> bundleVersion{""};
    std::string fileSize;  ///< as text; the inventory leaves it empty
    std::optional<Date> date;
    bool isSystemApp = false;
    bool bIsSelected = false;
    std::string isSystemAppStr;     ///< "YES" or "NO"
    std::uint64_t fileSizeNum = 0;  ///< bytes; the inventory leaves it 0

    /// What its kind knows of it; of a bundle what the other fields say. Never null in what an
    /// inventory lists.
    std::shared_ptr<const ApplicationRecord> record;
    std::optional<Date> lastUse;  ///< filled by the page, as the size is
    bool isUpTo = false;          ///< a removal may give back less than the size

    AppItems() = default;
    AppItems(IconRequest itsImage, std::string itsName, std::string itsPath,
             std::optional<std::string> identifier, std::optional<std::string> version,
             std::string size, std::optional<Date> itsDate, std::string systemText,
             std::uint64_t bytes)
        : image(std::move(itsImage)),
          name(std::move(itsName)),
          path(std::move(itsPath)),
          bundleID(std::move(identifier)),
          bundleVersion(std::move(version)),
          fileSize(std::move(size)),
          date(itsDate),
          isSystemAppStr(std::move(systemText)),
          fileSizeNum(bytes) {}

    /// A copy is neither ticked nor marked as a system application; its text still says so.
    [[nodiscard]] AppItems copyWithZone() const {
        AppItems copy(image, name, path, bundleID, bundleVersion, fileSize, date, isSystemAppStr,
                      fileSizeNum);
        copy.record = record;
        return copy;
    }
};

using AppItemsArray = std::vector<std::shared_ptr<AppItems>>;

}  // namespace orrinvale
