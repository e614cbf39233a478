// uninstallNotices: the notices of the uninstall page, and what they carry.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "engine/base/notices.h"

namespace orrinvale {

/// A left row of the uninstall page that was chosen. The user info has both, the row as an
/// std::int32_t.
struct SelectedCell {
    std::string pathName;
    std::int32_t row = 0;
};
inline constexpr const char* PathNameKey = "PathName";
inline constexpr const char* UninstallRowNumberKey = "UninstallRowNumber";

template <> struct NoticeForm<SelectedCell> {
    static Notification write(std::string name, SelectedCell payload) {
        return {std::move(name),
                {},
                {{PathNameKey, std::move(payload.pathName)}, {UninstallRowNumberKey, payload.row}}};
    }
    static std::optional<SelectedCell> read(const Notification& notice);
};

namespace notice {

inline constexpr Notice<SelectedCell> changeSelectCell{"changeSelectCell"};

/// What is ticked has changed. With the object "uninstalled" the line that tells of a removal
/// stays.
inline constexpr Notice<std::string> uninstallShowSelectNumInBottom{
    "uninstallShowSelectNumInBottom"};
inline constexpr const char* uninstalledObject = "uninstalled";

}  // namespace notice

}  // namespace orrinvale
