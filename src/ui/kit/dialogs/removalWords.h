// removalWords: what a removal came to, as every page says it.
#pragma once

#include <QString>
#include <optional>

#include "engine/removal/RemovalRun.h"
#include "ui/kit/dialogs/Dialogs.h"

namespace orrinvale {

/// "3 removed, 194 KB" for the bottom line; empty where nothing went.
[[nodiscard]] QString removedText(const RemovalOutcome& outcome);

/// "2 could not be removed"; empty where everything went.
[[nodiscard]] QString stayedText(const RemovalOutcome& outcome);

/// The sheet for entries that stay though nobody lacks a right: the reasons, the most frequent ones
/// first.
[[nodiscard]] Alert stayedAlert(const RemovalOutcome& outcome);

}  // namespace orrinvale
