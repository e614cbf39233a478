// removalWords.h (ui/kit/dialogs) has those of what goes for good.
#include "ui/duplicates/trashWords.h"

#include <QCoreApplication>

#include "engine/text/UtilityFunction.h"
#include "ui/duplicates/entryWords.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/LineList.h"

namespace orrinvale {
namespace {

struct TrashWords {
    Q_DECLARE_TR_FUNCTIONS(TrashWords)
};

}  // namespace

QString movedText(const RemovalOutcome& outcome) {
    if (outcome.removed == 0) return {};
    const QString size = shownSize(UtilityFunction::convertVolSpace(outcome.bytes));
    return TrashWords::tr("%1, %2 moved")
        .arg(countedEntries({outcome.removed - outcome.folders, outcome.folders}), size);
}

QString unmovedText(const RemovalOutcome& outcome) {
    if (outcome.failed == 0) return {};
    return TrashWords::tr("%Ln could not be moved", nullptr, static_cast<int>(outcome.failed));
}

QString backText(const UndoOutcome& outcome) {
    const EntryCounts back{outcome.restored.size() - outcome.restoredFolders,
                           outcome.restoredFolders};
    if (back.all() == 0)
        return outcome.inPlace != 0 ? TrashWords::tr("Nothing was left to bring back")
                                    : TrashWords::tr("Nothing came back");
    return (back.all() == 1 ? TrashWords::tr("%1 is back") : TrashWords::tr("%1 are back"))
        .arg(countedEntries(back));
}

QString leftText(const UndoOutcome& outcome) {
    if (outcome.left.empty()) return {};
    return TrashWords::tr("%Ln could not be brought back", nullptr,
                          static_cast<int>(outcome.left.size()));
}

QStringList leftLines(const UndoOutcome& outcome) {
    return linesByReason(outcome.left, [](const UndoOutcome::Left& each) {
        const QString path = onOneLine(QString::fromStdString(each.path));
        return each.place.empty() ? path
                                  : TrashWords::tr("%1, in the trash as %2")
                                        .arg(path, onOneLine(QString::fromStdString(each.place)));
    });
}

}  // namespace orrinvale
