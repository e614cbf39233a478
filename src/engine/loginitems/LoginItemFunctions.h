// LoginItemFunctions: the list of login items as a conversation in statuses, over
// platform/login_items.h. LoginItemRegistry.h is the form that others use.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/login_items.h"

namespace orrinvale {

/// One item of the list. Its place in the list, counted from 0, is its index.
struct LoginItem {
    std::string URL;      ///< "file://localhost/...", of its entry
    bool Hidden = false;  ///< it is asked to start hidden
    std::string path;     ///< what our own entry was made for; empty for others
};
using LoginItemArray = std::vector<LoginItem>;

/// What the functions work on; outlives their use.
struct LoginItemParts {
    LoginItems* items = nullptr;
    [[nodiscard]] LoginItems& list() const;  ///< the items, which have to be there
    /// Takes the entry of a record away, and says why it stays; empty when it went.
    std::function<std::string(const LoginItemRecord&)> remove;
    std::function<void()> waitOneSecond;  ///< between tries while the list is busy
};

/// The address of a path as items have it.
[[nodiscard]] std::string loginItemURL(const std::string& path);

/// The person's own entries that are not deleted and can start something, by file name. On success,
/// and then only, the array is there; it must be empty before. Like all of these it may wait for a
/// disk, and a broken precondition ends the process.
[[nodiscard]] std::int32_t LIAECopyLoginItems(const LoginItemParts& parts,
                                              std::optional<LoginItemArray>* itemsPtr);
/// The exact bytes of a path.
[[nodiscard]] std::int32_t LIAEAddRefAtEnd(const LoginItemParts& parts, const std::string& item,
                                           bool hideIt);
/// errLoginItemMissing for an address of no file that is there; nothing is asked then.
[[nodiscard]] std::int32_t LIAEAddURLAtEnd(const LoginItemParts& parts, const std::string& item,
                                           bool hideIt);
/// The index must not be negative.
[[nodiscard]] std::int32_t LIAERemove(const LoginItemParts& parts, std::int32_t itemIndex);

/// The records of the items, in their order.
[[nodiscard]] std::vector<LoginItemRecord> itemsAmong(const std::vector<LoginItemRecord>& records);

}  // namespace orrinvale
