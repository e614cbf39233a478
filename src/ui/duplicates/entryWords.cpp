// The terminal counts with the same words (cli/countedEntries.h).
#include "ui/duplicates/entryWords.h"

#include <QCoreApplication>

#include "engine/text/UtilityFunction.h"
#include "ui/kit/controls/numberText.h"

namespace orrinvale {
namespace {

struct EntryWords {
    Q_DECLARE_TR_FUNCTIONS(EntryWords)
};

}  // namespace

QString countedEntries(const EntryCounts& counts) {
    QString files = counts.files == 1
                        ? EntryWords::tr("1 file")
                        : EntryWords::tr("%Ln files", nullptr, static_cast<int>(counts.files));
    if (counts.folders == 0) return files;
    const QString folders = counts.folders == 1 ? EntryWords::tr("1 folder")
                                                : EntryWords::tr("%Ln folders", nullptr,
                                                                 static_cast<int>(counts.folders));
    return counts.files == 0 ? folders : EntryWords::tr("%1 and %2").arg(folders, files);
}

QString goForGoodText(const EntryCounts& counts, std::uint64_t bytes) {
    return (counts.all() == 1 ? EntryWords::tr("%1, %2, goes for good.")
                              : EntryWords::tr("%1, %2, go for good."))
        .arg(countedEntries(counts), shownSize(UtilityFunction::convertVolSpace(bytes)));
}

}  // namespace orrinvale
