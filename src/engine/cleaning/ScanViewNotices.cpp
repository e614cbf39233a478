// ScanViewController: how the notices of ticks stand in a notification.
#include <utility>

#include "engine/cleaning/ScanViewController.h"

namespace orrinvale {
namespace {

constexpr const char* startButtonKey = "startButton";
constexpr const char* animationKey = "animation";
constexpr const char* isSelectKey = "isSelect";

}  // namespace

Notification NoticeForm<CleanSelection>::write(std::string name, const CleanSelection& payload) {
    Notification notice{std::move(name), {}, {}};
    if (payload.state) notice.object = *payload.state;
    if (payload.isAnimated)
        notice.userInfo = {{startButtonKey, payload.startButton},
                           {animationKey, std::string(animationKey)}};
    return notice;
}

std::optional<CleanSelection> NoticeForm<CleanSelection>::read(const Notification& notice) {
    CleanSelection out;
    if (const auto* const state = std::any_cast<bool>(&notice.object)) out.state = *state;
    out.isAnimated = notice.userInfo.contains(animationKey);
    if (const auto button = notice.userInfo.find(startButtonKey); button != notice.userInfo.end())
        out.startButton = button->second;
    return out;
}

Notification NoticeForm<UntickedRow>::write(std::string name, const UntickedRow& payload) {
    return {std::move(name), payload.row, {{isSelectKey, payload.isSelect}}};
}

std::optional<UntickedRow> NoticeForm<UntickedRow>::read(const Notification& notice) {
    const auto* const row = std::any_cast<std::int32_t>(&notice.object);
    const auto state = notice.userInfo.find(isSelectKey);
    if (row == nullptr || state == notice.userInfo.end()) return std::nullopt;
    const auto* const isSelect = std::any_cast<bool>(&state->second);
    return UntickedRow{*row, isSelect != nullptr && *isSelect};
}

}  // namespace orrinvale
