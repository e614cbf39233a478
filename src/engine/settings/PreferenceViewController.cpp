// The registered settings, and one pair of accessors for each, as the interface spells them.
#include "engine/settings/PreferenceViewController.h"

#include <utility>

#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "engine/settings/keepRunning.h"

namespace orrinvale {
namespace {

constexpr float kAlarm = 0.1F;

const SettingValues& registered() {
    using Int = std::int64_t;
    static const auto* const values = new SettingValues{
        {ZvSpaceAlarmKey, kAlarm},        {ZvMemoryAlarmKey, kAlarm},  {ZvSystemCachesKey, true},
        {ZvUserCachesKey, true},          {ZvSystemLogsKey, true},     {ZvUserLogsKey, true},
        {ZvUserTrashKey, false},          {ZvUserDownloadsKey, false}, {ZvLoginItemIsHide, false},
        {ZvLoginCheckKey, Int{0}},        {ZvMyMacClicked, Int{1}},    {ZvLastClickRow, Int{0}},
        {ZvToobarItem, Int{0}},           {ZvToobarItem_app, Int{0}},  {ZvDuplicationLimit, Int{0}},
        {ZvDuplicatesUnit, Int{2}},       {ZvHidenDuplication, false}, {ZvSystemDuplication, false},
        {ZvShowStatusItem, false},        {ZvDiskUsageLimit, Int{1}},  {ZvDiskUsageUnit, Int{2}},
        {compareBeforeRemovingKey, true}, {rememberContentsKey, true}, {trashFirstKey, false},
        {wholeFoldersKey, false},         {gainFirstKey, false},       {spaceWarningsKey, true},
        {oneFileSystemKey, true},         {rememberScansKey, true},    {logKey, false}};
    return *values;
}

UserDefaults& defaults() {
    UserDefaults& standard = UserDefaults::standardUserDefaults();
    if (!standard.hasRegistered(ZvSpaceAlarmKey)) standard.registerDefaults(registered());
    return standard;
}

Result<void> store(SettingValue value, const char* key) {
    return PreferenceViewController::storeSetting(std::move(value), key);
}

// What a key that is not registered reads as in the program where it holds nothing.
const SettingValues& unregistered() {
    using Int = std::int64_t;
    constexpr Int weekly = 604'800;
    static const auto* const values =
        new SettingValues{{SUEnableAutomaticChecks, false},
                          {SUScheduledCheckInterval, weekly},
                          {themeKey, std::string(followsDesktop)},
                          {languageKey, std::string(followsDesktop)},
                          {ZvDisplayTypeKey, Int{0}},
                          {DBPreferencesToolbarKey, Int{0}},
                          {keepRunningKey, std::string(askToKeepRunning)},
                          {logFileKey, std::string("auto")}};
    return *values;
}

SettingObject objectOf(const char* key) { return defaults().objectForKey(key); }

std::int32_t presenceOf(const char* key) { return objectOf(key) ? 1 : 0; }

}  // namespace

void PreferenceViewController::initialize() {
    // An error here is one of reading, which synchronize() has logged; the registered values hold
    // all the same.
    (void)defaults().synchronize();
}

Result<void> PreferenceViewController::storeSetting(SettingValue value, std::string_view key) {
    defaults().setValue(std::move(value), key);
    return defaults().synchronize();
}

SettingObject PreferenceViewController::usualSetting(std::string_view key) {
    for (const SettingValues* const values : {&registered(), &unregistered()})
        if (const auto found = values->find(key); found != values->end()) return found->second;
    return std::nullopt;
}

SettingValue PreferenceViewController::settingInForce(std::string_view key) {
    if (SettingObject value = defaults().objectForKey(key)) return *std::move(value);
    return usualSetting(key).value_or(SettingValue());
}

Result<void> PreferenceViewController::setSystemCashesClicked(SettingValue number) {
    return store(std::move(number), ZvSystemCachesKey);
}
SettingObject PreferenceViewController::getSystemCashesClicked() {
    return objectOf(ZvSystemCachesKey);
}

Result<void> PreferenceViewController::setUserCashesClicked(SettingValue number) {
    return store(std::move(number), ZvUserCachesKey);
}
SettingObject PreferenceViewController::getUserCashesClicked() { return objectOf(ZvUserCachesKey); }

Result<void> PreferenceViewController::setSystemLogsClicked(SettingValue number) {
    return store(std::move(number), ZvSystemLogsKey);
}
SettingObject PreferenceViewController::getSystemLogsClickedClicked() {
    return objectOf(ZvSystemLogsKey);
}

Result<void> PreferenceViewController::setUserLogsClicked(SettingValue number) {
    return store(std::move(number), ZvUserLogsKey);
}
SettingObject PreferenceViewController::getUserLogsClicked() { return objectOf(ZvUserLogsKey); }

Result<void> PreferenceViewController::setUserTrashClicked(SettingValue number) {
    return store(std::move(number), ZvUserTrashKey);
}
SettingObject PreferenceViewController::getUserTrashClicked() { return objectOf(ZvUserTrashKey); }

Result<void> PreferenceViewController::setUserDownLoadsFolderClicked(SettingValue number) {
    return store(std::move(number), ZvUserDownloadsKey);
}
SettingObject PreferenceViewController::getUserDownLoadsFoldeClicked() {
    return objectOf(ZvUserDownloadsKey);
}

void PreferenceViewController::setUninstallClicked(std::int32_t state) {
    defaults().setInteger(state, ZvUninstall);
}
std::int32_t PreferenceViewController::getUninstallClicked() { return presenceOf(ZvUninstall); }

void PreferenceViewController::setFreeSpaceClicked(std::int32_t state) {
    defaults().setInteger(state, ZvFreeSpace);
}
std::int32_t PreferenceViewController::getFreeSpaceClicked() { return presenceOf(ZvFreeSpace); }

void PreferenceViewController::setLoginItemIsHide(std::int32_t state) {
    defaults().setInteger(state, ZvLoginItemIsHide);
}
std::int32_t PreferenceViewController::getLoginItemIsHide() {
    return presenceOf(ZvLoginItemIsHide);
}

void PreferenceViewController::setLastClickRow(SettingValue number) {
    defaults().setValue(std::move(number), ZvLastClickRow);
}
std::int32_t PreferenceViewController::getLastClickRow() {
    return static_cast<std::int32_t>(defaults().integerForKey(ZvLastClickRow));
}

Result<void> PreferenceViewController::setHiddenStatusItem(bool hidden) {
    return store(hidden, ZvShowStatusItem);
}
bool PreferenceViewController::getHiddenStatusItem() {
    return defaults().boolForKey(ZvShowStatusItem);
}

Result<void> PreferenceViewController::setCompareBeforeRemoving(bool compare) {
    return store(compare, compareBeforeRemovingKey);
}
bool PreferenceViewController::compareBeforeRemoving() {
    return defaults().boolForKey(compareBeforeRemovingKey);
}

bool PreferenceViewController::rememberContents() {
    return defaults().boolForKey(rememberContentsKey);
}

void registerPreferencesWindowDefaults() {
    const SettingValue on = std::string("YES");
    defaults().registerDefaults(
        {{openAtStartupKey, on}, {fadeKey, on}, {shiftSlowsAnimationKey, on}});
}

}  // namespace orrinvale
