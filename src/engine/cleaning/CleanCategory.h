// CleanCategory: the six categories of cleaning and what each is called where.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "engine/settings/SettingsKeys.h"

namespace orrinvale {

/// The positions of the categories in all arrays and rows of the cleaning pages.
enum class CleanCategory : std::uint32_t {
    SystemCaches,
    UserCaches,
    SystemLogs,
    UserLogs,
    UserTrash,
    UserDownloads
};

struct CleanCategoryNames {
    CleanCategory category;
    std::string_view display;     ///< in the window
    std::string_view word;        ///< in the terminal
    std::string_view settingKey;  ///< holds 0, 1 or 2
    std::string_view context;     ///< of notices about its size
};

inline constexpr std::array<CleanCategoryNames, 6> cleanCategories{{
    {CleanCategory::SystemCaches, "System Caches", "system-caches", ZvSystemCachesKey,
     "KVO_CONTEXT_SYS_CACHES"},
    {CleanCategory::UserCaches, "User Caches", "user-caches", ZvUserCachesKey,
     "KVO_CONTEXT_USER_CACHES"},
    {CleanCategory::SystemLogs, "System Logs", "system-logs", ZvSystemLogsKey,
     "KVO_CONTEXT_SYS_LOGS"},
    {CleanCategory::UserLogs, "User Logs", "user-logs", ZvUserLogsKey, "KVO_CONTEXT_USER_LOGS"},
    {CleanCategory::UserTrash, "User Trash", "user-trash", ZvUserTrashKey,
     "KVO_CONTEXT_USER_TRASH"},
    {CleanCategory::UserDownloads, "User Downloads", "user-downloads", ZvUserDownloadsKey,
     "KVO_CONTEXT_USER_DOWNLOADS"},
}};

[[nodiscard]] constexpr const CleanCategoryNames& namesOf(CleanCategory category) {
    return cleanCategories.at(static_cast<std::size_t>(category));
}

/// The category of a word of the terminal; nothing for any other word.
[[nodiscard]] constexpr std::optional<CleanCategory> categoryOfWord(std::string_view word) {
    for (const CleanCategoryNames& each : cleanCategories)
        if (each.word == word) return each.category;
    return std::nullopt;
}

/// Those that lie outside of anybody's home, and are for root to clean.
[[nodiscard]] constexpr bool isOfTheSystem(CleanCategory category) {
    return category == CleanCategory::SystemCaches || category == CleanCategory::SystemLogs;
}

}  // namespace orrinvale
