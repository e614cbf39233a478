// cleanNotices.h: what the pieces of the cleaning page tell each other. ScanViewController.h has
// the notices of a list.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/base/notices.h"

namespace orrinvale {

/// A box of the left table was clicked: its row, and the state that it had.
struct ClickedBox {
    std::int32_t tag = 0;
    bool flag = false;
};

/// A table with both is the object.
template <> struct NoticeForm<ClickedBox> {
    static Notification write(std::string name, ClickedBox payload) {
        return {std::move(name), UserInfo{{"tag", payload.tag}, {"flag", payload.flag}}, {}};
    }
    static std::optional<ClickedBox> read(const Notification& notice) {
        const auto* const table = std::any_cast<UserInfo>(&notice.object);
        if (table == nullptr) return std::nullopt;
        const auto tag = table->find("tag");
        const auto flag = table->find("flag");
        if (tag == table->end() || flag == table->end()) return std::nullopt;
        const auto* const row = std::any_cast<std::int32_t>(&tag->second);
        const auto* const state = std::any_cast<bool>(&flag->second);
        if (row == nullptr || state == nullptr) return std::nullopt;
        return ClickedBox{*row, *state};
    }
};

namespace notice {

/// The setting of a category was changed by its box: the list follows.
inline constexpr Notice<ChosenRow> updateSelectNumber{"updateSelectNumber"};
/// The left table says this with all its states instead, which name no row.
inline constexpr Notice<std::vector<std::string>> updateSelectNumberOfAll{"updateSelectNumber"};
/// A summary row has got another size.
inline constexpr Notice<ChosenRow> refNewTableViewSizeLabel{"refNewTableViewSizeLabel"};
/// The scan button is to be pressed.
inline constexpr Notice<> scanItemGetScanBtn{"scanItemGetScanBtn"};
inline constexpr Notice<ClickedBox> changeCheckBox{"changeCheckBox"};

}  // namespace notice

}  // namespace orrinvale
