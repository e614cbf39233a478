// The comparisons are in whole per cent of free space, whoever warns.
#include "engine/volumes/SpaceLevel.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>

#include "engine/text/readFloat.h"
#include "engine/volumes/ZvVolumeInfo.h"

namespace orrinvale {
namespace {

// A hundred times a size does not fit 64 bits from 184 petabytes on, which file systems over a
// network do report.
__extension__ using Wide = unsigned __int128;

constexpr Wide kHundred = 100;

}  // namespace

VolumeSpace spaceOf(const ZvVolumeInfo& volume) {
    return {volume.nFreeSize,
            volume.nTotalSize - std::min(volume.nReservedSize, volume.nTotalSize)};
}

std::optional<std::uint64_t> freePercent(VolumeSpace space) {
    if (space.total == 0) return std::nullopt;
    const Wide percent = space.free * kHundred / space.total;
    return static_cast<std::uint64_t>(std::min<Wide>(percent, ~std::uint64_t{0}));
}

std::optional<int> usedPercent(VolumeSpace space) {
    if (space.total == 0 || space.free > space.total) return std::nullopt;
    const Wide used = (space.total - space.free) * kHundred;
    return static_cast<int>((used + space.total - 1) / space.total);
}

float warningLevel(float alarm) { return alarm * 100.0F; }

std::int32_t warningLevelIn(std::string_view errorValue) {
    while (!errorValue.empty() && std::isspace(static_cast<unsigned char>(errorValue.front())) != 0)
        errorValue.remove_prefix(1);
    std::int32_t level = 0;
    std::from_chars(errorValue.data(), errorValue.data() + errorValue.size(), level);
    return level;
}

std::string errorValueOf(std::string_view settingItemsErrorValue) {
    // No level that a person can set lies outside, and a float beyond an integer has no integer.
    constexpr float most = 1'000'000;
    const float level = std::clamp(warningLevel(readFloat(settingItemsErrorValue)), -most, most);
    return fmt::format("{}", static_cast<std::int32_t>(level));
}

std::string refreshedErrorValue(float alarm) { return fmt::format("{:.6f}", warningLevel(alarm)); }

bool isShortOfSpace(VolumeSpace space, float level) {
    const auto percent = freePercent(space);
    return percent && level >= static_cast<float>(*percent);
}

bool isGroupWarned(std::int64_t group) { return group < OpticalVolume || group > DiskImageVolume; }

std::string usagePictureName(UsagePicture family, VolumeSpace space, bool warns) {
    const auto used = usedPercent(space);
    if (!used) return {};
    switch (family) {
        case UsagePicture::Status: return fmt::format("{}%{}.png", *used, warns ? "-1" : "");
        case UsagePicture::Row: return fmt::format("{}{}.png", *used, warns ? "-1" : "");
        case UsagePicture::Page: return fmt::format("{}{}_index.png", *used, warns ? "_r" : "");
    }
    return {};
}

std::string usagePictureName(UsagePicture family, VolumeSpace space, float level,
                             std::int64_t group) {
    return usagePictureName(family, space, isShortOfSpace(space, level) && isGroupWarned(group));
}

}  // namespace orrinvale
