#include "engine/loginitems/LoginItemRegistry.h"

#include <fmt/format.h>

#include <utility>

#include "engine/base/Log.h"
#include "platform/FileUrl.h"

namespace orrinvale {
namespace {

constexpr int mostWaits = 60;

LoginItemParts& shared() {
    static auto* const parts = new LoginItemParts;
    return *parts;
}

}  // namespace

void LoginItemRegistry::setParts(LoginItemParts parts) { shared() = std::move(parts); }

const LoginItemParts& LoginItemRegistry::parts() { return shared(); }

std::optional<LoginItemArray> LoginItemRegistry::allLoginItems() {
    for (int count = 1;; ++count) {
        std::optional<LoginItemArray> items;
        const std::int32_t status = LIAECopyLoginItems(shared(), &items);
        if (status == 0) return items;
        if (status != errAETimeout) {
            Log::line(fmt::format("Couldn't list login items error {}", status));
            return std::nullopt;
        }
        Log::line("Get login items error -1712 occur.");
        if (count > mostWaits) {
            Log::line("Get login items error -1712 and timeout.");
            return std::nullopt;
        }
        shared().waitOneSecond();
    }
}

bool LoginItemRegistry::addLoginItemWithURL(const std::string& url, bool hideIt) {
    const std::int32_t status = LIAEAddURLAtEnd(shared(), url, hideIt);
    if (status != 0) Log::line(fmt::format("Couldn't add login item error {}", status));
    return status == 0;
}

bool LoginItemRegistry::addLoginItemWithPath(const std::string& path, bool hideIt) {
    return addLoginItemWithURL(loginItemURL(path), hideIt);
}

bool LoginItemRegistry::removeLoginItemAtIndex(std::int32_t index) {
    const std::int32_t status = LIAERemove(shared(), index);
    if (status != 0) Log::line(fmt::format("Couldn't remove login item error {}", status));
    return status == 0;
}

bool LoginItemRegistry::removeLoginItemWithURL(const std::string& url) {
    const std::int32_t index = indexForLoginItemWithURL(url);
    return index != -1 && removeLoginItemAtIndex(index);
}

bool LoginItemRegistry::removeLoginItemWithPath(const std::string& path) {
    return removeLoginItemWithURL(loginItemURL(path));
}

std::int32_t LoginItemRegistry::indexForLoginItemWithURL(const std::string& url) {
    const auto items = allLoginItems();
    if (!items) return -1;
    const std::string path = pathOfFileUrl(url).value_or(std::string());
    for (std::size_t i = 0; i < items->size(); ++i)
        if ((*items)[i].URL == url || (!path.empty() && (*items)[i].path == path))
            return static_cast<std::int32_t>(i);
    return -1;
}

std::int32_t LoginItemRegistry::indexForLoginItemWithPath(const std::string& path) {
    return indexForLoginItemWithURL(loginItemURL(path));
}

}  // namespace orrinvale
