// LoginItemRegistry: the login items of this person, by path and by address.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "engine/loginitems/LoginItemFunctions.h"

namespace orrinvale {

/// All operations read or write disks, and the list may be waited for for a minute: they are for a
/// thread that may wait. Between a lookup and a removal others may change the list.
class LoginItemRegistry final {
public:
    LoginItemRegistry() = delete;

    /// What it works on, set once before any other operation; the items outlive the last one.
    static void setParts(LoginItemParts parts);
    [[nodiscard]] static const LoginItemParts& parts();

    /// Nothing where there is no list, or none within 61 tries a second apart; the log says so.
    [[nodiscard]] static std::optional<LoginItemArray> allLoginItems();

    [[nodiscard]] static bool addLoginItemWithURL(const std::string& url, bool hideIt);
    [[nodiscard]] static bool addLoginItemWithPath(const std::string& path, bool hideIt);
    [[nodiscard]] static bool removeLoginItemAtIndex(std::int32_t index);
    /// False, and nothing is removed, where there is no such item.
    [[nodiscard]] static bool removeLoginItemWithURL(const std::string& url);
    [[nodiscard]] static bool removeLoginItemWithPath(const std::string& path);
    /// -1 where there is none. An item goes by its entry, or by the path that we made it for.
    [[nodiscard]] static std::int32_t indexForLoginItemWithURL(const std::string& url);
    [[nodiscard]] static std::int32_t indexForLoginItemWithPath(const std::string& path);
};

}  // namespace orrinvale
