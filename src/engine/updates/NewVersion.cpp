#include "engine/updates/NewVersion.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace orrinvale {
namespace {

constexpr const char* numberKey = "VersionCheck";
constexpr const char* versionKey = "Version";
constexpr const char* missingText = "(null)";

std::int64_t numberOfVersion(const PropertyList* description) {
    return description == nullptr ? 0 : description->integerForKey(numberKey).value_or(0);
}

}  // namespace

std::optional<NewVersion> takeNewVersion(PropertyList* description, std::int64_t localNumber) {
    NewVersion found{
        .number = numberOfVersion(description), .version = {}, .lines = {}, .values = {}};
    if (found.number <= localNumber) return std::nullopt;
    found.version = description->stringForKey(versionKey).value_or(missingText);
    description->removeObjectForKey(numberKey);
    description->removeObjectForKey(versionKey);
    const std::vector<std::string> keys = description->keys();
    const std::set<std::string, std::less<>> known(keys.begin(), keys.end());
    const std::size_t count = std::min(keys.size(), maximumLines);
    for (std::size_t i = 0; i < count; ++i)
        if (auto text = description->stringForKey(keys[i]))
            found.values.push_back(std::move(*text));
    for (std::size_t i = 1; i <= count; ++i) {
        const std::string key = std::to_string(i);
        auto text = description->stringForKey(key);
        if (text || !known.contains(key))
            found.lines.push_back({static_cast<int>(i), std::move(text)});
    }
    return found;
}

std::string textOfLine(const UpdateLine& line) {
    return fmt::format("{}:{}", line.number, line.text.value_or(missingText));
}

UpdateListPlaces placeLines(const NewVersion& version,
                            const std::function<double(const std::string&)>& measure) {
    UpdateListPlaces places;
    double sum = 0;
    for (const std::string& value : version.values)
        sum += std::max(UpdateListPlaces::leastCountedHeight, measure(value));
    double top = 0;
    for (const UpdateLine& line : version.lines) {
        const double wanted = line.text ? measure(*line.text) : 0;
        places.rows.push_back({top, std::max(UpdateListPlaces::leastRowHeight, wanted)});
        top += places.rows.back().height;
    }
    // The rows are the larger sum only where the description goes on behind the last of them.
    places.height = std::max({UpdateListPlaces::leastListHeight, sum, top});
    return places;
}

}  // namespace orrinvale
