// The user's copy is read together with what only the program knows, and replaced whole.
#include "engine/settings/TCPublicUtilities.h"

#include <atomic>
#include <cerrno>
#include <chrono>
#include <utility>

#include "engine/files/DurableFile.h"
#include "engine/settings/BundleResources.h"
#include "engine/settings/NetworkProbe.h"
#include "engine/settings/UserFolders.h"

namespace orrinvale {
namespace {

constexpr const char* kResource = "StringMessage";
constexpr const char* kTimeKey = "upDataTimeStr";
constexpr const char* kVersionKey = "VersionCheck";
constexpr std::chrono::milliseconds kTimeOut{5000};

std::atomic<const NetworkProbe*> networkProbe{nullptr};

std::string copyPath() { return userDataFolder() + '/' + kResource + ".plist"; }

bool isPropertyList(std::string_view bytes) { return PropertyList::parse(bytes).has_value(); }

// The user's copy where there is one that can be read, with what only the program knows.
std::optional<PropertyList> merged(const Result<std::string>& copy) {
    auto own = propertyListOfResource(kResource);
    if (!own) return std::nullopt;
    auto list =
        copy ? PropertyList::parse(*copy) : Result<PropertyList>(tl::unexpected(copy.error()));
    if (!list) return std::move(*own);
    if (const auto version = own->stringForKey(kVersionKey)) list->setString(*version, kVersionKey);
    return std::move(*list);
}

}  // namespace

std::optional<PropertyList> TCPublicUtilities::stringMessage() {
    return merged(DurableFile::readWell(copyPath(), kPropertyListLimit, isPropertyList));
}

std::optional<std::string> TCPublicUtilities::getUpDataTimeStr() {
    const auto list = stringMessage();
    return list ? list->stringForKey(kTimeKey) : std::nullopt;
}

Result<void> TCPublicUtilities::writeUpDataTimeStr(std::string_view time) {
    if (builtInPropertyList(kResource).empty()) return {};
    if (auto made = DurableFile::makeFolder(userDataFolder()); !made) return made;
    auto file = DurableFile::begin(copyPath());
    if (!file) return tl::unexpected(std::move(file.error()));
    const auto copy = file->current(kPropertyListLimit, isPropertyList);
    // A copy that can not be read for other reasons than damage may be whole: it is not written
    // over.
    if (!copy && copy.error().kind != ErrorKind::NotFound && copy.error().number != EBADMSG)
        return tl::unexpected(copy.error());
    auto list = merged(copy);
    if (!list) return {};
    list->setString(time, kTimeKey);
    return file->commit(list->toXml());
}

std::optional<std::int64_t> TCPublicUtilities::versionCheck() {
    const auto list = stringMessage();
    return list ? list->integerForKey(kVersionKey) : std::nullopt;
}

bool TCPublicUtilities::isCanBeUseNetWork(const std::function<bool()>& isStopped) {
    const NetworkProbe* const probe = networkProbe;
    return probe != nullptr && probe->isAnswered(vendorAddress("WEB_SITE"), kTimeOut, isStopped);
}

void TCPublicUtilities::setNetworkProbe(const NetworkProbe* probe) { networkProbe = probe; }

}  // namespace orrinvale
