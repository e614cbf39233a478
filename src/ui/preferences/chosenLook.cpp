#include "ui/preferences/chosenLook.h"

#include <QLocale>
#include <string>
#include <variant>

#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/SettingsKeys.h"
#include "platform/standardStreams.h"

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

bool wantsLogFile() {
    if (qEnvironmentVariableIsSet("ORRINVALE_LOG") || qEnvironmentVariableIsSet("ORRINVALE_STALLS"))
        return false;
    const std::string word = wordIn(logFileKey);
    const ErrorStream goesTo = standardErrorGoesTo();
    if (word == "never" || goesTo == ErrorStream::Terminal) return false;
    return word == "always" || goesTo != ErrorStream::Journal;
}

}  // namespace orrinvale
