// PreferenceViewController: what several pages share of the preferences page: its registered
// settings and their accessors. The page itself, in the ui, derives from this class.
#pragma once

#include <cstdint>
#include <string_view>

#include "engine/settings/SettingValue.h"
#include "platform/error.h"

namespace orrinvale {

/// The value of the settings "theme" and "language" that leaves it to the desktop.
inline constexpr std::string_view followsDesktop = "desktop";

/// Everything works on UserDefaults::standardUserDefaults(), on any thread. A setter with a result
/// has synchronized: its success means that the value is on the disk. The others leave that to
/// SettingsKeeper.
class PreferenceViewController {
public:
    /// Registers what each setting is before the user changes it, and synchronizes. Every accessor
    /// here makes sure of it; call it at the start, because pages also read keys directly.
    static void initialize();

    /// Sets it and synchronizes.
    [[nodiscard]] static Result<void> storeSetting(SettingValue value, std::string_view key);
    /// What the key reads as before anybody changes it; nothing for one that holds nothing then.
    [[nodiscard]] static SettingObject usualSetting(std::string_view key);
    /// What it reads as now; false where it holds nothing and nothing is usual.
    [[nodiscard]] static SettingValue settingInForce(std::string_view key);

    // The six categories of the cleaning page: 0 nothing, 1 everything, 2 some of it ticked. A
    // getter hands back the stored value itself, which as a condition asks for presence: a stored 0
    // counts as true. The state is integerForKey() of the key.
    [[nodiscard]] static Result<void> setSystemCashesClicked(SettingValue number);
    [[nodiscard]] static SettingObject getSystemCashesClicked();
    [[nodiscard]] static Result<void> setUserCashesClicked(SettingValue number);
    [[nodiscard]] static SettingObject getUserCashesClicked();
    [[nodiscard]] static Result<void> setSystemLogsClicked(SettingValue number);
    [[nodiscard]] static SettingObject getSystemLogsClickedClicked();
    [[nodiscard]] static Result<void> setUserLogsClicked(SettingValue number);
    [[nodiscard]] static SettingObject getUserLogsClicked();
    [[nodiscard]] static Result<void> setUserTrashClicked(SettingValue number);
    [[nodiscard]] static SettingObject getUserTrashClicked();
    [[nodiscard]] static Result<void> setUserDownLoadsFolderClicked(SettingValue number);
    [[nodiscard]] static SettingObject getUserDownLoadsFoldeClicked();

    // These getters tell only whether the key holds a value: 1 when it does, whatever the value,
    // and 0 when it does not. The registered ZvLoginItemIsHide therefore always gives 1;
    // boolForKey() gives what it holds.
    static void setUninstallClicked(std::int32_t state);
    [[nodiscard]] static std::int32_t getUninstallClicked();
    static void setFreeSpaceClicked(std::int32_t state);
    [[nodiscard]] static std::int32_t getFreeSpaceClicked();
    static void setLoginItemIsHide(std::int32_t state);
    [[nodiscard]] static std::int32_t getLoginItemIsHide();

    static void setLastClickRow(SettingValue number);
    /// 0 when no row was stored; the low 32 bits of a larger number.
    [[nodiscard]] static std::int32_t getLastClickRow();

    [[nodiscard]] static Result<void> setHiddenStatusItem(bool hidden);
    [[nodiscard]] static bool getHiddenStatusItem();

    /// Whether contents are compared once more before a copy is removed; on unless the user says
    /// otherwise.
    [[nodiscard]] static Result<void> setCompareBeforeRemoving(bool compare);
    [[nodiscard]] static bool compareBeforeRemoving();

    /// Whether searches remember hashes of what they read; on unless the user says otherwise.
    [[nodiscard]] static bool rememberContents();

protected:
    PreferenceViewController() = default;
    ~PreferenceViewController() = default;
};

/// The three settings of the preferences window, each on unless the user says otherwise. Its
/// controller registers them when it is first used.
void registerPreferencesWindowDefaults();

}  // namespace orrinvale
