#include "ui/preferences/chosenLook.h"

#include <QLocale>
#include <string>
#include <variant>

#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/SettingsKeys.h"

namespace orrinvale {
namespace {

std::string wordIn(const char* key) {
    const SettingValue value = PreferenceViewController::settingInForce(key);
    const auto* const word = std::get_if<std::string>(&value);
    return word != nullptr ? *word : std::string();
}

}  // namespace

std::optional<Theme::Scheme> chosenScheme() {
    const std::string word = wordIn(themeKey);
    if (word == "light") return Theme::Scheme::Light;
    if (word == "dark") return Theme::Scheme::Dark;
    return std::nullopt;
}

QStringList chosenLanguages() {
    const std::string word = wordIn(languageKey);
    if (word == "en" || word == "de") return {QString::fromStdString(word)};
    return QLocale().uiLanguages();
}

bool wantsEngineLog() {
    return qEnvironmentVariableIntValue("ORRINVALE_LOG") == 1 ||
           boolOf(PreferenceViewController::settingInForce(logKey));
}

}  // namespace orrinvale
