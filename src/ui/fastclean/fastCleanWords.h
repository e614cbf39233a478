// fastCleanWords: what Fast Clean says: its question, its lines at the end, and why it has nothing
// to do.
#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/cleaning/CategoryScan.h"
#include "engine/cleaning/CleanCategory.h"
#include "engine/removal/RemovalRun.h"
#include "ui/cleaning/cleanWords.h"
#include "ui/kit/dialogs/Dialogs.h"

namespace orrinvale {

/// That no category is chosen.
[[nodiscard]] QString noCategoryLine();
/// That this one has nothing that may go, and where others are chosen.
[[nodiscard]] QString emptyCategoryLine(CleanCategory category);
/// That the disk does not say where the folders of this one are.
[[nodiscard]] QString silentCategoryLine(CleanCategory category);

/// Whether all of this may go for good: 0 for yes; 1 for no, which Escape gives too, and where the
/// keyboard is at first. `folders` are those that it lies in.
[[nodiscard]] Alert goodbyeQuestion(CleanCategory category, const std::vector<std::string>& folders,
                                    std::uint64_t count, std::uint64_t bytes);

/// What a Fast Clean came to, besides the figures.
struct FastCleanResult {
    CleanCategory category = CleanCategory::UserLogs;
    bool isEmpty = false;                     ///< it was measured, and nothing may go
    bool isSilent = false;                    ///< the disk did not name its folders
    std::uint64_t promised = 0;               ///< bytes that the disk was to get back
    std::optional<std::int64_t> gained{};     ///< bytes by which the free space grew, where known
    const RemovalOutcome* outcome = nullptr;  ///< null where no removal began
    std::vector<CategoryListing::Closed> closed{};  ///< folders that were left alone
    std::vector<Error> skipped{};                   ///< what could not be read
};

/// Two lines with the count and the size, each a fixed text, a blank and the figure.
[[nodiscard]] QStringList countAndSizeLines(std::uint64_t count, std::uint64_t bytes);
/// What there is to say beside these, the first one of most interest; may be empty.
[[nodiscard]] QStringList furtherLines(const FastCleanResult& result);
/// Why things stayed; or else why the free space grew by much less than promised, empty where it
/// did not.
[[nodiscard]] QString furtherReasons(const FastCleanResult& result);

}  // namespace orrinvale
