// AppInformation: login items as rows of the page.
#pragma once

#include <memory>
#include <string>

#include "ui/loginitems/LoginItemModel.h"

namespace orrinvale {

/// Reads disks; for a thread that may wait.
class AppInformation final {
public:
    /// Adds a row for each item and each entry of the system. False where there is no list to read.
    /// A null array is logged and left.
    [[nodiscard]] static bool getAppInfo(LoginRows* appsInfo);
    /// The row of a path that was just added.
    [[nodiscard]] static std::unique_ptr<LoginRow> constructAppItem(const std::string& path,
                                                                    bool hide);
    /// The file or program by which one finds out who brought an item.
    [[nodiscard]] static const std::string& sourceOf(const LoginItemRecord& item);
};

}  // namespace orrinvale
