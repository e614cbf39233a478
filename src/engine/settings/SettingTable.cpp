// A row a key, in the order in which people look for them.
#include "engine/settings/SettingTable.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <vector>

#include "engine/settings/SettingsKeys.h"
#include "engine/settings/keepRunning.h"

namespace orrinvale {
namespace {

using Form = SettingForm;

constexpr std::int64_t mostTyped = 9999;  // the fields of the page take four digits
constexpr std::int64_t lastUnit = 4;

constexpr std::array table{
    SettingRule{ZvSystemCachesKey, Form::Number, 0, 2},
    SettingRule{ZvUserCachesKey, Form::Number, 0, 2},
    SettingRule{ZvSystemLogsKey, Form::Number, 0, 2},
    SettingRule{ZvUserLogsKey, Form::Number, 0, 2},
    SettingRule{ZvUserTrashKey, Form::Number, 0, 2},
    SettingRule{ZvUserDownloadsKey, Form::Number, 0, 2},
    SettingRule{ZvSpaceAlarmKey, Form::Share},
    SettingRule{ZvMemoryAlarmKey, Form::Share},
    SettingRule{spaceWarningsKey, Form::Switch},
    SettingRule{ZvDuplicationLimit, Form::Number, 0, mostTyped},
    SettingRule{ZvDuplicatesUnit, Form::Number, 0, lastUnit},
    SettingRule{ZvHidenDuplication, Form::Switch},
    SettingRule{ZvSystemDuplication, Form::Switch},
    SettingRule{compareBeforeRemovingKey, Form::Switch},
    SettingRule{rememberContentsKey, Form::Switch},
    SettingRule{trashFirstKey, Form::Switch},
    SettingRule{wholeFoldersKey, Form::Switch},
    SettingRule{gainFirstKey, Form::Switch},
    SettingRule{ZvDiskUsageLimit, Form::Number, 0, mostTyped},
    SettingRule{ZvDiskUsageUnit, Form::Number, 0, lastUnit},
    SettingRule{oneFileSystemKey, Form::Switch},
    SettingRule{rememberScansKey, Form::Switch},
    SettingRule{SUEnableAutomaticChecks, Form::Switch},
    SettingRule{SUScheduledCheckInterval, Form::Number, 0, 0, {"86400", "604800", "2592000"}},
    SettingRule{ZvLoginCheckKey, Form::Number, 0, 1},
    SettingRule{ZvLoginItemIsHide, Form::Switch},
    SettingRule{ZvShowStatusItem, Form::Switch},
    SettingRule{keepRunningKey, Form::Switch, 0, 0, {askToKeepRunning}},
    SettingRule{themeKey, Form::Word, 0, 0, {"desktop", "light", "dark"}},
    SettingRule{languageKey, Form::Word, 0, 0, {"desktop", "en", "de"}},
    SettingRule{logKey, Form::Switch},
    SettingRule{logFileKey, Form::Word, 0, 0, {"auto", "always", "never"}},
    SettingRule{openAtStartupKey, Form::Switch},
    SettingRule{fadeKey, Form::Switch},
    SettingRule{shiftSlowsAnimationKey, Form::Switch},
    SettingRule{DBPreferencesToolbarKey, Form::Number, 0, 2},
    SettingRule{ZvDisplayTypeKey, Form::Number, 0, 1},
    SettingRule{warnedVolumesKey, Form::Kept},
    SettingRule{ZvLastClickRow, Form::Kept},
    SettingRule{ZvUninstall, Form::Kept},
    SettingRule{ZvFreeSpace, Form::Kept},
    SettingRule{ZvMyMacClicked, Form::Kept},
    SettingRule{ZvToobarItem, Form::Kept},
    SettingRule{ZvToobarItem_app, Form::Kept},
    SettingRule{ZvUserAllDiskItemArr, Form::Kept},
};

template <class Number> std::optional<Number> numberFrom(std::string_view text) {
    Number number{};
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec != std::errc() || read.ptr != text.data() + text.size()) return std::nullopt;
    return number;
}

std::optional<SettingValue> switchFrom(std::string_view text) {
    std::string small(text);
    std::ranges::transform(small, small.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; });
    for (const std::string_view yes : {"true", "yes", "on", "1"})
        if (small == yes) return SettingValue(true);
    for (const std::string_view no : {"false", "no", "off", "0"})
        if (small == no) return SettingValue(false);
    return std::nullopt;
}

std::vector<std::string_view> wordsOf(const SettingRule& rule) {
    std::vector<std::string_view> words;
    for (const std::string_view word : rule.words)
        if (!word.empty()) words.push_back(word);
    return words;
}

std::optional<SettingValue> valueFrom(std::string_view text, const SettingRule& rule) {
    const auto words = wordsOf(rule);
    const bool isWord = std::ranges::find(words, text) != words.end();
    if (rule.form == Form::Switch)
        return isWord ? SettingValue(std::string(text)) : switchFrom(text);
    if (!words.empty() && !isWord) return std::nullopt;
    switch (rule.form) {
        case Form::Word: return SettingValue(std::string(text));
        case Form::Number:
            if (const auto number = numberFrom<std::int64_t>(text))
                if (!words.empty() || (*number >= rule.least && *number <= rule.most))
                    return SettingValue(*number);
            return std::nullopt;
        case Form::Share:
            if (const auto number = numberFrom<float>(text))
                if (std::isfinite(*number) && *number >= 0 && *number <= 1)
                    return SettingValue(*number);
            return std::nullopt;
        case Form::Switch:
        case Form::Kept: break;
    }
    return std::nullopt;
}

std::string wantedBy(const SettingRule& rule) {
    const std::string words = fmt::format("{}", fmt::join(wordsOf(rule), ", "));
    if (rule.form == Form::Switch)
        return words.empty() ? "true or false" : fmt::format("true, false or {}", words);
    if (!words.empty()) return fmt::format("one of {}", words);
    switch (rule.form) {
        case Form::Number:
            return fmt::format("a whole number from {} to {}", rule.least, rule.most);
        case Form::Share: return "a part of 1, such as 0.15";
        default: return "nothing, since the program keeps it itself";
    }
}

}  // namespace

std::span<const SettingRule> settingTable() { return table; }

const SettingRule* settingRule(std::string_view key) {
    const auto* const found =
        std::ranges::find_if(table, [key](const SettingRule& each) { return key == each.key; });
    return found == table.end() ? nullptr : found;
}

tl::expected<SettingValue, std::string> settingFrom(std::string_view text,
                                                    const SettingRule& rule) {
    if (auto value = valueFrom(text, rule)) return *std::move(value);
    return tl::unexpected(wantedBy(rule));
}

}  // namespace orrinvale
