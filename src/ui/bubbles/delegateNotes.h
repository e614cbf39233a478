// delegateNotes: what the delegate's notes about volumes and cleaning are made of. They are put
// together and never shown: what they tell is seen where volumes are.
#pragma once

#include <QIcon>
#include <QLabel>
#include <QPointF>
#include <QWidget>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "engine/base/NotificationCenter.h"
#include "engine/volumes/SpaceLevel.h"
#include "platform/workspace.h"

namespace orrinvale {

/// The boot volume as the refresh of the status item has seen it last.
struct HomeDisk {
    std::uint64_t homeDiskFreeSpace = 0;    ///< bytes
    std::uint64_t homeDiskTotoleSpace = 0;  ///< bytes, as spaceOf() has them
    std::int32_t homeDiskWarningSize = 0;   ///< per cent, truncated, a million at most

    /// `spaceAlarm` is the setting "SpaceAlarm".
    [[nodiscard]] static HomeDisk of(const ZvVolumeInfo& boot, float spaceAlarm);
    /// Whether it is short of space; false before it has been seen.
    [[nodiscard]] bool getWarningValue() const;
};

/// The disc of the status item; null without a boot volume, or for one without a total.
[[nodiscard]] QIcon statusImage(const ZvVolumeInfo* boot, float spaceAlarm);

/// Where notes hang: 200 from the right and 10 from the upper edge, measured from the lower left
/// corner. Without a screen its width and height count as 0.
[[nodiscard]] QPointF statusFrame(const std::optional<Rect>& mainScreen);

/// A field of a note: white and bold, in letters of that many pixels.
[[nodiscard]] std::unique_ptr<QLabel> noteField(const QString& text, const QRect& place,
                                                int pixels = 13);

/// 50 high, and 280 wide for two fields, 220 for one.
[[nodiscard]] std::unique_ptr<QWidget> noteOf(std::unique_ptr<QLabel> view,
                                              std::unique_ptr<QLabel> withBView = nullptr);

/// The field that warns of a volume of that name.
[[nodiscard]] std::unique_ptr<QLabel> warningField(const QString& name);

/// The two fields of a clean that has ended, from the texts "CLEAN_FILES_COUNT" and
/// "FREE_SPACE_SIZE" of its notice.
struct CleanedFields {
    std::unique_ptr<QLabel> count, size;
};
[[nodiscard]] CleanedFields cleanedFields(const Notification& notification);

}  // namespace orrinvale
