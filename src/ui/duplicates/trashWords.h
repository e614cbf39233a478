// trashWords: what a move to the trash came to, and what came back, as the window says it.
#pragma once

#include <QString>
#include <QStringList>

#include "engine/duplicates/plan/TrashUndo.h"
#include "engine/removal/RemovalRun.h"

namespace orrinvale {

/// "1 folder and 1,090 files, 127 MB moved"; empty where nothing went.
[[nodiscard]] QString movedText(const RemovalOutcome& outcome);

/// "2 could not be moved"; empty where everything went.
[[nodiscard]] QString unmovedText(const RemovalOutcome& outcome);

/// "1,090 files are back".
[[nodiscard]] QString backText(const UndoOutcome& outcome);

/// "2 could not be brought back"; empty where all came back.
[[nodiscard]] QString leftText(const UndoOutcome& outcome);

/// What did not come back, by reason, each with its place in the trash.
[[nodiscard]] QStringList leftLines(const UndoOutcome& outcome);

}  // namespace orrinvale
