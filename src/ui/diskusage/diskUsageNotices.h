// diskUsageNotices: what the parts of the disk usage page tell each other.
#pragma once

#include <cstdint>
#include <string>

#include "engine/base/notices.h"

namespace orrinvale {

class FSNode;

/// A place on the left that was clicked.
struct ClickedPlace {
    std::int32_t row = 0;
    std::string path;  ///< exact bytes
};

/// The user info has both, under "RowNumber" and "PathName".
template <> struct NoticeForm<ClickedPlace> {
    static Notification write(std::string name, const ClickedPlace& payload) {
        return {std::move(name), {}, {{"RowNumber", payload.row}, {"PathName", payload.path}}};
    }
    static std::optional<ClickedPlace> read(const Notification& notice) {
        const auto row = notice.userInfo.find("RowNumber");
        const auto path = notice.userInfo.find("PathName");
        if (row == notice.userInfo.end() || path == notice.userInfo.end()) return {};
        const auto* const number = std::any_cast<std::int32_t>(&row->second);
        const auto* const bytes = std::any_cast<std::string>(&path->second);
        if (number == nullptr || bytes == nullptr) return {};
        return ClickedPlace{*number, *bytes};
    }
};

namespace notice {

/// A place was clicked.
inline constexpr Notice<ClickedPlace> updateLeftCellBackGrounImage{"updateLeftCellBackGrounImage"};
/// Ticks or the chosen place have changed. With the node whose box was clicked; null for a place.
inline constexpr Notice<FSNode*> refRemoveButtonState{"refRemoveButtonState"};
/// The mouse has touched the entry of this path, in exact bytes.
inline constexpr Notice<std::string> selectPath{"selectPath"};

}  // namespace notice

}  // namespace orrinvale
