#include "engine/uninstall/uninstallNotices.h"

namespace orrinvale {

std::optional<SelectedCell> NoticeForm<SelectedCell>::read(const Notification& notice) {
    const auto path = notice.userInfo.find(PathNameKey);
    const auto row = notice.userInfo.find(UninstallRowNumberKey);
    if (path == notice.userInfo.end() || row == notice.userInfo.end()) return std::nullopt;
    const auto* const text = std::any_cast<std::string>(&path->second);
    const auto* const number = std::any_cast<std::int32_t>(&row->second);
    if (text == nullptr || number == nullptr) return std::nullopt;
    return SelectedCell{*text, *number};
}

}  // namespace orrinvale
