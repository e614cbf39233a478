// NewVersion: what the description of the newest version says, and how the list of its changes
// lies.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "engine/settings/PropertyList.h"

namespace orrinvale {

/// A row of the list of changes. A number that has no text in the description is shown as such.
struct UpdateLine {
    int number = 0;
    std::optional<std::string> text;  ///< UTF-8
};

struct NewVersion {
    std::int64_t number = 0;          ///< "VersionCheck"
    std::string version;              ///< "Version", as people know it
    std::vector<UpdateLine> lines;    ///< in the order of their numbers, at most maximumLines
    std::vector<std::string> values;  ///< all texts that take part in the height of the list
};

/// What the toolkit shows in a blink. Nobody reads more.
inline constexpr std::size_t maximumLines = 1000;

/// Takes "VersionCheck" and "Version" out of the description. Nothing for one that is not newer
/// than `localNumber`: the numbers alone are compared, and one without a number, or none, counts
/// as 0. Values that are no text are skipped, and keep their place among the numbers.
[[nodiscard]] std::optional<NewVersion> takeNewVersion(PropertyList* description,
                                                       std::int64_t localNumber);

/// What stands in a row: "2:text". A missing text is "(null)".
[[nodiscard]] std::string textOfLine(const UpdateLine& line);

/// Points, from the upper edge of the list.
struct UpdateRowPlace {
    double top = 0;
    double height = 0;
};

struct UpdateListPlaces {
    static constexpr double listWidth = 430;
    static constexpr double rowWidth = 380;
    static constexpr double measuredWidth = 200;  ///< narrower than the row, for room to spare
    static constexpr double leastListHeight = 99;
    static constexpr double leastCountedHeight = 30;  ///< of a text in the list's height
    static constexpr double leastRowHeight = 25;

    double height = leastListHeight;   ///< of the list
    std::vector<UpdateRowPlace> rows;  ///< of each line
};

/// `measure` answers how high a text stands in measuredWidth.
[[nodiscard]] UpdateListPlaces placeLines(
    const NewVersion& version, const std::function<double(const std::string& text)>& measure);

}  // namespace orrinvale
