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

}  // namespace orrinvale
