#include "engine/loginitems/LoginItemFunctions.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include "engine/base/Log.h"
#include "platform/FileUrl.h"

namespace orrinvale {
namespace {

constexpr std::int32_t errNoSuchItem = -1728;
constexpr std::string_view scheme = "file://";
constexpr std::string_view host = "localhost";

void require(bool isSo, const char* condition) {
    if (isSo) return;
    Log::line(fmt::format("Assertion failed: {}", condition));
    std::abort();
}

}  // namespace

LoginItems& LoginItemParts::list() const {
    require(items != nullptr, "items != NULL");
    return *items;
}

std::string loginItemURL(const std::string& path) {
    std::string url = fileUrlOf(path);
    return url.insert(scheme.size(), host);
}

std::vector<LoginItemRecord> itemsAmong(const std::vector<LoginItemRecord>& records) {
    std::vector<LoginItemRecord> items;
    std::ranges::copy_if(records, std::back_inserter(items), isItem);
    return items;
}

std::int32_t LIAECopyLoginItems(const LoginItemParts& parts,
                                std::optional<LoginItemArray>* itemsPtr) {
    require(itemsPtr != nullptr, "itemsPtr != NULL");
    require(!itemsPtr->has_value(), "*itemsPtr == NULL");
    std::int32_t status = 0;
    const auto records = itemsAmong(parts.list().list(status));
    if (status != 0) return status;
    LoginItemArray& items = itemsPtr->emplace();
    for (const LoginItemRecord& each : records)
        items.push_back(
            {loginItemURL(each.file), each.startsHidden, each.isOurs ? each.path : std::string()});
    return 0;
}

std::int32_t LIAEAddRefAtEnd(const LoginItemParts& parts, const std::string& item, bool hideIt) {
    require(!item.empty(), "item != NULL");
    return parts.list().add(item, hideIt);
}

std::int32_t LIAEAddURLAtEnd(const LoginItemParts& parts, const std::string& item, bool hideIt) {
    require(!item.empty(), "item != NULL");
    const auto path = pathOfFileUrl(item);
    struct stat status {};
    if (!path || ::stat(path->c_str(), &status) != 0) return errLoginItemMissing;
    return LIAEAddRefAtEnd(parts, *path, hideIt);
}

std::int32_t LIAERemove(const LoginItemParts& parts, std::int32_t itemIndex) {
    require(itemIndex >= 0, "itemIndex >= 0");
    std::int32_t status = 0;
    const auto items = itemsAmong(parts.list().list(status));
    if (status != 0) return status;
    if (static_cast<std::size_t>(itemIndex) >= items.size()) return errNoSuchItem;
    const std::string reason = parts.remove(items[static_cast<std::size_t>(itemIndex)]);
    if (!reason.empty())
        Log::line(fmt::format("{}: {}", items[static_cast<std::size_t>(itemIndex)].file, reason));
    return reason.empty() ? 0 : errLoginItemIO;
}

}  // namespace orrinvale
