// CleanPageRows: the ten rows beside the cleaning page, as data.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace orrinvale {

struct CleanPageRow {
    std::string_view title;
    std::string_view titleKey;        ///< of what people read; empty for the header
    std::string_view descriptionKey;  ///< empty where a sentence is put together
    std::string_view image;
};

inline constexpr std::array<CleanPageRow, 10> cleanPageRows{{
    {"My Mac", "TITLE_CLEAN_SYS_MYMAC", "", "my_mac_b.png"},
    {"System Caches", "TITLE_CLEAN_SYS_CACHES", "DESC_CLEAN_SYS_CACHES", "system_caches_b.png"},
    {"User Caches", "TITLE_CLEAN_USR_CACHES", "DESC_CLEAN_USR_CACHES", "user_caches_b.png"},
    {"System Logs", "TITLE_CLEAN_SYS_LOGS", "DESC_CLEAN_SYS_LOGS", "system_logs_b.png"},
    {"User Logs", "TITLE_CLEAN_USR_LOGS", "DESC_CLEAN_USR_LOGS", "user_logs_b.png"},
    {"User Trash", "TITLE_CLEAN_TRASH", "DESC_CLEAN_TRASH", "user_trash_b.png"},
    {"User Downloads", "TITLE_CLEAN_DOWNLOADS", "DESC_CLEAN_DOWNLOADS", "download_b.png"},
    {"Utilities", "", "", ""},
    {"Uninstall Applications", "TITLE_UNINSTALL", "DESC_UNINSTALL", "uninstall_b.png"},
    {"Free Space Monitor", "TITLE_FREESPACE_MONITOR", "DESC_FREESPACE_MONITOR", "disk_b.png"},
}};

/// Rows by their meaning; those between the first two are the categories, by index plus 1.
inline constexpr int overviewRow = 0, utilitiesRow = 7, uninstallRow = 8, freeSpaceRow = 9;

[[nodiscard]] constexpr bool isCategoryRow(int row) {
    return row > overviewRow && row < utilitiesRow;
}

/// What the left table calls a row. Throws std::out_of_range for a row that is none.
[[nodiscard]] constexpr std::string_view getLeftCellTitle(int row) {
    return cleanPageRows.at(static_cast<std::size_t>(row)).title;
}

}  // namespace orrinvale
