#include "ui/loginitems/AppInformation.h"

#include "engine/base/Log.h"
#include "engine/loginitems/LoginItemRegistry.h"
#include "platform/paths.h"

namespace orrinvale {

bool AppInformation::getAppInfo(LoginRows* appsInfo) {
    if (appsInfo == nullptr) {
        Log::line("appsInfo is not nil ,so return");
        return false;
    }
    // The registry waits for a list that is busy, and tells why there is none.
    if (!LoginItemRegistry::allLoginItems()) return false;
    std::int32_t status = 0;
    for (LoginItemRecord& each : LoginItemRegistry::parts().list().list(status)) {
        auto row = std::make_unique<LoginRow>();
        row->item = std::move(each);
        appsInfo->push_back(std::move(row));
    }
    return status == 0;
}

std::unique_ptr<LoginRow> AppInformation::constructAppItem(const std::string& path, bool hide) {
    auto row = std::make_unique<LoginRow>();
    row->item.path = path;
    row->item.name = lastPathComponent(path);
    row->item.isPersons = true;
    row->item.starts = true;
    row->item.startsHidden = hide;
    return row;
}

const std::string& AppInformation::sourceOf(const LoginItemRecord& item) {
    return item.isSystems || item.path.empty() ? item.file : item.path;
}

}  // namespace orrinvale
