// LowSpace: which volumes have come down to the warning level since somebody was warned of them.
// SpaceLevel.h compares; ui/tray/SpaceWarnings.h warns.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "engine/volumes/SystemSight.h"

namespace orrinvale {

/// A volume, known by its root, is warned of once. It has to rise two points above the level before
/// it is warned of anew, so that one at the edge does not nag. Whoever stores remembered() does not
/// warn again after a restart. One thread.
class LowSpace final {
public:
    /// Of `remembered` what is no list of ours is left out.
    explicit LowSpace(std::string_view remembered = {});

    /// The volumes to be warned of now, each once. Groups that are not warned of and volumes that
    /// do not answer are passed over. `level` is that of isShortOfSpace().
    [[nodiscard]] std::vector<SeenVolume> take(const std::vector<SeenVolume>& volumes, float level);

    /// The warning could not be shown: this process does not repeat it, another one may.
    void wasNotTold(const std::string& volRootDir);

    /// The roots as one printable line, the oldest warnings first.
    [[nodiscard]] std::string remembered() const;

private:
    struct Warned {
        std::string root;
        bool isTold = true;
    };
    std::vector<Warned> m_warned;
};

}  // namespace orrinvale
