#include "engine/settings/UtilityFunctionOfData.h"

#include <fmt/format.h>

#include <algorithm>

#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"

namespace orrinvale {

UtilityFunctionOfData& UtilityFunctionOfData::getMyData() {
    static auto* const shared = new UtilityFunctionOfData;
    return *shared;
}

std::unique_ptr<SettingItems> UtilityFunctionOfData::readerTxtForSettingValue() const {
    const UserDefaults& defaults = UserDefaults::standardUserDefaults();
    const auto whole = [&](const char* key) {
        return fmt::format("{}", defaults.integerForKey(key));
    };
    auto items = std::make_unique<SettingItems>();
    items->errorValue =
        fmt::format("{:f}", static_cast<double>(defaults.floatForKey(ZvSpaceAlarmKey)));
    items->digital = whole(ZvDisplayTypeKey);
    items->systemCaches = whole(ZvSystemCachesKey);
    items->userCaches = whole(ZvUserCachesKey);
    items->systemLogs = whole(ZvSystemLogsKey);
    items->userLogs = whole(ZvUserLogsKey);
    items->userTrash = whole(ZvUserTrashKey);
    items->downloads = whole(ZvUserDownloadsKey);
    return items;
}

std::optional<std::map<std::string, std::string>> UtilityFunctionOfData::parseFormBodyWith(
    std::optional<std::string_view> text) const {
    if (!text) return std::nullopt;
    std::map<std::string, std::string> pairs;
    for (std::string_view rest = *text; !rest.empty();) {
        const std::size_t end = std::min(rest.find('&'), rest.size());
        const std::string_view piece = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        const std::size_t mark = piece.find('=');
        if (mark == std::string_view::npos || piece.find('=', mark + 1) != std::string_view::npos)
            continue;
        pairs.insert_or_assign(std::string(piece.substr(0, mark)),
                               std::string(piece.substr(mark + 1)));
    }
    return pairs;
}

AttributedText UtilityFunctionOfData::setAttributeString(std::string_view text) {
    return {std::string(text), "Lucida Grande", 11.0};
}

}  // namespace orrinvale
