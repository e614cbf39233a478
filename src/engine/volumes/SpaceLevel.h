// SpaceLevel: when a volume counts as short of free space, and which numbered picture shows how
// full it is. Every warning of the program is decided here.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orrinvale {

struct ZvVolumeInfo;

/// Bytes of a volume: what is free, and the whole that shares are of.
struct VolumeSpace {
    std::uint64_t free = 0;
    std::uint64_t total = 0;
};

/// The whole is what people can fill: used and available together, as df(1) counts. With what is
/// held back for the administrator in it, a volume that is full for everybody else would read as
/// 95 per cent.
[[nodiscard]] VolumeSpace spaceOf(const ZvVolumeInfo& volume);

/// Whole per cent, truncated; nothing where the total is 0.
[[nodiscard]] std::optional<std::uint64_t> freePercent(VolumeSpace space);

/// Whole per cent, rounded up, so that one byte in use is 1. Nothing where the total is 0, or where
/// the two numbers contradict each other and the share is above 100.
[[nodiscard]] std::optional<int> usedPercent(VolumeSpace space);

/// A setting like "SpaceAlarm", a fraction of 1, as per cent, in single precision.
[[nodiscard]] float warningLevel(float alarm);

/// The same from a text, such as a row's errorValue: the whole number at its start ("10.000000" is
/// 10), 0 where there is none.
[[nodiscard]] std::int32_t warningLevelIn(std::string_view errorValue);

/// The text that rows are made with, from SettingItems::errorValue: "0.100000" gives "10". The
/// level is truncated.
[[nodiscard]] std::string errorValueOf(std::string_view settingItemsErrorValue);

/// The text that rows are refreshed with, from the setting itself: 0.1 gives "10.000000".
[[nodiscard]] std::string refreshedErrorValue(float alarm);

/// Whether free space has come down to the level, in per cent, or lies below it: a volume exactly
/// at the level warns. Never for a total of 0.
[[nodiscard]] bool isShortOfSpace(VolumeSpace space, float level);

/// Whether volumes of the group (VolumeType, or 5 for the memory) are warned of: a disc is full by
/// nature, and a server's space is not ours to free.
[[nodiscard]] bool isGroupWarned(std::int64_t group);

/// The families of numbered pictures.
enum class UsagePicture {
    Status,  ///< "%d%%.png", when warning "%d%%-1.png": the disc of the status item
    Row,     ///< "%d.png", "%d-1.png": the bar of a menu row
    Page     ///< "%d_index.png", "%d_r_index.png": the bar of a card on a page
};

/// The picture's name; empty where usedPercent() has no answer.
[[nodiscard]] std::string usagePictureName(UsagePicture family, VolumeSpace space, bool warns);

/// The same for a volume of a group, at a level: the warning one where it is short of space and its
/// group is warned of. The status item's is of group LocalVolume.
[[nodiscard]] std::string usagePictureName(UsagePicture family, VolumeSpace space, float level,
                                           std::int64_t group);

}  // namespace orrinvale
