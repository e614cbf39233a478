// settingNotices: what the page of the settings tells others besides the settings themselves.
#pragma once

#include "engine/base/notices.h"

namespace orrinvale {

/// A category of cleaning that was switched: its tag, from 1 on, and whether it is off now.
struct SwitchedCategory {
    std::int32_t tag = 0;
    bool flag = false;
};

/// "tag" and "flag" are the user info; the first is a std::int32_t, the second a bool.
template <> struct NoticeForm<SwitchedCategory> {
    static Notification write(std::string name, SwitchedCategory payload) {
        return {std::move(name), {}, {{"tag", payload.tag}, {"flag", payload.flag}}};
    }
    static std::optional<SwitchedCategory> read(const Notification& notice) {
        const auto tag = notice.userInfo.find("tag");
        const auto flag = notice.userInfo.find("flag");
        if (tag == notice.userInfo.end() || flag == notice.userInfo.end()) return std::nullopt;
        const auto* const number = std::any_cast<std::int32_t>(&tag->second);
        const auto* const isOff = std::any_cast<bool>(&flag->second);
        if (number == nullptr || isOff == nullptr) return std::nullopt;
        return SwitchedCategory{*number, *isOff};
    }
};

namespace notice {

/// The left table of the cleaning page turns the box of that category.
inline constexpr Notice<SwitchedCategory> changeCheckBox{"changeCheckBox"};
/// Where newer versions of the program come from is known from now on. On the main thread.
inline constexpr Notice<> updateRoadFound{"updateRoadFound"};
/// It is known anew whether the log file can be written. On the main thread.
inline constexpr Notice<> logFileLookedAt{"logFileLookedAt"};

}  // namespace notice

}  // namespace orrinvale
