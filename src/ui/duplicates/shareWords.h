// shareWords: how copies can share their space, and what came of it, as the window says it.
#pragma once

#include <QString>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "engine/duplicates/share/ShareOutlook.h"
#include "engine/removal/RemovalRun.h"
#include "ui/kit/dialogs/Dialogs.h"

namespace orrinvale {

struct PageRemoval;

/// Whether copies may share their space, by which ways, what each way means, and what is left out.
/// Where neither way is open it only says so.
[[nodiscard]] Alert shareQuestion(const ShareOutlook& outlook);

/// What a button of the question lets happen; nothing for no.
enum class ShareYes : std::uint8_t { Extents, Links };
[[nodiscard]] std::optional<ShareYes> shareYesOf(const ShareOutlook& outlook, int button);

/// What became of it.
struct SharedSums {
    std::size_t files = 0;
    std::size_t already = 0;             ///< had their bytes in common before
    std::uint64_t promised = 0;          ///< bytes that come free at the most
    std::optional<std::int64_t> gained;  ///< by which the free space grew
};
[[nodiscard]] SharedSums sharedOf(const PageRemoval& sharing);

/// "12 shared, 44.9 MB", by which the free space grew.
[[nodiscard]] QString sharedText(const SharedSums& shared);
/// By how much the free space grew, of how much.
[[nodiscard]] QString gainTip(const SharedSums& shared);
/// "2 not shared"; empty where all did.
[[nodiscard]] QString unsharedText(const RemovalOutcome& outcome);

[[nodiscard]] QString lookingText();
[[nodiscard]] QString stopLookText();

}  // namespace orrinvale
