// SettingItems: the settings at one moment, all as text. UtilityFunctionOfData builds it.
#pragma once

#include <string>

namespace orrinvale {

class KeyedArchive;

/// A snapshot: it does not follow later changes.
struct SettingItems {
    std::string errorValue;  ///< share of free space below which is warned, with six decimals
    std::string graphic;     ///< always empty
    std::string digital;     ///< style of the volume views
    std::string systemCaches;
    std::string userCaches;
    std::string systemLogs;
    std::string userLogs;
    std::string userTrash;
    std::string downloads;

    SettingItems() = default;
    /// initWithCoder: a field that the archive lacks is empty.
    explicit SettingItems(const KeyedArchive& coder);
    void encodeWithCoder(KeyedArchive& coder) const;

    friend bool operator==(const SettingItems&, const SettingItems&) = default;
};

}  // namespace orrinvale
