// LowSpace: which volumes have come down to the warning level since somebody was warned of them.
// SpaceLevel.h compares; ui/tray/SpaceWarnings.h warns.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/volumes/SystemSight.h"

namespace orrinvale {

/// A volume is warned of once. It has to rise two points above the level before it is warned of
/// anew, so that one at the edge does not nag. It is known by its root; where a volume of another
/// name or size came to a root under another number, that is another volume. Whoever stores
/// remembered() does not warn again after a restart. One thread.
class LowSpace final {
public:
    using Clock = std::chrono::steady_clock;

    /// Of `remembered` what is no list of ours is left out.
    explicit LowSpace(std::string_view remembered = {});

    /// The volumes to be warned of now, each once. Groups that are not warned of and volumes that
    /// do not answer are passed over. `level` is that of isShortOfSpace().
    [[nodiscard]] std::vector<SeenVolume> take(const std::vector<SeenVolume>& volumes, float level,
                                               Clock::time_point now = Clock::now());

    /// The warning could not be shown. The volume is due again at the first look after five
    /// minutes, then after ten more, and so on; and at the first look of another process.
    void wasNotTold(const std::string& volRootDir, Clock::time_point now = Clock::now());

    /// The roots as one printable line, the oldest warnings first. Of volumes that are away not
    /// more are kept than make 64 in all.
    [[nodiscard]] std::string remembered() const;

private:
    struct Warned {
        std::string root;
        bool isTold = true;
        Clock::time_point due{};                          // again, where it was not told
        Clock::duration pause = std::chrono::minutes(5);  // until then
        std::shared_ptr<const ZvVolumeInfo> seen{};       // at the last look; null before the first
    };
    [[nodiscard]] bool isDue(const SeenVolume& volume, float level, Clock::time_point now);
    void forgetOthers(const std::vector<SeenVolume>& volumes);
    void forgetAbsent(const std::vector<SeenVolume>& volumes);

    std::vector<Warned> m_warned;
};

}  // namespace orrinvale
