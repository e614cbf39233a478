// removalWords.h (ui/kit/dialogs) has those of what goes for good.
#include "ui/duplicates/trashWords.h"

#include <QCoreApplication>

#include "engine/text/UtilityFunction.h"
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
    return (outcome.removed == 1
                ? TrashWords::tr("1 file, %1 moved")
                : TrashWords::tr("%Ln files, %1 moved", nullptr, static_cast<int>(outcome.removed)))
        .arg(size);
}

QString unmovedText(const RemovalOutcome& outcome) {
    if (outcome.failed == 0) return {};
    return TrashWords::tr("%Ln could not be moved", nullptr, static_cast<int>(outcome.failed));
}

QString backText(const UndoOutcome& outcome) {
    const auto count = static_cast<int>(outcome.restored.size());
    if (count == 0)
        return outcome.inPlace != 0 ? TrashWords::tr("Nothing was left to bring back")
                                    : TrashWords::tr("Nothing came back");
    return count == 1 ? TrashWords::tr("1 file is back")
                      : TrashWords::tr("%Ln files are back", nullptr, count);
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
