// What running programs have open below some folders. linux/OpenFiles.cpp implements it.
#pragma once

#include <chrono>
#include <set>
#include <string>
#include <vector>

namespace orrinvale {

/// A snapshot of one moment.
struct OpenFiles {
    /// Paths, as the system tells them, that a program has open, mapped, or as its working folder.
    std::set<std::string, std::less<>> paths;
    /// Programs of this user that do not show what they have open, by their names in small letters.
    std::set<std::string, std::less<>> hiddenPrograms;

    /// Whether the entry at this path, or anything below it, is open.
    [[nodiscard]] bool isWithin(const std::string& path) const;

    /// What is open at or below these folders, which are absolute and without links. Nothing of
    /// them is touched. This process itself does not count. What other users' programs have open is
    /// told to root alone. Any thread.
    [[nodiscard]] static OpenFiles below(const std::vector<std::string>& folders);
};

}  // namespace orrinvale
