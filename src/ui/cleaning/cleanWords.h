// cleanWords: what the cleaning page says: titles, its questions, and what became of a clean.
#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "engine/cleaning/CategoryScan.h"
#include "engine/cleaning/CleanCategory.h"
#include "engine/cleaning/CleanRun.h"
#include "engine/cleaning/FileLog.h"
#include "ui/kit/dialogs/Dialogs.h"

namespace orrinvale {

/// The category in the window's language.
[[nodiscard]] QString categoryTitle(CleanCategory category);

/// What people read in a row of the left table, and what it says of it; the latter is empty for the
/// first two rows of their kinds, the overview and the header.
[[nodiscard]] QString cleanRowTitle(int row);
[[nodiscard]] QString cleanRowDescription(int row);

/// A size as the window writes it.
[[nodiscard]] QString sizeWords(std::uint64_t bytes);
/// The same of a size text of a run, which begins without a blank.
[[nodiscard]] QString foundWords(const std::string& size);
/// Whether a name has these words in it, in whatever case; no words are in every name.
[[nodiscard]] bool hasWords(std::string_view name, const QString& words);
/// How long ago, in its largest unit.
[[nodiscard]] QString ageWords(std::int64_t nanoseconds);

/// A sentence with places for figures, see FigureLabel.
struct FigureSentence {
    QString pattern;
    QStringList figures;
};

/// What the last clean recovered and when, and how full the disk is. Without a date, or before the
/// disk was looked at, that part is left out.
[[nodiscard]] FigureSentence historySentence(std::uint64_t size, const std::optional<Date>& date,
                                             const QString& total, const QString& free);
[[nodiscard]] FigureSentence selectedSentence(const CleanSums& sums);
[[nodiscard]] FigureSentence cleanedSentence(std::uint64_t bytes);

/// Whether all of this may go for good: 0 for yes; 1 for no, which Escape gives too. `hidden`: so
/// many more are ticked, which a filter hides and which stay.
[[nodiscard]] Alert cleanQuestion(const CleanSums& sums, std::size_t hidden);
/// That nothing went, since what was asked about is no longer what is ticked.
[[nodiscard]] Alert changedAlert();
/// Whether the downloads may go along: 0 for yes, 1 for the others alone, 2 for nothing at all,
/// which Escape gives too.
[[nodiscard]] Alert downloadsAlongQuestion();
/// Whether the downloads may go: 0 for yes, 1 for no, which Escape gives too.
[[nodiscard]] Alert downloadsQuestion();
/// That rights are missing, and where they are to be had.
[[nodiscard]] Alert privilegesAlert();

/// By how much the free space grew; and as a tool tip why that is less than was promised, empty
/// where it is not.
[[nodiscard]] QString gainedWords(std::optional<std::int64_t> gained);
[[nodiscard]] QString lessThanPromised(std::optional<std::int64_t> gained, std::uint64_t promised);

/// A listing of the category with this title.
struct ShownListing {
    QString title;
    const CategoryListing* listing;
};

/// How many entries are kept, and their size, empty for none; and the reason of most of it, empty
/// where no rule keeps anything.
struct KeptWords {
    QString count, because;
};

/// "kept: 3 entries, 2 MB" "because: ..."; and the lines behind it, each reason with its entries.
[[nodiscard]] KeptWords keptWords(const std::vector<ShownListing>& listings);
[[nodiscard]] QStringList keptLines(const std::vector<ShownListing>& listings);

/// Of the trash how many entries there are, and since when; empty where there are none.
[[nodiscard]] QString trashWords(const CategoryListing& listing);

}  // namespace orrinvale
