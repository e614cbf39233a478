// changeWords: what is said of a changed entry beside its sizes, for the terminal and the window
// alike.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "engine/diskusage/history/ScanDifference.h"

namespace orrinvale {

/// All that can be said, in English. The window translates; "%1" stands for a size.
inline constexpr std::array changeTexts{"new",
                                        "new, or under %1 before",
                                        "new, in the place of a file",
                                        "new, in the place of a folder",
                                        "gone",
                                        "gone, or under %1 now",
                                        "gone, a file is in its place",
                                        "gone, a folder is in its place",
                                        "another file system there",
                                        "another file system in it",
                                        "could not be read each time",
                                        "not all of it could be read"};

struct ChangeWord {
    const char* text = nullptr;  ///< one of changeTexts
    std::uint64_t bytes = 0;     ///< what stands for "%1"
};

/// That it came or went, and what the other scan may have had in its place. Nothing of what
/// changed.
[[nodiscard]] std::optional<ChangeWord> comingWord(const ScanDifference& difference,
                                                   const ScanChange& change);

/// Why its sizes may not be the whole truth; nothing where they are.
[[nodiscard]] std::optional<ChangeWord> doubtWord(const ScanChange& change);

/// In English, for the terminal.
[[nodiscard]] std::string inEnglish(const ChangeWord& word);

}  // namespace orrinvale
