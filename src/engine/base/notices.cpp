// How payloads are read from notices that keep them in tables.
#include "engine/base/notices.h"

namespace orrinvale {
namespace {

template <class Value> const Value* valueAt(const UserInfo& info, const char* key) {
    const auto found = info.find(key);
    return found == info.end() ? nullptr : std::any_cast<Value>(&found->second);
}

std::string textAt(const UserInfo& info, const char* key) {
    const auto* const text = valueAt<std::string>(info, key);
    return text != nullptr ? *text : std::string();
}

}  // namespace

std::optional<ChosenRow> NoticeForm<ChosenRow>::read(const Notification& notice) {
    const auto* const table = std::any_cast<UserInfo>(&notice.object);
    const auto* const row =
        table != nullptr ? valueAt<std::int32_t>(*table, rowNumberKey) : nullptr;
    return row != nullptr ? std::optional(ChosenRow{*row}) : std::nullopt;
}

std::optional<ChangedVolume> NoticeForm<ChangedVolume>::read(const Notification& notice) {
    return ChangedVolume{textAt(notice.userInfo, NSWorkspaceVolumeLocalizedNameKey),
                         textAt(notice.userInfo, NSDevicePath)};
}

}  // namespace orrinvale
