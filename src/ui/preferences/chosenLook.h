// chosenLook: what a person has chosen in the settings in place of the desktop's look and language.
#pragma once

#include <QStringList>
#include <optional>

#include "ui/kit/look/Theme.h"

namespace orrinvale {

/// None where the desktop is followed, or the setting holds something else.
[[nodiscard]] std::optional<Theme::Scheme> chosenScheme();

/// For Translations: the chosen language alone, else those of the desktop.
[[nodiscard]] QStringList chosenLanguages();

/// Whether the log gets a line for each step of a search, by the setting or by ORRINVALE_LOG=1.
[[nodiscard]] bool wantsEngineLog();

/// Whether there is to be a log file: where a person wants one, or nobody else keeps the lines. Not
/// in a terminal, which shows them, nor where ORRINVALE_LOG or ORRINVALE_STALLS asks for them.
[[nodiscard]] bool wantsLogFile();

}  // namespace orrinvale
